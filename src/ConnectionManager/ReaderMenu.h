#ifndef READERMENU_H
#define READERMENU_H

#include <optional>

#include <QActionGroup>
#include <QMenu>

#include "CardHost.h"

/// The readers as actions of a menu, and which of them has the card in the modem.  The menu may be
/// open while readers come and go.
class ReaderMenu : public QActionGroup {
    Q_OBJECT

public:
    /// The actions stand at the present end of the menu.
    explicit ReaderMenu(QMenu *menu);

    void setReaders(const CardHost::ReaderList &list);
    /// The card in the modem is that of the first reader whose name begins with the text; with an
    /// empty text, of the first that has a card.
    void use(const QString &nameStart);
    /// The card in the modem is in no reader.
    void useNone();
    bool isUsed() const { return m_nameStart.has_value(); }
    /// Whether the card of the reader in use answers to this program.
    void setAnswering(bool answers);

    /// The reader in use and its state, for people.
    QString line() const;
    void retranslate();

signals:
    /// The user has chosen the reader with this name.
    void chosen(const QString &name);

private:
    void follow();
    void fill();
    QAction *addLine(QString line);
    const CardHost::Reader *inUse() const;
    QString lineOf(const CardHost::Reader &reader) const;
    QString lineOfNone() const;

    QMenu *m_menu;
    QAction *m_end; // stands behind the readers
    CardHost::ReaderList m_list;
    // What the reader's name has to begin with, and the name of the one that is in use.
    std::optional<QString> m_nameStart;
    std::optional<QString> m_name;
    bool m_answers = false;
};

#endif
