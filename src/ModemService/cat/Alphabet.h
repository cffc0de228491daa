#ifndef CAT_ALPHABET_H
#define CAT_ALPHABET_H

#include <optional>
#include <string>

#include "Bytes.h"
#include "TextBuilder.h"

// The GSM default alphabet with its extension table (3GPP TS 23.038 clause 6.2.1), and its packing.

namespace cat {

/// A byte a character.  Bytes above 7F become U+FFFD.
void addCodes(TextBuilder &text, ByteView codes);

/// `count` packed codes from the given bit on, or as many as are there.
void addPacked(TextBuilder &text, ByteView packed, size_t firstBit, size_t count);

/// The number of packed codes.  A last one that only the spare bits of the last byte make, and that
/// is the filler, is none.
size_t countPacked(ByteView packed, uint8_t filler);

/// The codes of a text, an escape before what is in the extension table.  Nothing where the
/// alphabet lacks a character.
std::optional<Bytes> toDefaultAlphabet(const std::u16string &text);

/// Seven-bit codes to bytes, from the first bit on (clause 6.1.2.1.1).
Bytes pack(ByteView codes);

} // namespace cat

#endif
