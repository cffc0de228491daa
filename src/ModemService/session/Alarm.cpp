#include "Alarm.h"

#include <algorithm>
#include <cstdint>

#include <poll.h>
#include <sys/eventfd.h>
#include <unistd.h>

Alarm::Alarm()
    : m_bell(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK))
{
}

Alarm::~Alarm()
{
    close(m_bell);
}

void Alarm::ring()
{
    const uint64_t once = 1;
    [[maybe_unused]] const ssize_t written = write(m_bell, &once, sizeof once);
}

void Alarm::wait(Time until, int descriptor)
{
    using namespace std::chrono;
    constexpr hours Longest{1}; // the clock's last moment overflows
    const nanoseconds left =
        std::clamp<nanoseconds>(until - steady_clock::now(), nanoseconds(0), Longest);
    const timespec time{duration_cast<seconds>(left).count(), (left % seconds(1)).count()};
    pollfd events[] = {{m_bell, POLLIN, 0}, {descriptor, POLLIN, 0}};
    if (ppoll(events, 2, &time, nullptr) <= 0 || !events[0].revents)
        return;
    uint64_t rings = 0;
    [[maybe_unused]] const ssize_t count = read(m_bell, &rings, sizeof rings);
}
