#include "ModemFaults.h"

#include <algorithm>
#include <cstdint>

namespace {

constexpr unsigned OneIn = 20; // messages, when faults come at random

struct Row {
    Fault fault;
    const char *name;
    int protocols;
    bool ofMessage; // of a single one; drawn when faults come at random
};

constexpr int Both = ModemFaults::At | ModemFaults::Mbim;
constexpr Row Rows[] = {
    {Fault::Slow, "slow", Both, true},
    {Fault::Never, "never", Both, true},
    {Fault::Garbage, "garbage", Both, true},
    {Fault::HangUp, "hangUp", Both, true},
    {Fault::Error, "error", Both, true},
    {Fault::Busy, "busy", Both, true},
    {Fault::NoFinal, "noFinal", Both, true},
    {Fault::WrongFinal, "wrongFinal", Both, true},
    {Fault::Early, "early", Both, true},
    {Fault::Split, "split", Both, true},
    {Fault::Bytes, "bytes", Both, true},
    {Fault::Late, "late", Both, false},
    {Fault::Again, "again", Both, false},
    {Fault::NoEnd, "noEnd", Both, false},
    {Fault::Off, "off", Both, false},
    {Fault::Quoted, "quoted", ModemFaults::At, false},
    {Fault::Unquoted, "unquoted", ModemFaults::At, false},
    {Fault::Tight, "tight", ModemFaults::At, false},
    {Fault::Forms, "forms", ModemFaults::At, false},
    {Fault::EarlyEnd, "earlyEnd", ModemFaults::At, false},
    {Fault::Echo, "echo", ModemFaults::At, false},
    {Fault::Words, "words", ModemFaults::At, false},
    {Fault::Bare, "bare", ModemFaults::At, false},
    {Fault::Fragments, "fragments", ModemFaults::Mbim, false},
    {Fault::Padding, "padding", ModemFaults::Mbim, false},
    {Fault::Notified, "notified", ModemFaults::Mbim, false},
    {Fault::Decimal, "decimal", ModemFaults::Mbim, false},
    {Fault::LatePin, "latePin", ModemFaults::Mbim, false},
};

// Zero for a text that is no number, or too great a one.
long readNumber(const std::string &text)
{
    const bool isNumber = !text.empty() && text.size() <= 9 &&
        text.find_first_not_of("0123456789") == std::string::npos;
    return isNumber ? std::stol(text) : 0;
}

} // namespace

bool ModemFaults::add(const std::string &text, Protocol protocol)
{
    if (const long seed = readNumber(text)) {
        m_isRandom = true;
        m_engine.seed(static_cast<unsigned>(seed));
        return true;
    }
    const size_t at = text.find('@');
    const auto row = std::find_if(std::begin(Rows), std::end(Rows), [&](const Row &known) {
        return text.substr(0, at) == known.name && (known.protocols & protocol);
    });
    if (row == std::end(Rows) || (at != std::string::npos && !row->ofMessage))
        return false;
    Entry entry{row->fault};
    if (at != std::string::npos) {
        const std::string moment = text.substr(at + 1);
        entry.when = moment == "each" ? Entry::When::Each : Entry::When::Once;
        entry.at = moment == "each" ? 1 : readNumber(moment);
    }
    m_entries.push_back(entry);
    return entry.at > 0;
}

void ModemFaults::portOpened()
{
    for (Entry &entry : m_entries) {
        if (entry.when == Entry::When::Each && m_messagesOfPort >= entry.at)
            ++entry.at;
    }
    m_messagesOfPort = 0;
}

void ModemFaults::nextMessage()
{
    ++m_messages;
    ++m_messagesOfPort;
    m_drawn.reset();
    if (!m_isRandom || from(1, OneIn) != 1)
        return;
    const auto count = std::count_if(std::begin(Rows), std::end(Rows),
                                     [](const Row &row) { return row.ofMessage; });
    m_drawn = Rows[from(0, static_cast<unsigned>(count) - 1)].fault;
}

bool ModemFaults::isNow(const Entry &entry) const
{
    switch (entry.when) {
    case Entry::When::Always:
        return true;
    case Entry::When::Once:
        return m_messages == entry.at;
    case Entry::When::Each:
        return m_messagesOfPort == entry.at;
    }
    return false;
}

bool ModemFaults::has(Fault fault) const
{
    return m_drawn == fault || std::any_of(m_entries.begin(), m_entries.end(), [&](const auto &e) {
               return e.fault == fault && isNow(e);
           });
}

const char *ModemFaults::nameOfMoment() const
{
    std::optional<Fault> fault = m_drawn;
    for (const Entry &entry : m_entries) {
        if (entry.when != Entry::When::Always && isNow(entry))
            fault = entry.fault;
    }
    const auto row = std::find_if(std::begin(Rows), std::end(Rows),
                                  [&](const Row &known) { return known.fault == fault; });
    return row == std::end(Rows) ? nullptr : row->name;
}

size_t ModemFaults::pieceLength()
{
    if (has(Fault::Bytes))
        return 1;
    return has(Fault::Split) ? from(1, 40) : SIZE_MAX;
}

cat::Bytes ModemFaults::garbage()
{
    cat::Bytes bytes(from(1, 300));
    std::generate(bytes.begin(), bytes.end(),
                  [this] { return static_cast<uint8_t>(from(0, 255)); });
    return bytes;
}

unsigned ModemFaults::from(unsigned lowest, unsigned highest)
{
    return std::uniform_int_distribution<unsigned>(lowest, highest)(m_engine);
}
