#include "SerialPort.h"

#include <cerrno>
#include <filesystem>
#include <fstream>
#include <utility>

#include <fcntl.h>
#include <poll.h>
#include <sys/file.h>
#include <sys/ioctl.h>
#include <unistd.h>

SerialPort::~SerialPort()
{
    close();
}

SerialPort::State SerialPort::open(const std::string &device)
{
    close();
    m_descriptor = ::open(device.c_str(), O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC);
    if (m_descriptor < 0) {
        if (errno == EBUSY)
            return State::InUse;
        return errno == EACCES || errno == EPERM ? State::Denied : State::Missing;
    }
    // TIOCEXCL does not keep out the system's administrator, and the lock not who does not ask.
    if (flock(m_descriptor, LOCK_EX | LOCK_NB) != 0) {
        ::close(std::exchange(m_descriptor, -1));
        return State::InUse;
    }
    if (tcgetattr(m_descriptor, &m_before) != 0) {
        ::close(std::exchange(m_descriptor, -1));
        return State::NoPort;
    }
    ioctl(m_descriptor, TIOCEXCL);
    termios raw = m_before;
    cfmakeraw(&raw);
    raw.c_cflag |= CLOCAL | CREAD;
    raw.c_cflag &= ~static_cast<tcflag_t>(CRTSCTS | HUPCL);
    cfsetspeed(&raw, B115200);
    tcsetattr(m_descriptor, TCSANOW, &raw);
    tcflush(m_descriptor, TCIOFLUSH);
    return State::Open;
}

void SerialPort::close()
{
    if (m_descriptor < 0)
        return;
    // What a silent device does not take, the system would wait for half a minute.
    constexpr int Moments = 20, MomentMs = 5;
    int left = 0;
    for (int i = 0; i < Moments && ioctl(m_descriptor, TIOCOUTQ, &left) == 0 && left > 0; ++i)
        poll(nullptr, 0, MomentMs);
    if (left > 0)
        tcflush(m_descriptor, TCOFLUSH);
    tcsetattr(m_descriptor, TCSANOW, &m_before);
    ioctl(m_descriptor, TIOCNXCL);
    ::close(std::exchange(m_descriptor, -1));
}

bool SerialPort::read(std::string &bytes)
{
    char buffer[4096];
    constexpr size_t Most = 16 * 1024; // of a device that never stops
    while (bytes.size() < Most) {
        const ssize_t count = ::read(m_descriptor, buffer, sizeof buffer);
        if (count > 0) {
            bytes.append(buffer, static_cast<size_t>(count));
            if (static_cast<size_t>(count) < sizeof buffer)
                return true; // that was all
            continue;
        }
        return count < 0 && (errno == EAGAIN || errno == EINTR);
    }
    return true;
}

bool SerialPort::write(std::string_view bytes)
{
    constexpr int PatienceMs = 200; // of a device whose buffer is full
    while (!bytes.empty()) {
        const ssize_t count = ::write(m_descriptor, bytes.data(), bytes.size());
        if (count >= 0) {
            bytes.remove_prefix(static_cast<size_t>(count));
            continue;
        }
        if (errno == EINTR)
            continue;
        pollfd writable{m_descriptor, POLLOUT, 0};
        if (errno != EAGAIN || poll(&writable, 1, PatienceMs) != 1)
            return false;
    }
    return true;
}

std::string programsWith(const std::string &device)
{
    namespace fs = std::filesystem;
    std::error_code error;
    const fs::path target = fs::canonical(device, error);
    if (error)
        return {};
    std::string names;
    for (const auto &process : fs::directory_iterator("/proc", error)) {
        const std::string id = process.path().filename().string();
        const bool isProcess = id.find_first_not_of("0123456789") == std::string::npos;
        if (!isProcess || id == std::to_string(getpid()))
            continue;
        std::error_code denied; // other people's processes do not show what they have open
        for (const auto &file : fs::directory_iterator(process.path() / "fd", denied)) {
            if (fs::read_symlink(file.path(), denied) != target)
                continue;
            std::string name;
            std::ifstream(process.path() / "comm") >> name;
            constexpr size_t MostOfName = 15; // the rest the system cuts off
            const std::string program =
                fs::read_symlink(process.path() / "exe", denied).filename().string();
            if (name.size() == MostOfName && program.compare(0, MostOfName, name) == 0)
                name = program;
            names += (names.empty() ? "" : ", ") + name;
            break;
        }
    }
    return names;
}
