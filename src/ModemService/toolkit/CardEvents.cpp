#include "CardEvents.h"

std::optional<CardEvent> CardEvents::take()
{
    if (m_events.empty())
        return std::nullopt;
    std::optional<CardEvent> event(std::move(m_events.front()));
    m_events.pop_front();
    return event;
}

bool CardEvents::holdsCommand() const
{
    return std::any_of(m_events.begin(), m_events.end(), [](const CardEvent &event) {
        return std::holds_alternative<ProactiveCommand>(event);
    });
}

void CardEvents::forgetQuestions()
{
    forgetIf([](const CardEvent &event) {
        const auto *command = std::get_if<ProactiveCommand>(&event);
        return command && !isAnsweredByModem(command->body);
    });
}
