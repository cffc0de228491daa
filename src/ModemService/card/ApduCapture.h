#ifndef APDUCAPTURE_H
#define APDUCAPTURE_H

#include <memory>
#include <string>

#include <pcap/pcap.h>

#include "CardListener.h"

/// A capture file of commands and answers, as protocol analysers open it: GSMTAP version 2 over UDP
/// port 4729, each packet a command and its answer.
class ApduCapture {
public:
    /// Replaces the file.  On failure isOpen() is false.
    explicit ApduCapture(const std::string &file);

    bool isOpen() const { return m_file != nullptr; }
    /// False where the file takes no more, a full disk most often.
    bool write(const ApduTraffic &traffic);
    /// Why it failed.
    const CardHost::Notice &error() const { return m_error; }

private:
    bool flush();
    bool fail();

    struct Close {
        void operator()(pcap_t *capture) const { pcap_close(capture); }
        void operator()(pcap_dumper_t *file) const { pcap_dump_close(file); }
    };
    const std::string m_name;
    std::unique_ptr<pcap_t, Close> m_capture;
    std::unique_ptr<pcap_dumper_t, Close> m_file;
    CardHost::Notice m_error;
};

#endif
