#include "ModemMenu.h"

#include <filesystem>

#include "Languages.h"

using CardHost::Modem;
using Languages::text;

namespace {

// Also by another name: "/dev/serial/by-id/...".
bool isSame(const std::string &device, const std::string &other)
{
    std::error_code error;
    return device == other || std::filesystem::equivalent(device, other, error);
}

} // namespace

ModemMenu::ModemMenu(QMenu *menu)
    : SourceMenu(menu)
{
    connect(this, &QActionGroup::triggered, this,
            [this](const QAction *action) { choose(action->data().toString()); });
    // Nobody tells when another program opens a modem.
    connect(menu, &QMenu::aboutToShow, this, [this] { setModems(CardHost::listModems()); });
    fill();
}

QString ModemMenu::addressOf(const Modem &modem)
{
    const char *const kind = modem.kind == Modem::Kind::At ? "at:" : "mbim:";
    return kind + QString::fromStdString(modem.device);
}

void ModemMenu::setModems(const std::vector<Modem> &modems)
{
    m_modems = modems;
    fill();
}

void ModemMenu::use(const Modem &modem)
{
    m_used = modem;
    fill();
}

void ModemMenu::useNone()
{
    m_used.reset();
    fill();
}

QString ModemMenu::line() const
{
    return m_used ? lineOf(*inUse()) : lineOfNone();
}

void ModemMenu::choose(const QString &address)
{
    for (const Modem &modem : m_modems) {
        if (addressOf(modem) == address) {
            emit chosen(Modem(modem)); // the list may change meanwhile
            return;
        }
    }
    if (m_used)
        emit chosen(Modem(*m_used));
}

// As the list has it; null where no modem is used.
const Modem *ModemMenu::inUse() const
{
    for (const Modem &modem : m_modems) {
        const bool isOfKind = m_used && modem.kind == m_used->kind;
        if (isOfKind && (m_used->device.empty() || isSame(m_used->device, modem.device)))
            return &modem;
    }
    return m_used ? &*m_used : nullptr;
}

QList<SourceMenu::Line> ModemMenu::lines() const
{
    const Modem *const used = inUse();
    QList<Line> all;
    for (const Modem &modem : m_modems)
        all << Line{lineOf(modem), addressOf(modem), &modem == used};
    if (m_used && used == &*m_used) // a device that nobody lists
        all << Line{lineOf(*used), addressOf(*used), true};
    return all;
}

QString ModemMenu::lineOf(const Modem &modem) const
{
    const QString name = QString::fromStdString(modem.name);
    const QString shown = addressOf(modem) + (name.isEmpty() ? name : " (" + name + ')');
    return text("IDS_CM_MODEM").arg(Languages::leftToRight(shown), stateOf(modem));
}

QString ModemMenu::stateOf(const Modem &modem) const
{
    const bool isOurs = &modem == inUse();
    if (isOurs && answers())
        return text("IDS_CM_MODEM_CONNECTED");
    if (modem.state == Modem::State::Denied)
        return text("IDS_CM_MODEM_DENIED");
    if (modem.state == Modem::State::Free)
        return text(isOurs ? "IDS_CM_MODEM_NOT_READY" : "IDS_CM_MODEM_FREE");
    const QString user = QString::fromStdString(modem.user);
    return user.isEmpty() ? text("IDS_CM_READER_IN_USE")
                          : text("IDS_CM_MODEM_IN_USE_BY").arg(Languages::leftToRight(user));
}

QString ModemMenu::lineOfNone() const
{
    return text("IDS_CM_NO_MODEM");
}
