#include "NetworkPanel.h"

#include <QAction>
#include <QScreen>
#include <QVBoxLayout>

#include "Languages.h"
#include "UrlBar.h"

namespace {

constexpr int Gap = 12; // pixels between the two windows
constexpr int ButtonHeight = 34;
constexpr int Width = 270;
constexpr int TitleBar = 32; // what a window manager adds, which is known only afterwards

} // namespace

NetworkPanel::NetworkPanel(const QList<QAction *> &actions, QMenu *commands, QMenu *languages,
                           UrlRequests &urls)
    : m_hint(new QLabel(this))
    , m_urlBar(new UrlBar(urls, QBoxLayout::TopToBottom, this))
{
    setObjectName("ConnectionManager_NetworkPanel");
    setAttribute(Qt::WA_ShowWithoutActivating);
    auto *layout = new QVBoxLayout(this);
    m_hint->setWordWrap(true);
    m_hint->setTextFormat(Qt::PlainText);
    layout->addWidget(m_hint);
    layout->addSpacing(6);
    m_commands = addButton(commands);
    layout->addSpacing(6);
    for (QAction *action : actions)
        addButton()->setDefaultAction(action);
    layout->addSpacing(6);
    m_languages = addButton(languages);
    layout->addWidget(m_urlBar);
    layout->addStretch();
    setFixedWidth(Width);
    retranslate();
}

QToolButton *NetworkPanel::addButton()
{
    auto *button = new QToolButton(this);
    button->setMinimumHeight(ButtonHeight);
    button->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    layout()->addWidget(button);
    return button;
}

QToolButton *NetworkPanel::addButton(QMenu *menu)
{
    QToolButton *button = addButton();
    button->setMenu(menu);
    button->setPopupMode(QToolButton::InstantPopup);
    return button;
}

void NetworkPanel::retranslate()
{
    setWindowTitle(Languages::text("IDS_CM_NETWORK_TITLE"));
    m_hint->setText(Languages::text("IDS_CM_NETWORK_HINT"));
    m_commands->setText(Languages::text("IDS_CM_SEND_COMMAND"));
    m_languages->setText(Languages::text("IDS_CM_LANGUAGE"));
    m_urlBar->retranslate();
}

void NetworkPanel::showBeside(const QWidget *window)
{
    resize(Width, layout()->totalHeightForWidth(Width));
    const QRect screen = window->screen()->availableGeometry();
    const QRect beside = window->frameGeometry();
    QPoint place(beside.right() + Gap, beside.top());
    if (place.x() + width() > screen.right())
        place.setX(beside.left() - Gap - width());
    if (place.x() < screen.left())
        place = screen.bottomRight() - QPoint(width() + Gap, height() + TitleBar + Gap);
    move(place);
    show();
    raise();
}
