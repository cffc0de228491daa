#ifndef SCENARIOCARD_H
#define SCENARIOCARD_H

#include <memory>
#include <optional>

#include "session/Card.h"
#include "Scenario.h"

/// A simulated card that follows a scenario.
class ScenarioCard : public Card {
public:
    explicit ScenarioCard(Scenario scenario);

    CardTraits traits() const override { return m_scenario.traits; }
    void powerOn(Time now) override;
    void powerOff() override;
    void selectMenuItem(int16_t itemId, Time now) override;
    void respond(const TerminalResponse &response, Time now) override;
    void endSession() override;
    std::optional<CardEvent> nextEvent(Time now) override;
    Time wakeUp() const override;

    /// Leaves what the card was doing for another script.
    void send(std::shared_ptr<const Script> script, Time now);

private:
    // A script and a place in it.
    struct Place {
        std::shared_ptr<const Script> script;
        StepPosition position;

        const StepList &list() const { return script->lists[position.list]; }
        const CommandStep &command() const
        {
            return std::get<CommandStep>(list().steps[position.index]);
        }
    };

    struct Unasked {
        Time due;
        StepListId list;
    };

    void start(Place place, Time now);
    void goTo(StepListId list, Time now);
    void goOnBehind(const StepPosition &position, Time now);
    void goBack(Time now);
    void proceed(Time now);
    void plan(CardEvent event, Time due);

    Scenario m_scenario;
    std::optional<Place> m_menu; // the Set Up Menu that was sent last
    std::optional<Place> m_place; // in the script that is being followed
    bool m_waitsForResponse = false;
    std::optional<CardEvent> m_planned;
    Time m_due;
    std::vector<Unasked> m_unasked; // the next one last
};

#endif
