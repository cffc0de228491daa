#ifndef PCSC_H
#define PCSC_H

#include <string>
#include <vector>

#include <winscard.h>

#include "Readers.h"

// What everything that speaks with the smart-card daemon shares.

/// A connection to the daemon, made when it is needed and again after it broke.
class PcscContext {
public:
    PcscContext() = default;
    ~PcscContext();
    PcscContext(const PcscContext &) = delete;
    PcscContext &operator=(const PcscContext &) = delete;

    /// Connects where there is no connection that works.  False: there is no daemon.
    bool establish();
    bool isEstablished() const { return m_established; }
    void release();
    SCARDCONTEXT handle() const { return m_handle; }

    /// The readers with what is in them, in the daemon's order.
    ReaderList readers();
    /// Waits until something is different from what readers() said last, for at most a minute;
    /// SCardCancel() ends the wait.  False: the daemon does not wait, and readers() may say why.
    bool waitForChange() const;

private:
    struct Seen {
        std::string name;
        DWORD state;
    };

    std::vector<std::string> readerNames() const;

    SCARDCONTEXT m_handle = 0;
    bool m_established = false;
    std::vector<Seen> m_seen; // by readers()
    size_t m_count = 0; // of readers then, with those of which nothing could be seen
};

/// Which reader this process keeps for itself.
void setOwnReader(const std::string &name);
/// It keeps that one no longer.
void dropOwnReader(const std::string &name);

#endif
