#include "PcscChannel.h"

#include <algorithm>
#include <utility>

#include "toolkit/Notices.h"

using cat::Bytes;

namespace {

struct Trouble {
    LONG error;
    CardChannel::State state;
    NoticeId notice;
};

const Trouble Troubles[] = {
    {LONG(SCARD_E_NO_SMARTCARD), CardChannel::State::NoCard, NoticeId::NoCard},
    {LONG(SCARD_W_REMOVED_CARD), CardChannel::State::NoCard, NoticeId::NoCard},
    {LONG(SCARD_W_UNPOWERED_CARD), CardChannel::State::Mute, NoticeId::CardMute},
    {LONG(SCARD_W_UNRESPONSIVE_CARD), CardChannel::State::Mute, NoticeId::CardMute},
    {LONG(SCARD_E_SHARING_VIOLATION), CardChannel::State::InUse, NoticeId::CardInUse},
    {LONG(SCARD_E_UNKNOWN_READER), CardChannel::State::NoReader, NoticeId::ReaderGone},
    {LONG(SCARD_E_READER_UNAVAILABLE), CardChannel::State::NoReader, NoticeId::ReaderGone},
};

// The daemon counts cards that come and go in the upper half of a reader's state.
bool presence(SCARDCONTEXT context, const std::string &reader, DWORD &changes)
{
    SCARD_READERSTATE state{};
    state.szReader = reader.c_str();
    if (SCardGetStatusChange(context, 0, &state, 1) != SCARD_S_SUCCESS)
        return false;
    changes = state.dwEventState >> 16;
    return state.dwEventState & SCARD_STATE_PRESENT;
}

std::string quotedNames(const std::vector<Reader> &readers)
{
    std::string names;
    for (const Reader &reader : readers)
        names += (names.empty() ? "\"" : ", \"") + reader.name + '"';
    return names;
}

} // namespace

PcscChannel::PcscChannel(std::string nameStart)
    : m_nameStart(std::move(nameStart))
    , m_answer(MAX_BUFFER_SIZE_EXTENDED)
{
}

PcscChannel::~PcscChannel()
{
    disconnect();
}

CardChannel::Status PcscChannel::connect()
{
    if (m_connected) {
        DWORD protocol = 0;
        const LONG result =
            SCardReconnect(m_card, SCARD_SHARE_EXCLUSIVE, SCARD_PROTOCOL_T0 | SCARD_PROTOCOL_T1,
                           SCARD_RESET_CARD, &protocol);
        if (result == SCARD_S_SUCCESS) {
            m_protocol = protocol == SCARD_PROTOCOL_T1 ? Protocol::T1 : Protocol::T0;
            return {State::Ready, m_reader, {}};
        }
        giveBack(SCARD_RESET_CARD);
    }
    const ReaderList list = m_context.readers();
    if (list.readers.empty())
        return {m_context.isEstablished() ? State::NoReader : State::NoDaemon, {}, *list.problem};
    const std::vector<std::string> names = candidates(list.readers);
    if (names.empty())
        return {State::NoReader,
                {},
                noticeOf(NoticeId::NoSuchReader, {m_nameStart, quotedNames(list.readers)})};
    Status status = connectFirst(names);
    if (m_nameStart.empty())
        status.chosenAmong = list.readers.size();
    return status;
}

// What is in the way of the first is told where none can be connected.
CardChannel::Status PcscChannel::connectFirst(const std::vector<std::string> &readers)
{
    std::optional<Status> first;
    for (const std::string &reader : readers) {
        m_reader = reader;
        Status status = connectCard();
        if (status.state == State::Ready)
            return status;
        if (!first)
            first = std::move(status);
    }
    return *first;
}

std::vector<std::string> PcscChannel::candidates(const std::vector<Reader> &readers) const
{
    std::vector<std::string> names, empty;
    for (const Reader &reader : readers) {
        if (reader.name.compare(0, m_nameStart.size(), m_nameStart) != 0)
            continue;
        if (!m_nameStart.empty())
            return {reader.name};
        if (reader.state == Reader::State::Empty)
            empty.push_back(reader.name);
        else if (!isPassedOver(reader.name))
            names.push_back(reader.name);
    }
    if (names.empty() && !empty.empty())
        return {empty.front()};
    return names.empty() && m_nameStart.empty() ? std::vector{readers.front().name} : names;
}

bool PcscChannel::isPassedOver(const std::string &reader) const
{
    const auto passed = m_passedOver.find(reader);
    DWORD changes = 0;
    return passed != m_passedOver.end() && presence(m_context.handle(), reader, changes) &&
        changes == passed->second;
}

bool PcscChannel::passOver()
{
    if (!m_nameStart.empty())
        return false;
    m_passedOver[m_reader] = m_changes;
    const ReaderList list = m_context.readers();
    return std::any_of(list.readers.begin(), list.readers.end(), [this](const auto &reader) {
        return reader.state != Reader::State::Empty && !isPassedOver(reader.name);
    });
}

CardChannel::Status PcscChannel::connectCard()
{
    setOwnReader(m_reader); // before anybody can see that the card is in use
    DWORD protocol = 0;
    const LONG result = SCardConnect(m_context.handle(), m_reader.c_str(), SCARD_SHARE_EXCLUSIVE,
                                     SCARD_PROTOCOL_T0 | SCARD_PROTOCOL_T1, &m_card, &protocol);
    if (result == SCARD_S_SUCCESS && presence(m_context.handle(), m_reader, m_changes)) {
        m_connected = true;
        m_protocol = protocol == SCARD_PROTOCOL_T1 ? Protocol::T1 : Protocol::T0;
        return {State::Ready, m_reader, {}};
    }
    if (result == SCARD_S_SUCCESS)
        SCardDisconnect(m_card, SCARD_UNPOWER_CARD);
    dropOwnReader(m_reader);
    const LONG error = result == SCARD_S_SUCCESS ? LONG(SCARD_W_REMOVED_CARD) : result;
    for (const Trouble &trouble : Troubles) {
        if (trouble.error == error)
            return {trouble.state, {}, noticeOf(trouble.notice, {m_reader})};
    }
    return {
        State::Mute, {}, noticeOf(NoticeId::ReaderFails, {m_reader, pcsc_stringify_error(error)})};
}

void PcscChannel::disconnect()
{
    giveBack(SCARD_UNPOWER_CARD);
}

void PcscChannel::giveBack(DWORD disposition)
{
    if (!m_connected)
        return;
    if (isPresent())
        presence(m_context.handle(), m_reader, m_changes);
    m_connected = false;
    SCardDisconnect(m_card, disposition);
    dropOwnReader(m_reader);
}

bool PcscChannel::isPresent()
{
    // While it is connected the card itself is asked; the count is for one that was given back.
    if (m_connected)
        return SCardStatus(m_card, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr) ==
            SCARD_S_SUCCESS;
    DWORD changes = 0;
    return presence(m_context.handle(), m_reader, changes) && changes == m_changes;
}

std::optional<Bytes> PcscChannel::transmit(cat::ByteView command)
{
    if (!m_connected)
        return std::nullopt;
    const SCARD_IO_REQUEST *pci = m_protocol == Protocol::T1 ? SCARD_PCI_T1 : SCARD_PCI_T0;
    DWORD size = static_cast<DWORD>(m_answer.size());
    if (SCardTransmit(m_card, pci, command.data(), static_cast<DWORD>(command.size()), nullptr,
                      m_answer.data(), &size) != SCARD_S_SUCCESS)
        return std::nullopt;
    return cat::ByteView(m_answer.data(), size).copy();
}
