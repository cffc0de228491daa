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

/// What stands in the spare bits behind packed codes (3GPP TS 23.038 clauses 6.1.2.1.1 and
/// 6.1.2.3.1).
constexpr uint8_t MessageFiller = 0x00;
constexpr uint8_t UssdFiller = 0x0d;

/// UTF-8 of a text in a coding, without a zero; what is no character becomes U+FFFD.
std::string decodeText(ByteView text, TextCoding coding, uint8_t filler = MessageFiller);

} // namespace cat

#endif
