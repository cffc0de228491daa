#ifndef MBIMFRAME_H
#define MBIMFRAME_H

#include <array>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "cat/Bytes.h"

/// Messages of the Mobile Broadband Interface Model, version 1.0, as they stand on the wire.
namespace mbim {

enum class Type : uint32_t {
    Open = 1,
    Close = 2,
    Command = 3,
    HostError = 4,
    OpenDone = 0x80000001,
    CloseDone = 0x80000002,
    CommandDone = 0x80000003,
    FunctionError = 0x80000004,
    IndicateStatus = 0x80000007,
};

using Uuid = std::array<uint8_t, 16>;

/// Little-endian numbers, and bytes, one behind the other.
class Writer {
public:
    Writer &number(uint32_t value);
    Writer &bytes(cat::ByteView bytes);
    /// Offset and length of a text of UTF-16, which stands behind all numbers.
    Writer &text(const std::string &ascii);
    /// With the texts.
    cat::Bytes take();

private:
    cat::Bytes m_bytes;
    std::vector<std::pair<size_t, std::string>> m_texts; // where the offset stands
};

/// Zero, and empty, where the bytes end before.
uint32_t numberAt(cat::ByteView bytes, size_t offset);

struct Message {
    Type type = Type::Open;
    uint32_t transaction = 0;
    cat::Bytes body; ///< behind the header; behind that of fragments where the type has one
};

/// COMMAND, and what answers it or comes by itself.
struct Command {
    Uuid service{};
    uint32_t cid = 0;
    bool isSet = false;
    cat::Bytes information;

    static std::optional<Command> read(cat::ByteView body);
};

/// The message in fragments of at most so many bytes, headers included.
std::vector<cat::Bytes> framed(const Message &message, size_t longest);

/// Makes messages of a stream of bytes.
class Parser {
public:
    enum Error { TimeoutFragment = 1, OutOfSequence, LengthMismatch, DuplicatedId, NotOpened };

    void add(cat::ByteView bytes);
    /// The next one that is whole.
    std::optional<Message> next();
    /// What was wrong since it was last asked for, with its transaction.
    std::optional<std::pair<uint32_t, Error>> takeError();
    void clear();

private:
    struct Fragments {
        uint32_t count = 0, next = 0;
        cat::Bytes body;
    };

    cat::Bytes m_bytes;
    std::map<uint32_t, Fragments> m_fragments; // by transaction
    std::optional<std::pair<uint32_t, Error>> m_error;
};

} // namespace mbim

#endif
