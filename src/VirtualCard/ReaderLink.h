#ifndef READERLINK_H
#define READERLINK_H

#include <chrono>
#include <optional>
#include <string>

#include "cat/Bytes.h"

/// The socket of the virtual reader, and the signals of the process.
///
/// The reader listens; a card in it is a connection.  A message is its length, two bytes with the
/// high one first, and so many bytes.
class ReaderLink {
public:
    enum class Signal { None, End, TakeOut };

    /// From here on SIGINT and SIGTERM are Signal::End, SIGUSR1 is Signal::TakeOut.
    ReaderLink(std::string host, std::string port);
    ~ReaderLink();
    ReaderLink(const ReaderLink &) = delete;
    ReaderLink &operator=(const ReaderLink &) = delete;

    /// Tries once.
    bool connect();
    bool isConnected() const { return m_socket >= 0; }
    void disconnect();

    /// The next message; nothing when a signal came, or the reader is gone (then it is
    /// disconnected).
    std::optional<cat::Bytes> receive();
    /// `shown`: how many bytes of it are sent, where it stops in the middle.
    void send(cat::ByteView message, size_t shown = SIZE_MAX);

    /// Waits for so long, or for a signal.
    void wait(std::chrono::milliseconds time);
    /// The signal that came, once; an end stays.
    Signal takeSignal();

private:
    bool readExactly(uint8_t *bytes, size_t count);
    bool waitForInput();

    const std::string m_host, m_port;
    int m_socket = -1;
    int m_signals = -1;
    Signal m_signal = Signal::None;
};

#endif
