#include "MbimFrame.h"

#include <utility>

using cat::Bytes;
using cat::ByteView;

namespace mbim {

namespace {

constexpr size_t HeaderSize = 12; // type, length, transaction
constexpr size_t FragmentHeaderSize = 8; // how many there are, and which this is
constexpr size_t LongestMessage = 65536;

bool hasFragments(Type type)
{
    return type == Type::Command || type == Type::CommandDone || type == Type::IndicateStatus;
}

} // namespace

Writer &Writer::number(uint32_t value)
{
    for (int shift = 0; shift < 32; shift += 8)
        m_bytes.push_back(static_cast<uint8_t>(value >> shift));
    return *this;
}

Writer &Writer::bytes(ByteView bytes)
{
    m_bytes.insert(m_bytes.end(), bytes.begin(), bytes.end());
    return *this;
}

Writer &Writer::text(const std::string &ascii)
{
    m_texts.emplace_back(m_bytes.size(), ascii);
    return number(0).number(static_cast<uint32_t>(2 * ascii.size()));
}

Bytes Writer::take()
{
    for (const auto &[place, text] : m_texts) {
        const Bytes offset = Writer().number(static_cast<uint32_t>(m_bytes.size())).take();
        std::copy(offset.begin(), offset.end(), m_bytes.begin() + static_cast<ptrdiff_t>(place));
        for (const char letter : text) {
            m_bytes.push_back(static_cast<uint8_t>(letter));
            m_bytes.push_back(0);
        }
        m_bytes.resize((m_bytes.size() + 3) / 4 * 4);
    }
    return std::exchange(m_bytes, {});
}

uint32_t numberAt(ByteView bytes, size_t offset)
{
    const ByteView part = bytes.part(offset, 4);
    uint32_t value = 0;
    for (size_t at = part.size(); at-- > 0;)
        value = value << 8 | part[at];
    return value;
}

std::optional<Command> Command::read(ByteView body)
{
    constexpr size_t Fixed = 28; // service, CID, kind, length
    if (body.size() < Fixed || numberAt(body, 24) != body.size() - Fixed)
        return std::nullopt;
    Command command;
    std::copy_n(body.begin(), command.service.size(), command.service.begin());
    command.cid = numberAt(body, 16);
    command.isSet = numberAt(body, 20) == 1;
    command.information = body.part(Fixed).copy();
    return command;
}

std::vector<Bytes> framed(const Message &message, size_t longest)
{
    const bool inFragments = hasFragments(message.type);
    const size_t headers = HeaderSize + (inFragments ? FragmentHeaderSize : 0);
    const size_t room = inFragments ? longest - headers : message.body.size();
    const size_t count =
        room == 0 ? 1 : std::max<size_t>(1, (message.body.size() + room - 1) / room);
    std::vector<Bytes> frames;
    for (size_t index = 0; index < count; ++index) {
        const ByteView part = ByteView(message.body).part(index * room, room);
        Writer writer;
        writer.number(static_cast<uint32_t>(message.type))
            .number(static_cast<uint32_t>(headers + part.size()))
            .number(message.transaction);
        if (inFragments)
            writer.number(static_cast<uint32_t>(count)).number(static_cast<uint32_t>(index));
        frames.push_back(writer.bytes(part).take());
    }
    return frames;
}

void Parser::add(ByteView bytes)
{
    m_bytes.insert(m_bytes.end(), bytes.begin(), bytes.end());
}

std::optional<Message> Parser::next()
{
    while (m_bytes.size() >= HeaderSize) {
        const size_t length = numberAt(m_bytes, 4);
        Message message{static_cast<Type>(numberAt(m_bytes, 0)), numberAt(m_bytes, 8), {}};
        const size_t headers = HeaderSize + (hasFragments(message.type) ? FragmentHeaderSize : 0);
        if (length < headers || length > LongestMessage) {
            // Nobody knows where the next one begins.
            clear();
            m_error = {message.transaction, LengthMismatch};
            return std::nullopt;
        }
        if (m_bytes.size() < length)
            return std::nullopt;
        const Bytes whole(m_bytes.begin(), m_bytes.begin() + static_cast<ptrdiff_t>(length));
        m_bytes.erase(m_bytes.begin(), m_bytes.begin() + static_cast<ptrdiff_t>(length));
        message.body = ByteView(whole).part(headers).copy();
        if (!hasFragments(message.type))
            return message;
        Fragments &fragments = m_fragments[message.transaction];
        if (fragments.next == 0)
            fragments.count = numberAt(whole, HeaderSize);
        if (numberAt(whole, HeaderSize + 4) != fragments.next++ ||
            fragments.body.size() > LongestMessage) {
            m_fragments.erase(message.transaction);
            m_error = {message.transaction, OutOfSequence};
            continue;
        }
        fragments.body.insert(fragments.body.end(), message.body.begin(), message.body.end());
        if (fragments.next < fragments.count)
            continue;
        message.body = std::move(fragments.body);
        m_fragments.erase(message.transaction);
        return message;
    }
    return std::nullopt;
}

std::optional<std::pair<uint32_t, Parser::Error>> Parser::takeError()
{
    return std::exchange(m_error, std::nullopt);
}

void Parser::clear()
{
    m_bytes.clear();
    m_fragments.clear();
}

} // namespace mbim
