#ifndef MODEMMENU_H
#define MODEMMENU_H

#include <optional>
#include <vector>

#include "CardHost.h"
#include "SourceMenu.h"

/// The modems as actions of a menu, and which of them has the card.
class ModemMenu : public SourceMenu {
    Q_OBJECT

public:
    /// The actions stand at the present end of the menu.
    explicit ModemMenu(QMenu *menu);

    /// As the user names it: "at:/dev/ttyUSB2".
    static QString addressOf(const CardHost::Modem &modem);

    void setModems(const std::vector<CardHost::Modem> &modems);
    /// The card is in the modem of this kind and device; without a device, in the first of its
    /// kind.
    void use(const CardHost::Modem &modem);
    void useNone() override;
    QString line() const override;

signals:
    /// The user has chosen this modem.
    void chosen(const CardHost::Modem &modem);

private:
    void choose(const QString &address);
    const CardHost::Modem *inUse() const;
    QList<Line> lines() const override;
    QString lineOf(const CardHost::Modem &modem) const;
    QString stateOf(const CardHost::Modem &modem) const;
    QString lineOfNone() const override;

    std::vector<CardHost::Modem> m_modems;
    std::optional<CardHost::Modem> m_used; // as it was asked for
};

#endif
