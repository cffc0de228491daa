#ifndef CAT_BYTES_H
#define CAT_BYTES_H

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace cat {

using Bytes = std::vector<uint8_t>;

/// Bytes that somebody else owns.
class ByteView {
public:
    constexpr ByteView() = default;
    constexpr ByteView(const uint8_t *data, size_t size)
        : m_data(data)
        , m_size(size)
    {
    }
    ByteView(const Bytes &bytes)
        : m_data(bytes.data())
        , m_size(bytes.size())
    {
    }

    constexpr const uint8_t *data() const { return m_data; }
    constexpr size_t size() const { return m_size; }
    constexpr bool empty() const { return m_size == 0; }
    constexpr uint8_t operator[](size_t index) const { return m_data[index]; }
    constexpr const uint8_t *begin() const { return m_data; }
    constexpr const uint8_t *end() const { return m_data + m_size; }

    /// What lies from the offset on, at most `count` bytes; empty where there is nothing.
    constexpr ByteView part(size_t offset, size_t count = SIZE_MAX) const
    {
        return offset >= m_size ? ByteView()
                                : ByteView(m_data + offset, std::min(count, m_size - offset));
    }
    Bytes copy() const { return Bytes(begin(), end()); }

private:
    const uint8_t *m_data = nullptr;
    size_t m_size = 0;
};

} // namespace cat

#endif
