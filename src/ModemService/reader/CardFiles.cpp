#include "CardFiles.h"

#include <utility>

using cat::ByteView;

namespace {

struct DataObject {
    uint8_t tag = 0;
    ByteView value;
};

// Takes the first data object away, cut where the bytes end; nothing when none is left.
std::optional<DataObject> takeObject(ByteView &bytes)
{
    if (bytes.size() < 2)
        return std::nullopt;
    size_t header = 2;
    size_t length = bytes[1];
    if (length == 0x81 && bytes.size() > 2) {
        header = 3;
        length = bytes[2];
    }
    const DataObject object{bytes[0], bytes.part(header, length)};
    bytes = bytes.part(header + length);
    return object;
}

ByteView findObject(ByteView bytes, uint8_t tag)
{
    while (const auto object = takeObject(bytes)) {
        if (object->tag == tag)
            return object->value;
    }
    return {};
}

// PIN status template (ETSI TS 102 221 clause 11.1.1.4.10 and 9.5.2): a bit for each key reference
// behind it, the highest first, says whether that PIN is in use; a usage qualifier before a key
// reference, whether the user is to be asked for it at all.
std::optional<uint8_t> pinInUse(ByteView pinStatus)
{
    constexpr uint8_t LastApplicationPin = 0x08;
    constexpr uint8_t UniversalPin = 0x11;
    constexpr uint8_t UseForVerification = 0x08;
    const ByteView enabled = findObject(pinStatus, 0x90);
    size_t bit = 0;
    bool universal = false;
    bool wanted = true; // by the qualifier that came last
    while (const auto object = takeObject(pinStatus)) {
        if (object->tag == 0x95)
            wanted = !object->value.empty() && (object->value[0] & UseForVerification);
        if (object->tag != 0x83)
            continue;
        const uint8_t key = object->value.empty() ? 0 : object->value[0];
        const bool used = std::exchange(wanted, true) && bit / 8 < enabled.size() &&
            (enabled[bit / 8] & (0x80 >> (bit % 8)));
        ++bit;
        if (used && key >= 1 && key <= LastApplicationPin)
            return key;
        universal |= used && key == UniversalPin;
    }
    return universal ? std::optional<uint8_t>(UniversalPin) : std::nullopt;
}

} // namespace

FileParameters readFileParameters(ByteView selectAnswer)
{
    FileParameters parameters;
    const ByteView fcp = findObject(selectAnswer, 0x62);
    const ByteView descriptor = findObject(fcp, 0x82);
    if (descriptor.size() >= 5) {
        parameters.recordLength = descriptor[3];
        parameters.records = descriptor[4];
    }
    const ByteView pinStatus = findObject(fcp, 0xc6);
    if (!pinStatus.empty())
        parameters.pin = pinInUse(pinStatus);
    return parameters;
}

cat::Bytes applicationIdentifier(ByteView record)
{
    return findObject(findObject(record, 0x61), 0x4f).copy();
}

Chv1 readChv1(ByteView selectAnswer)
{
    constexpr size_t Characteristics = 13;
    constexpr size_t Status = 18;
    if (selectAnswer.size() <= Status)
        return {};
    return {(selectAnswer[Characteristics] & 0x80) == 0, selectAnswer[Status] & 0x0f};
}
