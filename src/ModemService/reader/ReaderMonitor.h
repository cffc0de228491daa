#ifndef READERMONITOR_H
#define READERMONITOR_H

#include <condition_variable>
#include <functional>
#include <mutex>
#include <thread>

#include "Readers.h"
#include "Pcsc.h"

using ReaderListener = std::function<void(const ReaderList &)>;

/// Watches the smart-card readers on a thread of its own, and publishes them there: as they are,
/// and again whenever something changes.
class ReaderMonitor {
public:
    explicit ReaderMonitor(ReaderListener publish);
    /// No call of the function runs after this.
    ~ReaderMonitor();

private:
    void run();

    const ReaderListener m_publish;
    PcscContext m_context; // of the thread
    std::mutex m_mutex;
    std::condition_variable m_changed;
    SCARDCONTEXT m_waiting = 0; // what the thread waits with; 0 while it does not
    bool m_stop = false;
    bool m_ended = false;
    std::thread m_thread;
};

#endif
