#include "Callbacks.h"

#include <algorithm>
#include <fstream>
#include <string>
#include <type_traits>
#include <utility>

#include <unistd.h>

#include "ServiceStatus.h"

static_assert(std::is_same_v<Callbacks::Callback, MOVA_STKCallback> &&
              std::is_same_v<Callbacks::Callback, MOVA_DevMgrCallback>);

namespace {

// A terminal begins to wait for the card's next word when the call that answered has returned, and
// takes what came before for old.  A card may be quicker than that: so much time the terminal gets,
// and once more as long as its thread is still at work or, on a busy machine, waits for a
// processor.
constexpr std::chrono::milliseconds HoldBack{20};
// Whoever answers without a pause does not keep the card's word from others for ever.
constexpr std::chrono::milliseconds LongestHoldBack = 10 * HoldBack;
// A terminal that waits for the card's next word sees within 100 ms that there is one, and closes
// nothing until then.  So much time it gets before the card or the modem is told to be gone.
constexpr std::chrono::milliseconds BeforeGone = LongestHoldBack;

// Whether a thread of this process runs or waits for a processor, and does not sleep (proc(5)).
bool isRunning(pid_t thread)
{
    std::ifstream file("/proc/self/task/" + std::to_string(thread) + "/stat");
    std::string line;
    std::getline(file, line);
    const size_t name = line.rfind(')'); // which may have any characters
    return name != std::string::npos && line.compare(name, 3, ") R") == 0;
}

} // namespace

int32_t Callbacks::add(Kind kind, Callback callback)
{
    Lock lock(m_mutex);
    if (!callback)
        return StatusBadArgument;
    if (m_callbacks[kind] && m_callbacks[kind] != callback)
        return StatusRegistered;
    m_callbacks[kind] = callback;
    return StatusSuccess;
}

int32_t Callbacks::remove(Kind kind, Callback callback)
{
    Lock lock(m_mutex);
    if (!callback || m_callbacks[kind] != callback)
        return StatusNotRegistered;
    m_callbacks[kind] = nullptr;
    return StatusSuccess;
}

void Callbacks::waitForReturn(Kind kind)
{
    Lock lock(m_mutex);
    if (m_caller != std::this_thread::get_id())
        m_changed.wait(lock, [&] { return m_running != kind; });
}

void Callbacks::removeAll()
{
    Lock lock(m_mutex);
    m_callbacks.fill(nullptr);
    m_changed.notify_all();
}

void Callbacks::setListener(Listener listener)
{
    std::lock_guard<std::mutex> lock(m_listenerMutex);
    m_listener = std::move(listener);
}

Callbacks::Answering::Answering(Callbacks &callbacks)
    : m_callbacks(callbacks)
    , m_counts([&callbacks] {
        Lock lock(callbacks.m_mutex);
        const bool outside = callbacks.m_caller != std::this_thread::get_id();
        callbacks.m_answering += outside;
        return outside;
    }())
{
}

Callbacks::Answering::~Answering()
{
    if (!m_counts)
        return;
    Lock lock(m_callbacks.m_mutex);
    --m_callbacks.m_answering;
    m_callbacks.m_answerer = gettid();
    m_callbacks.m_heldUntil = std::max(m_callbacks.m_heldUntil, Clock::now() + HoldBack);
    m_callbacks.m_changed.notify_all();
}

void Callbacks::hurry()
{
    Lock lock(m_mutex);
    m_longest = std::min(m_longest, Clock::now() + HoldBack);
    m_changed.notify_all();
}

void Callbacks::holdBack()
{
    Lock lock(m_mutex);
    holdBack(lock);
}

void Callbacks::holdBack(Lock &lock)
{
    Clock::time_point now = Clock::now();
    m_longest = now + LongestHoldBack;
    while (m_callbacks[Command] && now < m_longest) {
        if (m_answering == 0 && now >= m_heldUntil) {
            if (m_answerer == 0 || !isRunning(m_answerer))
                break;
            m_heldUntil = now + HoldBack;
        }
        m_changed.wait_until(lock, m_answering != 0 ? m_longest : std::min(m_longest, m_heldUntil));
        now = Clock::now();
    }
    m_answerer = 0;
}

void Callbacks::callCommand(MOVA_STKNotifyData data, bool isCommand)
{
    Lock lock(m_mutex);
    const Callback callback = begin(Command, lock);
    if (!callback)
        return;
    if (isCommand) {
        std::lock_guard<std::mutex> listenerLock(m_listenerMutex);
        if (m_listener)
            m_listener(data.enStkType);
    }
    callback(0, &data);
    end(lock);
    m_toldAt = Clock::now();
}

void Callbacks::callDevice(int code)
{
    Lock lock(m_mutex);
    if (code != MOVA_DEV_EVENT_DEVICE_READY) {
        m_heldUntil = std::max(m_heldUntil, m_toldAt + BeforeGone);
        holdBack(lock);
    }
    const Callback callback = begin(Device, lock);
    if (!callback)
        return;
    callback(code, nullptr);
    end(lock);
}

// Lets the lock go, where there is a callback.
Callbacks::Callback Callbacks::begin(Kind kind, Lock &lock)
{
    if (!m_callbacks[kind])
        return nullptr;
    m_running = kind;
    m_caller = std::this_thread::get_id();
    const Callback callback = m_callbacks[kind];
    lock.unlock();
    return callback;
}

void Callbacks::end(Lock &lock)
{
    lock.lock();
    m_running.reset();
    m_caller = {};
    m_changed.notify_all();
}
