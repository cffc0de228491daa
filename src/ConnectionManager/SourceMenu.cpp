#include "SourceMenu.h"

#include <utility>

SourceMenu::SourceMenu(QMenu *menu)
    : QActionGroup(menu)
    , m_menu(menu)
    , m_end(menu->addSeparator())
{
}

void SourceMenu::setAnswering(bool answers)
{
    if (std::exchange(m_answers, answers) != answers)
        fill();
}

void SourceMenu::fill()
{
    // One of the actions may be the one that is carried out just now.
    for (QAction *action : actions()) {
        removeAction(action);
        m_menu->removeAction(action);
        action->deleteLater();
    }
    const QList<Line> all = lines();
    for (const Line &line : all) {
        QAction *action = addLine(line.text);
        action->setData(line.data);
        action->setCheckable(true);
        action->setChecked(line.isUsed);
    }
    if (all.isEmpty())
        addLine(lineOfNone())->setEnabled(false);
}

QAction *SourceMenu::addLine(QString text)
{
    auto *action = new QAction(text.replace('&', "&&"), this);
    m_menu->insertAction(m_end, action);
    return action;
}
