#include "ScenarioCard.h"

#include <algorithm>
#include <utility>

namespace {

using Result = TerminalResponse::Result;
using std::chrono::milliseconds;

// The branches that an answer may take, the most particular one first.
std::optional<StepListId> findBranch(const CommandStep &step, const TerminalResponse &response)
{
    const auto lookUp = [](const std::map<std::string, StepListId> &lists,
                           const std::string &name) {
        const auto found = lists.find(name);
        return found == lists.end() ? std::nullopt : std::optional<StepListId>(found->second);
    };

    std::optional<StepListId> list;
    if (response.result == Result::Performed && response.text) {
        const bool yes =
            *response.text == "1"; // ETSI TS 102 223 clause 8.15: yes or no is 01 or 00
        list = lookUp(step.branches, yes ? "yes" : "no");
        if (!list)
            list = lookUp(step.textBranches, *response.text);
        if (!list)
            list = lookUp(step.textBranches, "*");
    }
    if (!list)
        list = lookUp(step.branches, resultName(response.result));
    const bool positive = response.result == Result::Performed;
    return list || positive ? list : lookUp(step.branches, "otherwise");
}

std::optional<StepListId> itemList(const CommandStep &step, int16_t itemId)
{
    const auto &items = commandMenu(step.command.body)->items;
    for (size_t i = 0; i < items.size(); ++i) {
        if (items[i].id == itemId)
            return step.itemLists[i];
    }
    return std::nullopt;
}

} // namespace

ScenarioCard::ScenarioCard(Scenario scenario)
    : m_scenario(std::move(scenario))
{
}

void ScenarioCard::powerOn(Time now)
{
    powerOff();
    for (const Scenario::Unasked &unasked : m_scenario.unasked)
        m_unasked.push_back({now + unasked.after, unasked.list});
    std::stable_sort(m_unasked.begin(), m_unasked.end(),
                     [](const Unasked &a, const Unasked &b) { return a.due > b.due; });
    m_place = Place{m_scenario.script, {}};
    proceed(now);
}

void ScenarioCard::powerOff()
{
    endSession();
    m_menu.reset();
    m_unasked.clear();
}

void ScenarioCard::endSession()
{
    m_place.reset();
    m_planned.reset();
    m_waitsForResponse = false;
}

void ScenarioCard::selectMenuItem(int16_t itemId, Time now)
{
    endSession();
    if (!m_menu)
        return;
    m_place = m_menu;
    if (const auto list = itemList(m_menu->command(), itemId))
        goTo(*list, now);
    else
        plan(SessionEnd(), now + m_scenario.latency);
}

void ScenarioCard::respond(const TerminalResponse &response, Time now)
{
    if (!m_waitsForResponse)
        return;
    m_waitsForResponse = false;
    if (response.result == Result::NoResponse) {
        endSession();
        return;
    }
    const CommandStep &step = m_place->command();
    if (const auto list =
            response.item ? itemList(step, *response.item) : findBranch(step, response))
        goTo(*list, now);
    else if (response.result == Result::Performed)
        goOnBehind(m_place->position, now);
    else if (response.result == Result::BackwardMove)
        goBack(now);
    else
        plan(SessionEnd(), now + m_scenario.latency);
}

std::optional<CardEvent> ScenarioCard::nextEvent(Time now)
{
    if (!m_unasked.empty() && m_unasked.back().due <= now) {
        const StepListId list = m_unasked.back().list;
        m_unasked.pop_back();
        start({m_scenario.script, {list, 0}}, now);
    }
    if (!m_planned || m_due > now)
        return std::nullopt;

    std::optional<CardEvent> event = std::exchange(m_planned, std::nullopt);
    if (const auto *command = std::get_if<ProactiveCommand>(&*event)) {
        m_waitsForResponse = true;
        if (std::holds_alternative<SetUpMenu>(command->body))
            m_menu = m_place;
    } else if (std::holds_alternative<ModemRemoved>(*event)) {
        goOnBehind(m_place->position, now);
    } else {
        m_place.reset();
    }
    return event;
}

Card::Time ScenarioCard::wakeUp() const
{
    const Time planned = m_planned ? m_due : Time::max();
    return m_unasked.empty() ? planned : std::min(planned, m_unasked.back().due);
}

void ScenarioCard::send(std::shared_ptr<const Script> script, Time now)
{
    start({std::move(script), {}}, now);
}

void ScenarioCard::start(Place place, Time now)
{
    endSession();
    m_place = std::move(place);
    // At once: the latency is what an answer takes.
    proceed(now - m_scenario.latency);
}

void ScenarioCard::goTo(StepListId list, Time now)
{
    m_place->position = {list, 0};
    proceed(now);
}

void ScenarioCard::goOnBehind(const StepPosition &position, Time now)
{
    m_place->position = {position.list, position.index + 1};
    proceed(now);
}

// Sends the sub menu again that the command in progress came from.
void ScenarioCard::goBack(Time now)
{
    while (const std::optional<StepPosition> parent = m_place->list().parent) {
        m_place->position = *parent;
        if (std::holds_alternative<SelectItem>(m_place->command().command.body)) {
            proceed(now);
            return;
        }
    }
    plan(SessionEnd(), now + m_scenario.latency);
}

// Follows the script to the next thing that others notice.  A script cannot run for ever here:
// every jump leads to a command.
void ScenarioCard::proceed(Time now)
{
    Time due = now + m_scenario.latency;
    while (true) {
        const StepList &list = m_place->list();
        StepPosition &position = m_place->position;
        if (position.index == list.steps.size()) {
            if (list.endsSession || !list.parent)
                return plan(SessionEnd(), due);
            position = {list.parent->list, list.parent->index + 1};
            continue;
        }
        const Step &step = list.steps[position.index];
        if (const auto *command = std::get_if<CommandStep>(&step))
            return plan(command->command, due);
        if (const auto *modem = std::get_if<ModemStep>(&step)) {
            due += modem->after;
            return modem->ready ? plan(ModemReady(), due) : plan(ModemRemoved(), due);
        }
        if (std::holds_alternative<EndSessionStep>(step))
            return plan(SessionEnd(), due);
        if (std::holds_alternative<TimeOutStep>(step))
            return plan(SessionTimeOut(), due);
        if (std::holds_alternative<SilenceStep>(step))
            return;
        if (const auto *jump = std::get_if<GoToStep>(&step)) {
            position = jump->target;
            continue;
        }
        due += std::get<WaitStep>(step).time;
        ++position.index;
    }
}

void ScenarioCard::plan(CardEvent event, Time due)
{
    m_planned = std::move(event);
    m_due = due;
}
