#ifndef READERMENU_H
#define READERMENU_H

#include <optional>

#include "CardHost.h"
#include "SourceMenu.h"

/// The readers as actions of a menu, and which of them has the card in the modem.
class ReaderMenu : public SourceMenu {
    Q_OBJECT

public:
    /// The actions stand at the present end of the menu.
    explicit ReaderMenu(QMenu *menu);

    void setReaders(const CardHost::ReaderList &list);
    /// The card in the modem is that of the first reader whose name begins with the text; with an
    /// empty text, of the first that has a card.
    void use(const QString &nameStart);
    void useNone() override;
    QString line() const override;

signals:
    /// The user has chosen the reader with this name.
    void chosen(const QString &name);

private:
    void follow();
    bool isUsed() const { return m_nameStart.has_value(); }
    QList<Line> lines() const override;
    const CardHost::Reader *inUse() const;
    QString lineOf(const CardHost::Reader &reader) const;
    QString lineOfNone() const override;

    CardHost::ReaderList m_list;
    // What the reader's name has to begin with, and the name of the one that is in use.
    std::optional<QString> m_nameStart;
    std::optional<QString> m_name;
};

#endif
