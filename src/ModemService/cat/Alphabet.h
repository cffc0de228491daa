#ifndef CAT_ALPHABET_H
#define CAT_ALPHABET_H

#include <optional>
#include <string>

#include "Bytes.h"

// The GSM default alphabet with its extension table (3GPP TS 23.038 clause 6.2.1), and its packing.

namespace cat {

/// A byte a character.  Bytes above 7F become U+FFFD.
std::u16string fromDefaultAlphabet(ByteView codes);

/// The codes of a text, an escape before what is in the extension table.  Nothing where the
/// alphabet lacks a character.
std::optional<Bytes> toDefaultAlphabet(const std::u16string &text);

/// Seven-bit codes to bytes, from the first bit on (clause 6.1.2.1.1).
Bytes pack(ByteView codes);

/// The codes in packed bytes.  A last one that only the spare bits of the last byte make, and that
/// is zero, is none (clause 6.1.2.1.1 fills them with zeros).
Bytes unpack(ByteView packed);
/// `count` codes from the given bit on, or as many as are there.
Bytes unpack(ByteView packed, size_t firstBit, size_t count);

} // namespace cat

#endif
