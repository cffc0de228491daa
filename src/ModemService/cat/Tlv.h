#ifndef CAT_TLV_H
#define CAT_TLV_H

#include <optional>

#include "Bytes.h"

namespace cat {

/// Length of a data object and the bytes that say so (ETSI TS 101 220 clause 7.1.2): 00 to 7F,
/// 81 xx, 82 xx xx.  Nothing where there is none.
struct TlvLength {
    size_t value = 0;
    size_t bytes = 0;
};
std::optional<TlvLength> readLength(ByteView bytes);
/// Appends the shortest form.
void appendLength(Bytes &bytes, size_t length);

/// One comprehension-TLV data object (ETSI TS 101 220 clause 7.1.1).
struct Tlv {
    uint16_t tag = 0; ///< without the comprehension bit; the same in its form of three bytes
    bool required = false; ///< the comprehension bit
    ByteView value;
    ByteView whole; ///< tag and length included
    size_t offset = 0; ///< of the tag
};

/// Goes through data objects that follow one another.
class TlvReader {
public:
    /// `offset` is where the bytes begin, for the objects' offsets.
    explicit TlvReader(ByteView bytes, size_t offset = 0)
        : m_bytes(bytes)
        , m_offset(offset)
    {
    }

    /// Nothing at the end, which padding makes too (00 and FF are no tags), and where the bytes are
    /// no data object.
    std::optional<Tlv> next();
    bool atEnd() const { return m_position == m_bytes.size(); }
    size_t offset() const { return m_offset + m_position; }

private:
    ByteView m_bytes;
    size_t m_offset;
    size_t m_position = 0;
};

} // namespace cat

#endif
