#include "WorkerChannel.h"

#include <chrono>
#include <condition_variable>
#include <cstring>
#include <mutex>
#include <utility>

#include "toolkit/Notices.h"

using cat::Bytes;
using Clock = std::chrono::steady_clock;

namespace {

constexpr std::chrono::seconds HangTime{3};
// An ordinary call gets so long even where nobody waits for it: then the card is given back before
// the next one is opened, which may be the same.
constexpr std::chrono::seconds Patience{1};
constexpr size_t LongestCommand = 261;

} // namespace

// The task, its argument and its result belong to the thread while there is a task, and to the
// channel otherwise.
struct WorkerChannel::Shared {
    std::mutex mutex;
    std::condition_variable given, done;
    Task task = Task::None;
    bool interrupted = false;
    bool left = false; // nobody waits any more

    std::unique_ptr<CardChannel> channel; // the thread's alone
    Bytes command;
    Status status;
    bool yes = false;
    Protocol protocol = Protocol::T0;
    std::optional<Bytes> answer;

    void carryOut()
    {
        switch (task) {
        case Task::Connect:
            status = channel->connect();
            protocol = channel->protocol();
            break;
        case Task::Disconnect:
            channel->disconnect();
            break;
        case Task::LookForCard:
            yes = channel->isPresent();
            break;
        case Task::PassOver:
            yes = channel->passOver();
            break;
        case Task::Transmit:
            answer = channel->transmit(command);
            explicit_bzero(command.data(), command.size()); // may be a PIN
            break;
        case Task::None:
        case Task::End:
            break;
        }
    }
};

WorkerChannel::WorkerChannel(std::unique_ptr<CardChannel> channel, std::string name,
                             PortReports &reports)
    : m_shared(std::make_shared<Shared>())
    , m_name(std::move(name))
    , m_reports(reports)
{
    m_shared->channel = std::move(channel);
    m_shared->command.reserve(LongestCommand);
    m_thread = std::thread(&WorkerChannel::work, m_shared);
}

WorkerChannel::~WorkerChannel()
{
    if (m_left)
        return;
    {
        const std::lock_guard<std::mutex> lock(m_shared->mutex);
        m_shared->task = Task::End;
        m_shared->given.notify_one();
    }
    m_thread.join();
}

void WorkerChannel::work(const std::shared_ptr<Shared> &shared)
{
    std::unique_lock<std::mutex> lock(shared->mutex);
    while (!shared->left) {
        shared->given.wait(lock, [&] { return shared->task != Task::None; });
        if (shared->task == Task::End)
            break;
        lock.unlock();
        shared->carryOut();
        lock.lock();
        shared->task = Task::None;
        shared->done.notify_one();
    }
    lock.unlock();
    shared->channel.reset(); // gives the card back
}

// False where the task was left behind.
bool WorkerChannel::carryOut(Task task)
{
    if (m_left)
        return false;
    const auto start = Clock::now();
    Shared &shared = *m_shared;
    std::unique_lock<std::mutex> lock(shared.mutex);
    shared.task = task;
    shared.given.notify_one();
    const auto isDone = [&] { return shared.task == Task::None; };
    const auto isOver = [&] { return isDone() || shared.interrupted; };
    const bool hangs = !shared.done.wait_until(lock, start + HangTime, isOver);
    if (hangs) {
        lock.unlock();
        m_reports.noticed(noticeOf(NoticeId::ReaderHangs, {m_name}));
        lock.lock();
        shared.done.wait(lock, isOver);
    }
    m_left = !shared.done.wait_until(lock, start + Patience, isDone);
    shared.left = m_left;
    lock.unlock();
    if (m_left)
        m_thread.detach();
    else if (hangs)
        m_reports.noticed(noticeOf(NoticeId::ReaderAnswers, {m_name}));
    return !m_left;
}

void WorkerChannel::interrupt()
{
    const std::lock_guard<std::mutex> lock(m_shared->mutex);
    m_shared->interrupted = true;
    m_shared->done.notify_one();
}

CardChannel::Status WorkerChannel::connect()
{
    if (!carryOut(Task::Connect))
        return {State::Mute, {}, noticeOf(NoticeId::ReaderHangs, {m_name})};
    m_protocol = m_shared->protocol;
    if (m_shared->status.state == State::Ready)
        m_name = m_shared->status.reader;
    return m_shared->status;
}

void WorkerChannel::disconnect()
{
    carryOut(Task::Disconnect);
}

bool WorkerChannel::isPresent()
{
    return carryOut(Task::LookForCard) && m_shared->yes;
}

bool WorkerChannel::passOver()
{
    return carryOut(Task::PassOver) && m_shared->yes;
}

std::optional<Bytes> WorkerChannel::transmit(cat::ByteView command)
{
    if (m_left)
        return std::nullopt;
    m_shared->command.assign(command.begin(), command.end());
    if (!carryOut(Task::Transmit))
        return std::nullopt;
    return std::move(m_shared->answer);
}
