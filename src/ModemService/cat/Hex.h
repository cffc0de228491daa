#ifndef CAT_HEX_H
#define CAT_HEX_H

#include <optional>
#include <string>

#include "Bytes.h"

namespace cat {

/// Upper-case digits, without blanks.
std::string toHex(ByteView bytes);

/// The bytes of a text of hexadecimal digits, with blanks anywhere between pairs.
std::optional<Bytes> fromHex(const std::string &text);

} // namespace cat

#endif
