#include "Pcsc.h"

#include <algorithm>
#include <mutex>

#include "toolkit/Notices.h"

namespace {

std::mutex ownReaderMutex;

std::string &ownReaderName()
{
    static std::string &name = *new std::string; // outlives every thread
    return name;
}

bool isOwnReader(const std::string &name)
{
    std::lock_guard<std::mutex> lock(ownReaderMutex);
    return ownReaderName() == name;
}

Reader::State readerState(const std::string &name, DWORD state)
{
    using State = Reader::State;
    if (!(state & SCARD_STATE_PRESENT))
        return State::Empty;
    if ((state & SCARD_STATE_EXCLUSIVE) && !isOwnReader(name))
        return State::InUse;
    return state & SCARD_STATE_MUTE ? State::Mute : State::Card;
}

} // namespace

void setOwnReader(const std::string &name)
{
    std::lock_guard<std::mutex> lock(ownReaderMutex);
    ownReaderName() = name;
}

void dropOwnReader(const std::string &name)
{
    std::lock_guard<std::mutex> lock(ownReaderMutex);
    if (ownReaderName() == name)
        ownReaderName().clear();
}

PcscContext::~PcscContext()
{
    release();
}

bool PcscContext::establish()
{
    if (m_established && SCardIsValidContext(m_handle) == SCARD_S_SUCCESS) {
        // Valid for the library even where the daemon is another one by now.
        DWORD size = 0;
        const LONG result = SCardListReaders(m_handle, nullptr, nullptr, &size);
        if (result == SCARD_S_SUCCESS || result == SCARD_E_NO_READERS_AVAILABLE)
            return true;
    }
    release();
    m_established =
        SCardEstablishContext(SCARD_SCOPE_SYSTEM, nullptr, nullptr, &m_handle) == SCARD_S_SUCCESS;
    return m_established;
}

void PcscContext::release()
{
    if (m_established)
        SCardReleaseContext(m_handle);
    m_established = false;
}

std::vector<std::string> PcscContext::readerNames() const
{
    DWORD size = 0;
    if (SCardListReaders(m_handle, nullptr, nullptr, &size) != SCARD_S_SUCCESS)
        return {};
    std::string list(size, '\0');
    if (SCardListReaders(m_handle, nullptr, list.data(), &size) != SCARD_S_SUCCESS)
        return {};
    // Each name ends with a zero, the list with an empty name.
    std::vector<std::string> names;
    for (size_t at = 0; at < list.size() && list[at]; at += names.back().size() + 1)
        names.emplace_back(list.c_str() + at);
    return names;
}

ReaderList PcscContext::readers()
{
    m_seen.clear();
    ReaderList list;
    if (!establish()) {
        list.problem = noticeOf(NoticeId::NoDaemon);
        return list;
    }
    const std::vector<std::string> names = readerNames();
    m_count = names.size();
    for (const std::string &name : names) {
        SCARD_READERSTATE state{};
        state.szReader = name.c_str();
        if (SCardGetStatusChange(m_handle, 0, &state, 1) != SCARD_S_SUCCESS)
            continue;
        list.readers.push_back({name, readerState(name, state.dwEventState)});
        m_seen.push_back({name, state.dwEventState});
    }
    if (list.readers.empty())
        list.problem = noticeOf(NoticeId::NoReader);
    return list;
}

bool PcscContext::waitForChange() const
{
    constexpr DWORD Second = 1000, Minute = 60 * Second;
    // More are refused.  Who is left out is asked after again and again.
    constexpr size_t MostReaders = PCSCLITE_MAX_READERS_CONTEXTS - 1;
    const size_t watched = std::min(m_seen.size(), MostReaders);
    std::vector<SCARD_READERSTATE> states(watched + 1);
    for (size_t i = 0; i < watched; ++i) {
        states[i].szReader = m_seen[i].name.c_str();
        states[i].dwCurrentState = m_seen[i].state;
    }
    // Its change is a reader that comes or goes; the upper half is their number.
    states.back().szReader = R"(\\?PnP?\Notification)";
    states.back().dwCurrentState = static_cast<DWORD>(m_count << 16);
    const LONG result = SCardGetStatusChange(m_handle, watched < m_count ? Second : Minute,
                                             states.data(), static_cast<DWORD>(states.size()));
    return result == SCARD_S_SUCCESS || result == LONG(SCARD_E_TIMEOUT) ||
        result == LONG(SCARD_E_CANCELLED);
}
