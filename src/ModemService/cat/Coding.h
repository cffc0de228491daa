#ifndef CAT_CODING_H
#define CAT_CODING_H

#include <optional>
#include <string>

#include "TextString.h"

// Data coding schemes and texts of other data objects than text strings.

namespace cat {

/// Of a short message or a text string (3GPP TS 23.038 clause 4).  Nothing for compressed text.
std::optional<TextCoding> messageCoding(uint8_t scheme);

/// Of a USSD string or a broadcast (3GPP TS 23.038 clause 5).  Nothing for compressed text.
std::optional<TextCoding> broadcastCoding(uint8_t scheme);

/// UTF-8 of a text in a coding; characters that records cannot hold become U+FFFD.
std::string decodeText(ByteView text, TextCoding coding);

/// For people and records: well-formed UTF-8 without a zero.
std::string toUtf8WithoutZeros(std::u16string text);

} // namespace cat

#endif
