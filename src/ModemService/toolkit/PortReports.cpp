#include "PortReports.h"

#include <algorithm>
#include <atomic>
#include <cstring>

int PinRequest::newId()
{
    static std::atomic<int> last{0};
    return ++last;
}

Pin::Pin(const char *digits, size_t count)
{
    constexpr size_t Fewest = 4;
    const auto isDigit = [](char character) { return character >= '0' && character <= '9'; };
    if (count < Fewest || count > m_digits.size() || !std::all_of(digits, digits + count, isDigit))
        return;
    std::copy_n(digits, count, m_digits.begin());
    m_count = count;
}

Pin::Pin(const Pin &other) = default;

Pin &Pin::operator=(const Pin &other) = default;

Pin::~Pin()
{
    explicit_bzero(m_digits.data(), m_digits.size());
}
