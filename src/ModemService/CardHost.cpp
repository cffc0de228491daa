#include "CardHost.h"

#include <memory>
#include <utility>

#include "ScenarioCard.h"
#include "ScenarioReader.h"
#include "Service.h"
#include "Session.h"

Session &theSession()
{
    static Session session;
    return session;
}

namespace CardHost {

std::string openScenario(const std::string &file)
{
    try {
        theSession().insertCard(std::make_unique<ScenarioCard>(readScenario(file)));
        return {};
    } catch (const ScenarioError &error) {
        theSession().insertCard(nullptr);
        return error.what();
    }
}

void closeCard()
{
    theSession().insertCard(nullptr);
}

ModemState state()
{
    return theSession().state();
}

void removeModem()
{
    theSession().removeModem();
}

void insertModem()
{
    theSession().insertModem();
}

void endSession()
{
    theSession().endSession();
}

void timeOutSession()
{
    theSession().timeOutSession();
}

std::string sendCommand(const std::string &json)
{
    const ModemState modem = state();
    if (modem == ModemState::NoCard || modem == ModemState::Removed)
        return modem == ModemState::NoCard ? "no card is in the modem" : "the modem was removed";
    try {
        theSession().withCard([script = readCommand(json)](Card &card) {
            if (auto *scenarioCard = dynamic_cast<ScenarioCard *>(&card))
                scenarioCard->send(script, Card::Clock::now());
        });
        return {};
    } catch (const ScenarioError &error) {
        return error.what();
    }
}

int addTranscriptListener(TranscriptListener listener)
{
    return theSession().transcript().addListener(std::move(listener));
}

void removeTranscriptListener(int id)
{
    theSession().transcript().removeListener(id);
}

} // namespace CardHost
