#ifndef SERIALPORT_H
#define SERIALPORT_H

#include <string>
#include <string_view>

#include <termios.h>

/// A serial device in raw mode, for this program alone; gets its settings back at the end.
class SerialPort {
public:
    enum class State {
        Open,
        Missing, ///< there is no such device
        Denied, ///< this user may not use it
        InUse, ///< another program keeps it for itself
        NoPort ///< it is there, and no serial device
    };

    SerialPort() = default;
    ~SerialPort();
    SerialPort(const SerialPort &) = delete;
    SerialPort &operator=(const SerialPort &) = delete;

    /// 115200 baud, eight bits, no parity, where the device has a speed at all.
    State open(const std::string &device);
    void close();
    bool isOpen() const { return m_descriptor >= 0; }
    int descriptor() const { return m_descriptor; }

    /// What has come, without waiting.  False: the device is gone.
    bool read(std::string &bytes);
    /// False: the device is gone, or takes nothing any more.
    bool write(std::string_view bytes);

private:
    int m_descriptor = -1;
    termios m_before{};
};

/// The names of the other programs that have the device open, as far as this user may know.
std::string programsWith(const std::string &device);

#endif
