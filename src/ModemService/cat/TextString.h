#ifndef CAT_TEXTSTRING_H
#define CAT_TEXTSTRING_H

#include <optional>
#include <string>

#include "Bytes.h"

// Texts between UTF-8 and the codings of cards (ETSI TS 102 223 clause 8.15, 3GPP TS 23.038).

namespace cat {

/// How a text string is coded, with its data coding scheme.
enum class TextCoding : uint8_t {
    Packed = 0x00, ///< GSM default alphabet, seven bits a character
    Unpacked = 0x04, ///< GSM default alphabet, a byte a character
    Ucs2 = 0x08
};

/// The value of a text string data object: coding scheme and text.  An empty value is an empty
/// text.
std::string decodeTextString(ByteView value);

/// The value of a text string data object; empty for an empty text.  Nothing where the coding lacks
/// a character of the text.
std::optional<Bytes> encodeTextString(const std::string &utf8, TextCoding coding);

/// Alpha identifier (ETSI TS 102 221 annex A: GSM default alphabet, or UCS2 coded 0x80, 0x81,
/// 0x82).
std::string decodeAlpha(ByteView value);

} // namespace cat

#endif
