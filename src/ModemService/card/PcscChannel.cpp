#include "PcscChannel.h"

#include <algorithm>
#include <utility>

#include "Notices.h"

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

std::string quotedNames(const std::vector<CardHost::Reader> &readers)
{
    std::string names;
    for (const CardHost::Reader &reader : readers)
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
    const Status status = chooseReader();
    return status.state == State::Ready ? connectCard() : status;
}

CardChannel::Status PcscChannel::chooseReader()
{
    const CardHost::ReaderList list = m_context.readers();
    if (list.readers.empty())
        return {m_context.isEstablished() ? State::NoReader : State::NoDaemon, {}, *list.problem};
    const auto begins = [this](const CardHost::Reader &reader) {
        return reader.name.compare(0, m_nameStart.size(), m_nameStart) == 0;
    };
    const auto hasCard = [](const CardHost::Reader &reader) {
        return reader.state != CardHost::Reader::State::Empty;
    };
    auto chosen = std::find_if(list.readers.begin(), list.readers.end(), begins);
    if (chosen == list.readers.end())
        return {State::NoReader,
                {},
                noticeOf(NoticeId::NoSuchReader, {m_nameStart, quotedNames(list.readers)})};
    if (m_nameStart.empty()) {
        chosen = std::find_if(list.readers.begin(), list.readers.end(), hasCard);
        if (chosen == list.readers.end())
            chosen = list.readers.begin();
    }
    m_reader = chosen->name;
    return {State::Ready, m_reader, {}};
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
    setOwnReader({});
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
    if (!std::exchange(m_connected, false))
        return;
    SCardDisconnect(m_card, disposition);
    setOwnReader({});
}

bool PcscChannel::isPresent()
{
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
