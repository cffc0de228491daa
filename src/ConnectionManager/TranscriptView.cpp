#include "TranscriptView.h"

#include <QFontDatabase>
#include <QRegularExpression>
#include <QScrollBar>

#include "session/ServiceStatus.h"

namespace {

constexpr int MaxLines = 5000;

// Every start asks for the menu before the card has sent it: that is no fault, and is not to look
// like one.  Where there is no card, or no modem, it says nothing, and the line is empty.
QString shownText(const CardHost::TranscriptEntry &entry)
{
    static const QRegularExpression asked("refused: MOVA_STKSrv_GetMainMenu: .* \\(-([123])\\)$");
    if (entry.isDialogue) // that is for the transcript's file
        return QString();
    QString line = QString::fromStdString(entry.text);
    const QRegularExpressionMatch match = asked.match(line);
    if (match.hasMatch() && match.captured(1).toInt() != -StatusNoMenu)
        return QString();
    return line.replace(asked, "there is no menu yet");
}

} // namespace

TranscriptView::TranscriptView(QWidget *parent)
    : QPlainTextEdit(parent)
{
    setObjectName("ConnectionManager_Transcript");
    setReadOnly(true);
    setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
    setMaximumBlockCount(MaxLines);
    // Its lines are technical English in every language.
    setLayoutDirection(Qt::LeftToRight);
    followEnd();
}

void TranscriptView::add(const CardHost::TranscriptEntry &entry)
{
    const QString line = shownText(entry);
    if (!line.isEmpty())
        appendPlainText(line);
}

// Also when the view shrinks under an error.
void TranscriptView::followEnd()
{
    QScrollBar *bar = verticalScrollBar();
    connect(bar, &QScrollBar::valueChanged, this,
            [this, bar](int value) { m_showsEnd = value == bar->maximum(); });
    connect(bar, &QScrollBar::rangeChanged, this, [this, bar](int, int maximum) {
        if (m_showsEnd)
            bar->setValue(maximum);
    });
}
