#ifndef CAT_DIGITS_H
#define CAT_DIGITS_H

#include <optional>
#include <string>

#include "Bytes.h"

namespace cat {

/// Semi-octets, the lower one first, up to a filler (3GPP TS 31.102 clause 4.4.2.3): digits, '*',
/// '#', 'p' for a pause, '?' for a wild digit, '&' for an expansion.
std::string decodeDigits(ByteView bytes, size_t count = SIZE_MAX);

/// The same behind a byte with type of number and numbering plan (3GPP TS 24.008 clause 10.5.4.7),
/// which must be there: '+' before what is international.
std::string decodeNumber(ByteView bytes, size_t count = SIZE_MAX);

/// Two decimal digits, the tens in the lower half (3GPP TS 23.040 clause 9.1.2.3).
std::optional<unsigned> decodeDecimal(uint8_t byte);
uint8_t encodeDecimal(unsigned number);

constexpr uint8_t TypeOfNumber = 0x70; ///< its bits in that byte

} // namespace cat

#endif
