#include "NetworkPanel.h"

#include <QAction>
#include <QScreen>
#include <QToolButton>
#include <QVBoxLayout>

#include "Languages.h"

namespace {

constexpr int Gap = 12; // pixels between the two windows
constexpr int ButtonHeight = 34;
constexpr int Width = 270;
constexpr int TitleBar = 32; // what a window manager adds, which is known only afterwards

} // namespace

NetworkPanel::NetworkPanel(const QList<QAction *> &actions)
    : m_hint(new QLabel(this))
{
    setObjectName("ConnectionManager_NetworkPanel");
    setAttribute(Qt::WA_ShowWithoutActivating);
    auto *layout = new QVBoxLayout(this);
    m_hint->setWordWrap(true);
    m_hint->setTextFormat(Qt::PlainText);
    layout->addWidget(m_hint);
    layout->addSpacing(6);
    for (QAction *action : actions) {
        auto *button = new QToolButton(this);
        button->setDefaultAction(action);
        button->setMinimumHeight(ButtonHeight);
        button->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
        layout->addWidget(button);
    }
    layout->addStretch();
    setFixedWidth(Width);
    retranslate();
}

void NetworkPanel::retranslate()
{
    setWindowTitle(Languages::text("IDS_CM_NETWORK_TITLE"));
    m_hint->setText(Languages::text("IDS_CM_NETWORK_HINT"));
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
