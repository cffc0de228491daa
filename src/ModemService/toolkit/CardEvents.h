#ifndef CARDEVENTS_H
#define CARDEVENTS_H

#include <algorithm>
#include <deque>
#include <optional>
#include <utility>

#include "session/Card.h"

/// What a terminal has to tell the session, in order.
class CardEvents {
public:
    template <class Event> void add(Event &&event)
    {
        m_events.emplace_back(std::forward<Event>(event));
    }
    bool isEmpty() const { return m_events.empty(); }
    std::optional<CardEvent> take();
    void clear() { m_events.clear(); }

    /// Whether there is a command, which nobody was told of.
    bool holdsCommand() const;
    /// True where there were any of the kind.
    template <class Event> bool forget()
    {
        return forgetIf(
            [](const CardEvent &event) { return std::holds_alternative<Event>(event); });
    }
    /// The commands that somebody is to answer.
    void forgetQuestions();

private:
    template <class Condition> bool forgetIf(Condition condition)
    {
        const auto last = std::remove_if(m_events.begin(), m_events.end(), condition);
        const bool any = last != m_events.end();
        m_events.erase(last, m_events.end());
        return any;
    }

    std::deque<CardEvent> m_events;
};

#endif
