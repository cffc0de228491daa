#include "ReaderLink.h"

#include <csignal>
#include <utility>

#include <netdb.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <sys/signalfd.h>
#include <sys/socket.h>
#include <unistd.h>

ReaderLink::ReaderLink(std::string host, std::string port)
    : m_host(std::move(host))
    , m_port(std::move(port))
{
    sigset_t signals;
    sigemptyset(&signals);
    for (const int number : {SIGINT, SIGTERM, SIGUSR1})
        sigaddset(&signals, number);
    sigprocmask(SIG_BLOCK, &signals, nullptr);
    m_signals = signalfd(-1, &signals, SFD_CLOEXEC);
}

ReaderLink::~ReaderLink()
{
    disconnect();
    close(m_signals);
}

bool ReaderLink::connect()
{
    addrinfo hints{};
    hints.ai_socktype = SOCK_STREAM;
    addrinfo *addresses = nullptr;
    if (getaddrinfo(m_host.c_str(), m_port.c_str(), &hints, &addresses) != 0)
        return false;
    for (const addrinfo *address = addresses; address && !isConnected();
         address = address->ai_next) {
        m_socket = socket(address->ai_family, address->ai_socktype | SOCK_CLOEXEC, 0);
        if (isConnected() && ::connect(m_socket, address->ai_addr, address->ai_addrlen) != 0)
            disconnect();
    }
    freeaddrinfo(addresses);
    const int now = 1;
    setsockopt(m_socket, IPPROTO_TCP, TCP_NODELAY, &now, sizeof now);
    return isConnected();
}

void ReaderLink::disconnect()
{
    if (isConnected())
        close(std::exchange(m_socket, -1));
}

std::optional<cat::Bytes> ReaderLink::receive()
{
    if (!waitForInput())
        return std::nullopt;
    uint8_t length[2];
    if (!readExactly(length, sizeof length))
        return std::nullopt;
    cat::Bytes message(static_cast<size_t>(length[0] << 8 | length[1]));
    if (!readExactly(message.data(), message.size()))
        return std::nullopt;
    return message;
}

void ReaderLink::send(cat::ByteView message, size_t shown)
{
    cat::Bytes bytes = {static_cast<uint8_t>(message.size() >> 8),
                        static_cast<uint8_t>(message.size())};
    bytes.insert(bytes.end(), message.begin(), message.part(0, shown).end());
    // What a reader that is gone does not take is found out by the next receive().
    for (size_t sent = 0; sent < bytes.size();) {
        const ssize_t count = ::send(m_socket, &bytes[sent], bytes.size() - sent, MSG_NOSIGNAL);
        if (count <= 0)
            return;
        sent += static_cast<size_t>(count);
    }
}

void ReaderLink::wait(std::chrono::milliseconds time)
{
    pollfd signal = {m_signals, POLLIN, 0};
    if (m_signal == Signal::None)
        poll(&signal, 1, static_cast<int>(time.count()));
}

ReaderLink::Signal ReaderLink::takeSignal()
{
    pollfd ready = {m_signals, POLLIN, 0};
    signalfd_siginfo info;
    if (m_signal == Signal::None && poll(&ready, 1, 0) == 1 &&
        read(m_signals, &info, sizeof info) == sizeof info)
        m_signal = info.ssi_signo == SIGUSR1 ? Signal::TakeOut : Signal::End;
    return m_signal == Signal::End ? m_signal : std::exchange(m_signal, Signal::None);
}

bool ReaderLink::readExactly(uint8_t *bytes, size_t count)
{
    for (size_t got = 0; got < count;) {
        // The reader sends length and content one by one, and holds the content back until the
        // length was acknowledged.
        const int now = 1;
        setsockopt(m_socket, IPPROTO_TCP, TCP_QUICKACK, &now, sizeof now);
        const ssize_t read = recv(m_socket, bytes + got, count - got, 0);
        if (read <= 0) {
            disconnect();
            return false;
        }
        got += static_cast<size_t>(read);
    }
    return true;
}

// False when a signal came first.
bool ReaderLink::waitForInput()
{
    pollfd inputs[] = {{m_socket, POLLIN, 0}, {m_signals, POLLIN, 0}};
    poll(inputs, 2, -1);
    return inputs[1].revents == 0;
}
