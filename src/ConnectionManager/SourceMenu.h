#ifndef SOURCEMENU_H
#define SOURCEMENU_H

#include <QActionGroup>
#include <QList>
#include <QMenu>

/// Where a card may be read, as actions of a menu, and which of them has the card in the modem. The
/// menu may be open while they come and go.
class SourceMenu : public QActionGroup {
    Q_OBJECT

public:
    /// The card in the modem is in none of them.
    virtual void useNone() = 0;
    /// Whether the card of the one in use answers to this program.
    void setAnswering(bool answers);
    /// The one in use and its state, for people.
    virtual QString line() const = 0;
    void retranslate() { fill(); }

protected:
    struct Line {
        QString text;
        QString data; ///< of its action
        bool isUsed;
    };

    /// The actions stand at the present end of the menu.
    explicit SourceMenu(QMenu *menu);

    void fill();
    bool answers() const { return m_answers; }
    virtual QList<Line> lines() const = 0;
    virtual QString lineOfNone() const = 0; ///< where there are no lines

private:
    QAction *addLine(QString text);

    QMenu *m_menu;
    QAction *m_end; // stands behind the lines
    bool m_answers = false;
};

#endif
