#include "platform/ClipMessageBox.h"

#include <QGridLayout>
#include <QLabel>
#include <QResizeEvent>
#include <QScopedPointer>
#include <QScrollBar>
#include <QTextDocument>
#include <qmath.h>

#include "Screen.h"
#include "shared/TextView.h"

namespace {

const int MinTextWidth = 220;
const int MaxTextWidth = 420;
const int MaxShortTextWidth = 300;
const char *const ViewName = "HostUi_MessageText";

/* As wide as it is read well, and as high as the text, within two thirds of the screen. */
void fitToText(QTextEdit *view)
{
    const QRect screen = availableScreen(view->parentWidget());
    const int maxWidth = qMin(MaxTextWidth, screen.width() / 2);
    // The view's own document is laid out for the view's present size.
    QScopedPointer<QTextDocument> text(view->document()->clone());
    text->setTextWidth(-1);
    const int width = qBound(qMin(MinTextWidth, maxWidth), qCeil(text->idealWidth()), maxWidth);
    text->setTextWidth(width);
    const int height = qCeil(text->size().height());
    const int maxHeight = screen.height() * 2 / 3;
    const int scrollBar = height > maxHeight ? view->verticalScrollBar()->sizeHint().width() : 0;
    view->setFixedSize(width + scrollBar, qMin(height, maxHeight));
}

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

/* A button that loses the keyboard looks through its dialog for the others.  Under Qt 6 it would do
 * so when the box is half gone, where the dialog is a frame that outlives it. */
ClipMessageBox::~ClipMessageBox()
{
    if (QWidget *const button = focusWidget())
        button->clearFocus();
}

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

/* For all but a short text another widget takes the label's place in the layout. */
void ClipMessageBox::showWholeText()
{
    QLabel *label = findChild<QLabel *>("qt_msgbox_label");
    if (label && isShort(label, text())) {
        label->setMinimumWidth(qMax(MinTextWidth, label->sizeHint().width()));
        return;
    }
    QGridLayout *grid = qobject_cast<QGridLayout *>(layout());
    const int index = label && grid ? grid->indexOf(label) : -1;
    if (index < 0 || findChild<QTextEdit *>(ViewName))
        return;
    int row, column, rows, columns;
    grid->getItemPosition(index, &row, &column, &rows, &columns);
    QTextEdit *view = textViewFor(label);
    view->setObjectName(ViewName);
    fitToText(view);
    grid->addWidget(view, row, column, rows, columns);
    // The layout would show it only later, when the box has taken its size.
    view->show();
}
