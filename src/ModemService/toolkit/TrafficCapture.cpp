#include "TrafficCapture.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <sys/time.h>

#include "Notices.h"

using cat::Bytes;

namespace {

constexpr int LongestPacket = 0xffff;
constexpr size_t IpHeader = 20;
constexpr uint16_t GsmtapPort = 4729;

void put16(Bytes &bytes, size_t at, size_t value)
{
    bytes[at] = static_cast<uint8_t>(value >> 8);
    bytes[at + 1] = static_cast<uint8_t>(value);
}

// From this machine to itself: IPv4 (RFC 791), UDP without a checksum (RFC 768), GSMTAP.
Bytes packet(const PortTraffic &traffic)
{
    Bytes bytes{0x45, 0, 0,   0, 0, 0, 0x40, 0, 64, 17, 0, 0, 127, 0,
                0,    1, 127, 0, 0, 1, 0,    0, 0,  0,  0, 0, 0,   0};
    constexpr uint8_t Version = 2, HeaderWords = 4, TypeSim = 4;
    bytes.insert(bytes.end(),
                 {Version, HeaderWords, TypeSim, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0});
    bytes.insert(bytes.end(), traffic.command.begin(), traffic.command.end());
    bytes.insert(bytes.end(), traffic.response.begin(), traffic.response.end());
    bytes.resize(std::min<size_t>(bytes.size(), LongestPacket));

    put16(bytes, 2, bytes.size());
    put16(bytes, IpHeader, GsmtapPort);
    put16(bytes, IpHeader + 2, GsmtapPort);
    put16(bytes, IpHeader + 4, bytes.size() - IpHeader);
    uint32_t sum = 0;
    for (size_t i = 0; i < IpHeader; i += 2)
        sum += uint32_t(bytes[i] << 8 | bytes[i + 1]);
    sum = (sum & 0xffff) + (sum >> 16);
    put16(bytes, 10, static_cast<uint16_t>(~((sum & 0xffff) + (sum >> 16))));
    return bytes;
}

} // namespace

TrafficCapture::TrafficCapture(const std::string &file)
    : m_name(file)
    , m_capture(pcap_open_dead(DLT_RAW, LongestPacket))
{
    std::FILE *stream = m_capture ? std::fopen(file.c_str(), "wbe") : nullptr;
    if (stream)
        m_file.reset(pcap_dump_fopen(m_capture.get(), stream));
    if (!m_file)
        fail();
    else if (!flush())
        m_file.reset();
}

bool TrafficCapture::write(const PortTraffic &traffic)
{
    const Bytes bytes = packet(traffic);
    pcap_pkthdr header{};
    gettimeofday(&header.ts, nullptr);
    header.caplen = header.len = static_cast<bpf_u_int32>(bytes.size());
    pcap_dump(reinterpret_cast<u_char *>(m_file.get()), &header, bytes.data());
    return flush();
}

bool TrafficCapture::flush()
{
    const bool flushed = pcap_dump_flush(m_file.get()) == 0;
    return (flushed && !std::ferror(pcap_dump_file(m_file.get()))) || fail();
}

bool TrafficCapture::fail()
{
    m_error = noticeOf(NoticeId::CaptureFailed, {m_name, std::strerror(errno)});
    return false;
}
