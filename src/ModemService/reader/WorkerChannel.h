#ifndef WORKERCHANNEL_H
#define WORKERCHANNEL_H

#include <memory>
#include <string>
#include <thread>

#include "CardChannel.h"
#include "toolkit/PortReports.h"

/// A channel on a thread of its own, for calls that may never come back: interrupt() sends away
/// whoever waits for one, and the thread is left behind with all that it needs.  A call that takes
/// long is told as a notice, and so is its end.
class WorkerChannel : public CardChannel {
public:
    /// `name` is what people call the reader until its own name is known.
    WorkerChannel(std::unique_ptr<CardChannel> channel, std::string name, PortReports &reports);
    ~WorkerChannel() override;

    Status connect() override;
    void disconnect() override;
    bool isPresent() override;
    bool passOver() override;
    Protocol protocol() const override { return m_protocol; }
    std::optional<cat::Bytes> transmit(cat::ByteView command) override;
    void interrupt() override;

private:
    enum class Task { None, Connect, Disconnect, LookForCard, PassOver, Transmit, End };
    struct Shared;

    bool carryOut(Task task);
    static void work(const std::shared_ptr<Shared> &shared);

    const std::shared_ptr<Shared> m_shared;
    std::string m_name;
    PortReports &m_reports;
    Protocol m_protocol = Protocol::T0;
    bool m_left = false;
    std::thread m_thread;
};

#endif
