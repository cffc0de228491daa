#include "FaultPlan.h"

#include <algorithm>

using std::chrono::milliseconds;

namespace {

constexpr unsigned OneIn = 60; // commands, when faults come at random

const std::pair<const char *, Fault> Faults[] = {
    {"slow", Fault::Slow},       {"cut", Fault::Cut},       {"wrongLength", Fault::WrongLength},
    {"endless", Fault::Endless}, {"6F00", Fault::Error},    {"9300", Fault::Busy},
    {"garbage", Fault::Garbage}, {"remove", Fault::Remove}, {"hang", Fault::Hang}};
constexpr unsigned LastAtRandom = static_cast<unsigned>(Fault::Remove);

// Nothing for a text that is no number.
std::optional<unsigned> readNumber(const std::string &text)
{
    if (text.empty() || text.size() > 9 ||
        text.find_first_not_of("0123456789") != std::string::npos)
        return std::nullopt;
    return static_cast<unsigned>(std::stoul(text));
}

} // namespace

std::optional<FaultPlan> FaultPlan::read(const std::string &text)
{
    FaultPlan plan;
    if (const auto seed = readNumber(text)) {
        plan.m_kind = Kind::Random;
        plan.m_engine.seed(*seed);
        return plan;
    }
    const size_t at = text.find('@');
    const auto row = std::find_if(std::begin(Faults), std::end(Faults), [&](const auto &known) {
        return text.substr(0, at) == known.first;
    });
    if (at == std::string::npos || row == std::end(Faults))
        return std::nullopt;
    plan.m_fault = row->second;
    plan.m_kind = Kind::Each;
    if (text.substr(at + 1) == "each")
        return plan;
    const auto number = readNumber(text.substr(at + 1));
    if (number.value_or(0) == 0)
        return std::nullopt;
    plan.m_kind = Kind::Once;
    plan.m_at = *number;
    return plan;
}

void FaultPlan::cardStarted()
{
    if (m_kind != Kind::Each)
        return;
    if (m_commands >= m_at)
        ++m_at;
    m_commands = 0;
}

std::optional<Fault> FaultPlan::next()
{
    ++m_commands;
    if (m_kind == Kind::Random)
        return upTo(OneIn - 1) == 0 ? std::optional(Faults[upTo(LastAtRandom)].second)
                                    : std::nullopt;
    if (m_kind == Kind::Never || m_commands != m_at)
        return std::nullopt;
    return m_fault;
}

milliseconds FaultPlan::slowness()
{
    return milliseconds(isRandom() ? upTo(2000) : 2000);
}

milliseconds FaultPlan::absence()
{
    return milliseconds(isRandom() ? 500 + upTo(1500) : 600);
}

cat::Bytes FaultPlan::garbage()
{
    cat::Bytes bytes(upTo(300));
    std::generate(bytes.begin(), bytes.end(), [this] { return static_cast<uint8_t>(upTo(255)); });
    return bytes;
}

cat::Bytes FaultPlan::wrongLength(cat::Bytes answer)
{
    if (answer.size() > 2)
        answer.erase(answer.begin());
    else
        answer.back() = static_cast<uint8_t>(answer.back() + (upTo(1) ? 1 : 255));
    return answer;
}

unsigned FaultPlan::upTo(unsigned highest)
{
    return std::uniform_int_distribution<unsigned>(0, highest)(m_engine);
}

const char *faultName(Fault fault)
{
    const auto row = std::find_if(std::begin(Faults), std::end(Faults),
                                  [&](const auto &known) { return known.second == fault; });
    return row->first;
}
