#include "PlayedCard.h"

#include <algorithm>
#include <climits>
#include <utility>

#include "cat/Hex.h"

using cat::Bytes;
using cat::ByteView;

// Status words of ETSI TS 102 221 clause 10.2 and TS 51.011 clause 9.4.
namespace {

constexpr uint16_t Done = 0x9000;
constexpr uint16_t Busy = 0x9300;
constexpr uint16_t PinBlocked = 0x6983;
constexpr uint16_t ChvWrong = 0x9804;
constexpr uint16_t ChvBlocked = 0x9840;
constexpr uint16_t WrongLength = 0x6700;
constexpr uint16_t FileNotFound = 0x6a82;
constexpr uint16_t FileNotFound2g = 0x9404;
constexpr uint16_t RecordNotFound = 0x6a83;
constexpr uint16_t InstructionUnknown = 0x6d00;
constexpr uint16_t ClassUnknown = 0x6e00;

constexpr uint16_t MasterFile = 0x3f00;
constexpr uint16_t DirectoryFile = 0x2f00; // EF_DIR
constexpr uint16_t GsmDirectory = 0x7f20;
constexpr size_t DirectoryRecord = 0x26;
constexpr size_t MostMismatches = 100;

// 3G application, code 1002: USIM (ETSI TS 101 220 annex E).
const Bytes UsimAid = {0xa0, 0x00, 0x00, 0x00, 0x87, 0x10, 0x02, 0xff,
                       0x49, 0xff, 0x05, 0x89, 0x00, 0x00, 0x01, 0x00};
const Bytes MoreTime = {0xd0, 0x09, 0x81, 0x03, 0x01, 0x02, 0x00, 0x82, 0x02, 0x81, 0x82};

Bytes words(uint16_t status)
{
    return {static_cast<uint8_t>(status >> 8), static_cast<uint8_t>(status)};
}

Bytes operator+(Bytes left, const Bytes &right)
{
    left.insert(left.end(), right.begin(), right.end());
    return left;
}

Bytes object(uint8_t tag, const Bytes &value)
{
    return Bytes{tag, static_cast<uint8_t>(value.size())} + value;
}

bool same(ByteView one, ByteView other)
{
    return std::equal(one.begin(), one.end(), other.begin(), other.end());
}

} // namespace

struct PlayedCard::Command {
    uint8_t cla = 0, ins = 0, p1 = 0, p2 = 0;
    ByteView data;
    std::optional<size_t> wanted; // length of the answer, 256 for a zero

    static std::optional<Command> read(ByteView bytes)
    {
        if (bytes.size() < 4)
            return std::nullopt;
        Command command{bytes[0], bytes[1], bytes[2], bytes[3], {}, {}};
        if (bytes.size() == 5)
            command.wanted = bytes[4] ? bytes[4] : 256;
        if (bytes.size() <= 5)
            return command;
        command.data = bytes.part(5, bytes[4]);
        if (bytes[4] == 0 || bytes.size() < 5u + bytes[4] || bytes.size() > 6u + bytes[4])
            return std::nullopt;
        if (bytes.size() == 6u + bytes[4])
            command.wanted = bytes[bytes.size() - 1] ? bytes[bytes.size() - 1] : 256;
        return command;
    }
};

PlayedCard::PlayedCard(CardFile file)
    : m_file(std::move(file))
    , m_triesLeft(m_file.pin ? m_file.pin->tries : 0)
{
    const auto list = [this](const Sequence &sequence) {
        Play play{&sequence};
        for (; play.step(); ++play.next)
            m_steps[place(play)];
    };
    std::for_each(m_file.start.begin(), m_file.start.end(), list);
    for (const auto &entry : m_file.menu)
        list(entry.second);
}

bool PlayedCard::isComplete() const
{
    const auto complete = [this](const Sequence &sequence) {
        for (Play play{&sequence}; play.step(); ++play.next) {
            if (!play.step()->optional && m_steps.at(place(play)).ok == 0)
                return false;
        }
        return true;
    };
    return std::all_of(m_file.start.begin(), m_file.start.end(), complete) &&
        std::all_of(m_file.menu.begin(), m_file.menu.end(),
                    [&](const auto &entry) { return complete(entry.second); });
}

void PlayedCard::reset()
{
    // The reset that a REFRESH asked for.
    if (m_play && m_fetched && m_play->step()->reset) {
        ++m_steps[place(*m_play)].ok;
        advance();
    }
    m_play.reset();
    m_waiting.clear();
    m_endless.reset();
    m_forGetResponse.clear();
    m_fetched = m_verified = m_profileSeen = false;
    m_selected = MasterFile;
}

void PlayedCard::playEndless(std::optional<int> times)
{
    m_endless = times.value_or(INT_MAX);
}

Bytes PlayedCard::answer(ByteView bytes)
{
    const auto command = Command::read(bytes);
    if (!command)
        return words(WrongLength);
    // Only the very next command may ask for what was to be fetched.
    const Bytes kept = std::exchange(m_forGetResponse, {});
    return command->ins == 0xc0 ? getResponse(*command, kept) : dispatch(*command);
}

Bytes PlayedCard::dispatch(const Command &command)
{
    const bool isToolkit = command.ins == 0x10 || command.ins == 0xc2 || command.ins == 0x12 ||
        command.ins == 0x14 || command.ins == 0xf2;
    const uint8_t family = is2g() ? 0xa0 : isToolkit ? 0x80 : 0x00;
    if (command.cla != family)
        return words(ClassUnknown);
    if (m_file.kind == CardFile::Kind::Bank && command.ins != 0xa4)
        return words(InstructionUnknown);
    const std::pair<uint8_t, Bytes (PlayedCard::*)(const Command &)> rows[] = {
        {0xa4, is2g() ? &PlayedCard::select2g : &PlayedCard::select},
        {0xb2, &PlayedCard::readRecord},
        {0x20, &PlayedCard::verify},
        {0x10, &PlayedCard::terminalProfile},
        {0xc2, &PlayedCard::envelope},
        {0x12, &PlayedCard::fetch},
        {0x14, &PlayedCard::terminalResponse},
        {0xf2, &PlayedCard::status},
    };
    for (const auto &[instruction, function] : rows) {
        if (command.ins == instruction)
            return (this->*function)(command);
    }
    return words(InstructionUnknown);
}

// ---- Files ----

Bytes PlayedCard::select(const Command &command)
{
    const bool byName = command.p1 == 0x04;
    const Bytes data = command.data.copy();
    // The status of PIN 1 is told by the master file (ETSI TS 102 221 clause 11.1.1.4.6).
    const Bytes pins = object(0xc6,
                              object(0x90, {uint8_t(m_file.pin ? 0x80 : 0)}) +
                                  object(0x83, {0x01}) + object(0x83, {0x81}));
    Bytes fcp;
    if (m_file.kind == CardFile::Kind::Bank)
        return words(FileNotFound);
    if (byName) {
        const bool fits = data.size() >= 7 && data.size() <= UsimAid.size() &&
            std::equal(data.begin(), data.end(), UsimAid.begin());
        if (!fits)
            return words(FileNotFound);
        fcp = object(0x82, {0x78, 0x21}) + object(0x84, UsimAid) + object(0x8a, {0x05}) + pins;
    } else if (data == words(MasterFile)) {
        fcp = object(0x82, {0x78, 0x21}) + object(0x83, data) + object(0x8a, {0x05}) + pins;
        m_selected = MasterFile;
    } else if (data == words(DirectoryFile)) {
        fcp = object(0x82, {0x42, 0x21, 0x00, DirectoryRecord, 0x01}) + object(0x83, data) +
            object(0x8a, {0x05}) + object(0x80, {0x00, DirectoryRecord});
        m_selected = DirectoryFile;
    } else {
        return words(FileNotFound);
    }
    if (command.p2 == 0x0c)
        return words(Done);
    return outgoing(command, object(0x62, fcp));
}

Bytes PlayedCard::select2g(const Command &command)
{
    const Bytes data = command.data.copy();
    if (data != words(MasterFile) && data != words(GsmDirectory))
        return words(FileNotFound2g);
    m_selected = data == words(MasterFile) ? MasterFile : GsmDirectory;
    return outgoing(command, aboutDirectory());
}

// DF_GSM, or the master file (TS 51.011 clause 9.2.1).
Bytes PlayedCard::aboutDirectory() const
{
    const uint8_t kind = m_selected == MasterFile ? 0x01 : 0x02;
    const uint8_t characteristics = m_file.pin ? 0x00 : 0x80; // whether the PIN is switched off
    const auto tries = static_cast<uint8_t>(0x80 | m_triesLeft);
    return Bytes(4) + words(m_selected) +
        Bytes{kind, 0, 0, 0, 0, 0, 9, characteristics, 1, 8, 2, 0, tries, 0x8a, 0x83, 0x8a};
}

Bytes PlayedCard::readRecord(const Command &command)
{
    if (m_selected != DirectoryFile || command.p1 != 1)
        return words(RecordNotFound);
    Bytes record = object(0x61, object(0x4f, UsimAid) + object(0x50, {'U', 'S', 'I', 'M'}));
    record.resize(DirectoryRecord, 0xff);
    return outgoing(command, record);
}

Bytes PlayedCard::verify(const Command &command)
{
    const uint16_t blocked = is2g() ? ChvBlocked : PinBlocked;
    const auto wrong = [this] {
        return words(is2g() ? ChvWrong : static_cast<uint16_t>(0x63c0 | m_triesLeft));
    };
    if (!m_file.pin || (m_verified && command.data.empty()))
        return words(Done);
    if (m_triesLeft == 0)
        return words(blocked);
    if (command.data.empty())
        return wrong();
    Bytes right(m_file.pin->digits.begin(), m_file.pin->digits.end());
    right.resize(8, 0xff);
    m_verified = same(command.data, right);
    m_triesLeft = m_verified ? m_file.pin->tries : m_triesLeft - 1;
    if (m_verified)
        return words(Done);
    return m_triesLeft == 0 ? words(blocked) : wrong();
}

// ---- Answers with data ----

Bytes PlayedCard::outgoing(const Command &command, Bytes data)
{
    const auto length = static_cast<uint8_t>(data.size());
    if (m_file.oneByOne && !command.data.empty()) {
        m_forGetResponse = std::move(data);
        return {static_cast<uint8_t>(is2g() ? 0x9f : 0x61), length};
    }
    if (m_file.oneByOne && command.wanted.value_or(256) != data.size())
        return {static_cast<uint8_t>(is2g() ? 0x67 : 0x6c), length};
    if (command.wanted.value_or(256) < data.size())
        return {0x6c, length};
    return data + words(Done);
}

Bytes PlayedCard::getResponse(const Command &command, Bytes kept)
{
    if (kept.empty())
        return words(WrongLength);
    if (command.wanted.value_or(256) > kept.size()) {
        m_forGetResponse = std::move(kept);
        return {0x6c, static_cast<uint8_t>(m_forGetResponse.size())};
    }
    kept.resize(*command.wanted);
    return kept + words(Done);
}

// What is done says whether a proactive command waits (ETSI TS 102 223 clause 6.2).
Bytes PlayedCard::done()
{
    const Bytes *const command = pending();
    return command && !m_fetched ? Bytes{0x91, static_cast<uint8_t>(command->size())} : words(Done);
}

// ---- Toolkit ----

const Bytes *PlayedCard::pending() const
{
    if (m_endless && *m_endless > 0)
        return &MoreTime;
    return m_play ? &m_play->step()->command : nullptr;
}

Bytes PlayedCard::terminalProfile(const Command &command)
{
    if (m_file.profile && !m_file.profile->matches(command.data))
        mismatch("TERMINAL PROFILE", m_file.profile->text(), cat::toHex(command.data));
    const bool first = !std::exchange(m_profileSeen, true);
    if (first && (!m_file.pin || m_verified) && !m_file.start.empty())
        begin(m_file.start[std::min(m_start, m_file.start.size() - 1)]);
    return done();
}

Bytes PlayedCard::envelope(const Command &command)
{
    if (m_play || m_endless.value_or(0) > 0)
        return words(Busy);
    const Bytes data = command.data.copy();
    // Menu selection, clause 7.2.
    const Bytes selection = {0xd3, 0x07, 0x82, 0x02, 0x01, 0x81, 0x90, 0x01};
    if (data.size() == 9 && same(ByteView(data).part(0, 8), selection)) {
        const auto item = m_file.menu.find(data[8]);
        if (item == m_file.menu.end())
            mismatch("menu selection", "an item of the menu", cat::toHex(data));
        else
            begin(item->second);
    } else if (!resume(Step::Kind::Envelope, data)) {
        mismatch("ENVELOPE", "none, or another one", cat::toHex(data));
    }
    return done();
}

Bytes PlayedCard::status(const Command &command)
{
    if (!m_play)
        resume(Step::Kind::Status, {});
    if (!is2g() && command.p2 == 0x0c)
        return done();
    const Bytes about = aboutDirectory();
    const Bytes answer = outgoing(command, about);
    return answer.size() == 2 ? answer : about + done();
}

Bytes PlayedCard::fetch(const Command &command)
{
    const Bytes *const fetched = pending();
    if (!fetched || m_fetched) {
        mismatch("FETCH", "no FETCH: nothing is pending", "one");
        return words(0x6f00);
    }
    const Bytes answer = outgoing(command, *fetched);
    m_fetched = answer.size() > 2;
    return answer;
}

Bytes PlayedCard::terminalResponse(const Command &command)
{
    if (!m_fetched) {
        mismatch("TERMINAL RESPONSE", "none: no command was fetched", cat::toHex(command.data));
        return words(Done);
    }
    m_fetched = false;
    if (m_endless && *m_endless > 0)
        --*m_endless;
    else if (m_play)
        compare(*m_play, command.data);
    return done();
}

void PlayedCard::compare(const Play &play, ByteView got)
{
    const std::vector<HexPattern> &expected = play.step()->expected;
    const auto fits = [&](const HexPattern &pattern) { return pattern.matches(got); };
    if (std::any_of(expected.begin(), expected.end(), fits)) {
        ++m_steps[place(play)].ok;
        advance();
        return;
    }
    std::string wanted;
    for (const HexPattern &pattern : expected)
        wanted += (wanted.empty() ? "" : " or ") + pattern.text();
    ++m_steps[place(play)].mismatches;
    mismatch(place(play), wanted.empty() ? "a reset" : wanted, cat::toHex(got));
    m_play.reset();
}

void PlayedCard::begin(const Sequence &sequence)
{
    m_play = Play{&sequence};
    m_fetched = false;
    m_play->next = static_cast<size_t>(-1);
    advance();
}

// To the next step; what waits for the terminal lets other sequences be played meanwhile.
void PlayedCard::advance()
{
    ++m_play->next;
    const Step *const step = m_play->step();
    if (step && step->kind == Step::Kind::Send)
        return;
    const bool isStart = m_play->sequence->name.compare(0, 5, "start") == 0;
    if (step)
        m_waiting.push_back(*m_play);
    else if (isStart)
        ++m_start;
    m_play.reset();
}

bool PlayedCard::resume(Step::Kind kind, ByteView envelope)
{
    const auto waits = [&](const Play &play) {
        const Step &step = *play.step();
        return step.kind == kind &&
            (kind == Step::Kind::Status ||
             std::any_of(step.expected.begin(), step.expected.end(),
                         [&](const HexPattern &pattern) { return pattern.matches(envelope); }));
    };
    const auto found = std::find_if(m_waiting.begin(), m_waiting.end(), waits);
    if (found == m_waiting.end())
        return false;
    ++m_steps[place(*found)].ok;
    m_play = *found;
    m_waiting.erase(found);
    advance();
    return true;
}

std::string PlayedCard::place(const Play &play) const
{
    return play.sequence->name + ", step " + std::to_string(play.next + 1);
}

void PlayedCard::mismatch(const std::string &place, const std::string &expected,
                          const std::string &got)
{
    ++m_mismatchCount;
    if (m_mismatches.size() < MostMismatches)
        m_mismatches.push_back(m_file.file + ": " + place + ": expected " + expected + ", got " +
                               got);
}
