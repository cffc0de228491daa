#ifndef TRAFFICCAPTURE_H
#define TRAFFICCAPTURE_H

#include <memory>
#include <string>

#include <pcap/pcap.h>

#include "PortReports.h"

/// A capture file of commands and answers, as protocol analysers open it: GSMTAP version 2 over UDP
/// port 4729, each packet a command and its answer.
class TrafficCapture {
public:
    /// Replaces the file.  On failure isOpen() is false.
    explicit TrafficCapture(const std::string &file);

    bool isOpen() const { return m_file != nullptr; }
    /// False where the file takes no more, a full disk most often.
    bool write(const PortTraffic &traffic);
    /// Why it failed.
    const Notice &error() const { return m_error; }

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
    Notice m_error;
};

#endif
