#include "platform/ClipMessageBox.h"

#include <QApplication>
#include <QDesktopWidget>
#include <QGridLayout>
#include <QLabel>
#include <QResizeEvent>
#include <QScopedPointer>
#include <QScrollBar>
#include <QTextDocument>
#include <QTextEdit>
#include <qmath.h>

namespace {

const int MinTextWidth = 220;
const int MaxTextWidth = 420;
const int MaxShortTextWidth = 300;

/* Shows a text of any length whole: it wraps inside a word where it must, and scrolls what is
 * higher than two thirds of the screen. */
class MessageText : public QTextEdit {
public:
    MessageText(const QString &text, QWidget *parent)
        : QTextEdit(parent)
    {
        setObjectName("HostUi_MessageText");
        setReadOnly(true);
        setFrameShape(QFrame::NoFrame);
        setFocusPolicy(Qt::NoFocus);
        setWordWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
        setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
        viewport()->setAutoFillBackground(false);
        setPlainText(text);
        fitToText();
    }

private:
    void fitToText()
    {
        const QRect screen = QApplication::desktop()->availableGeometry(parentWidget());
        const int maxWidth = qMin(MaxTextWidth, screen.width() / 2);
        // The view's own document is laid out for the view's present size.
        QScopedPointer<QTextDocument> text(document()->clone());
        text->setTextWidth(-1);
        const int width = qBound(qMin(MinTextWidth, maxWidth), qCeil(text->idealWidth()), maxWidth);
        text->setTextWidth(width);
        const int height = qCeil(text->size().height());
        const int maxHeight = screen.height() * 2 / 3;
        const int scrollBar = height > maxHeight ? verticalScrollBar()->sizeHint().width() : 0;
        setFixedSize(width + scrollBar, qMin(height, maxHeight));
    }
};

bool isShort(const QLabel *label, const QString &text)
{
    return !text.contains('\n') &&
        label->fontMetrics().boundingRect(text).width() <= MaxShortTextWidth;
}

} // namespace

ClipMessageBox::ClipMessageBox(QWidget *parent)
    : QMessageBox(parent)
{
    setTextFormat(Qt::PlainText);
}

ClipMessageBox::~ClipMessageBox() { }

void ClipMessageBox::showEvent(QShowEvent *event)
{
    showWholeText();
    QMessageBox::showEvent(event);
}

void ClipMessageBox::resizeEvent(QResizeEvent *event)
{
    QMessageBox::resizeEvent(event);
    emit changeSize(event->size());
}

/* The label of a message box neither breaks a long word nor scrolls: for all but a short text
 * another widget takes its place in the layout. */
void ClipMessageBox::showWholeText()
{
    QLabel *label = findChild<QLabel *>("qt_msgbox_label");
    if (label && isShort(label, text())) {
        label->setMinimumWidth(qMax(MinTextWidth, label->sizeHint().width()));
        return;
    }
    QGridLayout *grid = qobject_cast<QGridLayout *>(layout());
    const int index = label && grid ? grid->indexOf(label) : -1;
    if (index < 0 || findChild<MessageText *>())
        return;
    int row, column, rows, columns;
    grid->getItemPosition(index, &row, &column, &rows, &columns);
    label->hide();
    MessageText *whole = new MessageText(text(), this);
    grid->addWidget(whole, row, column, rows, columns);
    // The layout would show it only later, when the box has taken its size.
    whole->show();
}
