#ifndef TEXT_H
#define TEXT_H

#include <cstddef>
#include <cstdint>
#include <string>

#include "session/ProactiveCommand.h"

// Text between files (UTF-8), records (UTF-16 in the processor's byte order) and lines for people.

/// Bytes or code units that are no character become U+FFFD.
std::u16string toUtf16(const std::string &utf8);
std::string toUtf8(const std::u16string &utf16);
/// A character, which is none of UTF-16's halves.
void appendUtf8(std::string &utf8, char32_t character);
/// The text up to its closing zero; a null pointer gives an empty text.
std::string toUtf8(const uint16_t *zeroTerminated);

/// Copies the text into an array of `capacity` code units, cut at a whole character, and closes it
/// with a zero; the rest of the array is zero.  An unterminated text is repeated until the array is
/// full and has no zero.
void copyText(const CommandText &text, uint16_t *units, size_t capacity);

template <size_t Capacity> void copyText(const CommandText &text, uint16_t (&units)[Capacity])
{
    copyText(text, units, Capacity);
}

/// The text on one line: control characters and line separators as \n, \t or \u001b.
std::string oneLine(const std::string &utf8);

/// The text cut at a whole character to at most `bytes` bytes, with an ellipsis where it was cut.
std::string shortened(const std::string &utf8, size_t bytes);

#endif
