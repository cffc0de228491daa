#include "Pty.h"

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <stdexcept>
#include <utility>

#include <fcntl.h>
#include <sys/inotify.h>
#include <sys/stat.h>
#include <termios.h>
#include <unistd.h>

namespace {

[[noreturn]] void fail(const std::string &what)
{
    throw std::runtime_error(what + ": " + std::strerror(errno));
}

} // namespace

Pty::Pty(std::string link)
    : m_link(std::move(link))
{
}

Pty::~Pty()
{
    unplug();
}

void Pty::plugIn()
{
    m_master = posix_openpt(O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC);
    if (m_master < 0 || grantpt(m_master) != 0 || unlockpt(m_master) != 0)
        fail("a pseudo-terminal cannot be had");
    m_device = ptsname(m_master);
    // On Linux the settings are those of the other end.
    termios settings{};
    tcgetattr(m_master, &settings);
    cfmakeraw(&settings);
    tcsetattr(m_master, TCSANOW, &settings);
    m_watch = inotify_init1(IN_NONBLOCK | IN_CLOEXEC);
    if (m_watch < 0 || inotify_add_watch(m_watch, m_device.c_str(), IN_OPEN) < 0)
        fail(m_device + " cannot be watched");
    if (m_link.empty())
        return;
    // One that was left behind; whatever else has this name is nobody's to remove.
    struct stat old { };
    if (lstat(m_link.c_str(), &old) == 0 && S_ISLNK(old.st_mode))
        unlink(m_link.c_str());
    if (symlink(m_device.c_str(), m_link.c_str()) != 0)
        fail(m_link + " cannot be made a link");
}

void Pty::unplug()
{
    if (!isThere())
        return;
    char target[64] = {};
    if (readlink(m_link.c_str(), target, sizeof target - 1) > 0 && m_device == target)
        unlink(m_link.c_str());
    close(std::exchange(m_watch, -1));
    close(std::exchange(m_master, -1));
    m_isOpen = false;
}

bool Pty::wasOpened()
{
    char events[4096];
    if (::read(m_watch, events, sizeof events) <= 0)
        return false;
    return !std::exchange(m_isOpen, true);
}

std::optional<cat::Bytes> Pty::read()
{
    cat::Bytes bytes(4096);
    const ssize_t count = ::read(m_master, bytes.data(), bytes.size());
    if (count > 0) {
        bytes.resize(static_cast<size_t>(count));
        return bytes;
    }
    if (count < 0 && (errno == EAGAIN || errno == EINTR))
        return cat::Bytes();
    m_isOpen = false;
    // What nobody has read is not for the next who opens it.
    tcflush(m_master, TCIOFLUSH);
    return std::nullopt;
}

size_t Pty::write(cat::ByteView bytes)
{
    const ssize_t count = ::write(m_master, bytes.data(), bytes.size());
    return count > 0 ? static_cast<size_t>(count) : 0;
}
