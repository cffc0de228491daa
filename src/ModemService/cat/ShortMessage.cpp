#include "DataObject.h"

#include <algorithm>

#include "Alphabet.h"
#include "Coding.h"
#include "Digits.h"

namespace cat {

namespace {

// First byte of an SMS-SUBMIT (3GPP TS 23.040 clause 9.2.2.2).
constexpr uint8_t MessageType = 0x03;
constexpr uint8_t Submit = 0x01;
constexpr uint8_t HasHeader = 0x40;

constexpr uint8_t Alphanumeric = 0x50; // type of number, clause 9.1.2.5

// Takes bytes from the front of what is left; too many make what is left empty.
class Cutter {
public:
    explicit Cutter(ByteView bytes)
        : m_rest(bytes)
    {
    }
    ByteView take(size_t count)
    {
        const ByteView taken = m_rest.part(0, count);
        m_complete = m_complete && taken.size() == count;
        m_rest = m_rest.part(count);
        return taken;
    }
    uint8_t takeByte()
    {
        const ByteView byte = take(1);
        return byte.empty() ? 0 : byte[0];
    }
    ByteView rest() const { return m_rest; }
    bool isComplete() const { return m_complete; }

private:
    ByteView m_rest;
    bool m_complete = true;
};

// Clause 9.2.3.3: none, enhanced, relative, absolute.
size_t validityPeriodBytes(uint8_t first)
{
    constexpr size_t Bytes[] = {0, 7, 1, 7};
    return Bytes[first >> 3 & 0x03];
}

std::string fromPacked(ByteView packed, size_t firstBit, size_t count)
{
    TextBuilder text(packed.size());
    addPacked(text, packed, firstBit, count);
    return text.take();
}

// Clause 9.1.2.5: the count is of semi-octets.
std::string destination(ByteView bytes, size_t count)
{
    if (bytes.empty())
        return {};
    if ((bytes[0] & TypeOfNumber) != Alphanumeric)
        return decodeNumber(bytes, count);
    return fromPacked(bytes.part(1), 0, count * 4 / 7);
}

// Clause 9.2.3.24; the length is in codes where they are packed, else in bytes, header included.
std::string userData(ByteView data, size_t length, TextCoding coding, bool hasHeader)
{
    const size_t header = hasHeader && !data.empty() ? data[0] + size_t(1) : 0;
    if (coding != TextCoding::Packed)
        return decodeText(data.part(0, length).part(header), coding);
    const size_t headerCodes = (header * 8 + 6) / 7; // text begins with a whole code
    if (headerCodes >= length)
        return {};
    return fromPacked(data, headerCodes * 7, length - headerCodes);
}

} // namespace

bool readSubmission(ByteView tpdu, Submission &submission)
{
    if (tpdu.empty())
        return false;
    Cutter cutter(tpdu);
    const uint8_t first = cutter.takeByte();
    if ((first & MessageType) != Submit)
        return true;
    cutter.take(1); // message reference
    const size_t count = cutter.takeByte();
    const ByteView address = cutter.take(1 + (count + 1) / 2);
    cutter.take(1); // protocol identifier
    const auto coding = messageCoding(cutter.takeByte());
    cutter.take(validityPeriodBytes(first));
    const size_t length = cutter.takeByte();
    if (!cutter.isComplete())
        return true;
    submission.address = destination(address, count);
    if (coding)
        submission.message = userData(cutter.rest(), length, *coding, first & HasHeader);
    return true;
}

} // namespace cat
