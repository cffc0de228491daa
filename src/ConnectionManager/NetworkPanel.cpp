#include "NetworkPanel.h"

#include <QAction>
#include <QScreen>
#include <QVBoxLayout>

#include "Languages.h"

namespace {

constexpr int Gap = 12; // pixels between the two windows
constexpr int ButtonHeight = 34;
constexpr int Width = 270;
constexpr int TitleBar = 32; // what a window manager adds, which is known only afterwards

} // namespace

NetworkPanel::NetworkPanel(const QList<QAction *> &actions, QMenu *languages)
    : m_hint(new QLabel(this))
{
    setObjectName("ConnectionManager_NetworkPanel");
    setAttribute(Qt::WA_ShowWithoutActivating);
    auto *layout = new QVBoxLayout(this);
    m_hint->setWordWrap(true);
    m_hint->setTextFormat(Qt::PlainText);
    layout->addWidget(m_hint);
    layout->addSpacing(6);
    for (QAction *action : actions)
        addButton()->setDefaultAction(action);
    layout->addSpacing(6);
    m_languages = addButton();
    m_languages->setMenu(languages);
    m_languages->setPopupMode(QToolButton::InstantPopup);
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

void NetworkPanel::retranslate()
{
    setWindowTitle(Languages::text("IDS_CM_NETWORK_TITLE"));
    m_hint->setText(Languages::text("IDS_CM_NETWORK_HINT"));
    m_languages->setText(Languages::text("IDS_CM_LANGUAGE"));
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
