#include "UrlBar.h"

#include "Languages.h"
#include "UrlRequests.h"

using Languages::leftToRight;
using Languages::text;

namespace {

// A click that was meant for what stood there before comes too early to be an answer.
constexpr int Pause = 500; // ms
constexpr int Margin = 8;
// Of a tool tip, which does not break a line by itself.
constexpr int LineLength = 80, MostLines = 12;

QString inLines(const QString &address)
{
    QStringList lines;
    for (int at = 0; at < address.size() && lines.size() < MostLines; at += LineLength)
        lines << address.mid(at, LineLength);
    return lines.join('\n');
}

void showElided(QLabel *line, const QString &text, Qt::TextElideMode mode)
{
    line->setText(leftToRight(line->fontMetrics().elidedText(text, mode, line->width())));
}

} // namespace

UrlBar::UrlBar(UrlRequests &requests, QBoxLayout::Direction direction, QWidget *parent)
    : QFrame(parent)
    , m_requests(requests)
{
    setObjectName("ConnectionManager_UrlBar");
    setStyleSheet("#ConnectionManager_UrlBar { background: #fdf3d6; border-radius: 4px; } "
                  "QLabel { color: #5a4300; }");
    auto *layout = new QBoxLayout(direction, this);
    layout->setContentsMargins(Margin, Margin, Margin, Margin);
    auto *lines = new QVBoxLayout;
    layout->addLayout(lines, 1);
    m_question = addLine(lines);
    m_question->setWordWrap(true);
    m_host = addLine(lines);
    m_host->setObjectName("ConnectionManager_UrlHost");
    QFont bold = m_host->font();
    bold.setBold(true);
    m_host->setFont(bold);
    m_address = addLine(lines);
    m_address->setObjectName("ConnectionManager_UrlAddress");
    m_open = addButton(layout, &UrlRequests::open);
    m_always = addButton(layout, &UrlRequests::openAlways);
    m_decline = addButton(layout, &UrlRequests::decline);

    m_pause.setSingleShot(true);
    m_pause.setInterval(Pause);
    connect(&m_pause, &QTimer::timeout, this, [this] { allowAnswers(true); });
    connect(&m_requests, &UrlRequests::changed, this, &UrlBar::follow);
    hide();
}

// A long address asks for no width: it is shortened to what there is.
QLabel *UrlBar::addLine(QLayout *layout)
{
    auto *line = new QLabel(this);
    line->setTextFormat(Qt::PlainText);
    line->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
    layout->addWidget(line);
    return line;
}

QPushButton *UrlBar::addButton(QLayout *layout, void (UrlRequests::*answer)())
{
    auto *button = new QPushButton(this);
    layout->addWidget(button);
    connect(button, &QPushButton::clicked, &m_requests, answer);
    return button;
}

void UrlBar::follow()
{
    const bool waits = !m_requests.waiting().isEmpty();
    allowAnswers(false);
    if (waits)
        m_pause.start();
    retranslate();
    setVisible(waits);
}

void UrlBar::allowAnswers(bool allow)
{
    for (QPushButton *button : {m_open, m_always, m_decline})
        button->setEnabled(allow);
}

void UrlBar::retranslate()
{
    m_open->setText(text("IDS_CM_URL_OPEN"));
    m_always->setText(text("IDS_CM_URL_ALWAYS"));
    m_always->setToolTip(text("IDS_CM_URL_ALWAYS_HINT"));
    m_decline->setText(text("IDS_CM_URL_NOT_NOW"));
    m_question->setText(text("IDS_CM_URL_ASK"));
    showAddress();
}

// In ASCII as it goes to the browser: no letter of another script looks like one that is meant, and
// none turns the direction of writing.  What stands before the host's name could look like another
// host's, so the name stands alone as well; its end says whose it is.
void UrlBar::showAddress()
{
    const QUrl &url = m_requests.waiting();
    const QString address = url.toString(QUrl::FullyEncoded);
    showElided(m_host, url.host(QUrl::FullyEncoded), Qt::ElideLeft);
    showElided(m_address, address, Qt::ElideMiddle);
    m_address->setToolTip(inLines(address));
}

void UrlBar::resizeEvent(QResizeEvent *event)
{
    QFrame::resizeEvent(event);
    layout()->activate();
    showAddress();
}
