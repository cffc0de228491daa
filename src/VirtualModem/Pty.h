#ifndef PTY_H
#define PTY_H

#include <optional>
#include <string>

#include "cat/Bytes.h"

/// The modem's end of a pseudo-terminal in raw mode.  Others open the other end as a device.
class Pty {
public:
    /// `link`: a symbolic link to the device, for as long as there is one; none where it is empty.
    explicit Pty(std::string link);
    ~Pty();
    Pty(const Pty &) = delete;
    Pty &operator=(const Pty &) = delete;

    /// Throws std::runtime_error.
    void plugIn();
    /// Whoever has it open finds it gone.
    void unplug();
    bool isThere() const { return m_master >= 0; }
    /// The link, or else the device itself.
    const std::string &name() const { return m_link.empty() ? m_device : m_link; }

    /// To poll: the end itself only while somebody has it open, or it would be ready all the time.
    int end() const { return m_isOpen ? m_master : -1; }
    int watch() const { return m_watch; }

    /// Whether somebody has opened it since it was last asked for; to be asked when watch() is
    /// ready.
    bool wasOpened();
    /// What came; nothing when the last who had it open has closed it.
    std::optional<cat::Bytes> read();
    /// How much of it there was room for.
    size_t write(cat::ByteView bytes);

private:
    const std::string m_link;
    std::string m_device;
    int m_master = -1;
    int m_watch = -1; // tells of openings
    bool m_isOpen = false;
};

#endif
