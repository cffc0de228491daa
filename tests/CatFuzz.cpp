// Random bytes into the toolkit codec.  As a program of its own it makes them from good commands:
//   CatFuzz [SECONDS [SEED]]
// With clang's libFuzzer it is the function that is fuzzed (cmake -DSTK_FUZZ=ON).

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <random>

#include "CatCommands.h"
#include "TestCatJson.h"
#include "Text.h"
#include "toolkit/CommandBridge.h"
#include "cat/Command.h"
#include "cat/Response.h"
#include "cat/TextString.h"

namespace {

using cat::Bytes;
using cat::ByteView;

ByteView g_input;

void check(bool holds, const char *what)
{
    if (holds)
        return;
    std::fprintf(stderr, "CatFuzz: %s; input:", what);
    for (const uint8_t byte : g_input)
        std::fprintf(stderr, " %02x", byte);
    std::fputc('\n', stderr);
    std::abort();
}

void checkText(const std::string &text)
{
    check(text.find('\0') == std::string::npos, "a zero in a text");
    check(toUtf8(toUtf16(text)) == text, "a text that is no UTF-8");
    // Three bytes of UTF-8 a character at most, and eight characters in seven packed bytes.
    check(text.size() <= g_input.size() * 4 + 8, "a text longer than its input");
}

void checkTexts(const cat::Json &json)
{
    if (json.is_string())
        checkText(json);
    if (json.is_structured()) {
        for (const auto &part : json)
            checkTexts(part);
    }
}

void checkBridge(const cat::Command &command)
{
    const auto bridged = toProactiveCommand(command);
    if (!bridged)
        return;
    check(!strcmp(commandName(bridged->body), command.name), "another command behind the bridge");
    const CommandMenu *menu = commandMenu(bridged->body);
    check(!menu || menu->items.size() <= g_input.size() / 2, "more items than the input holds");
}

void checkCommand()
{
    const cat::Command command = cat::decode(g_input);
    check(command.details.object.size() >= 5, "no details to repeat");
    check(command.details.object.size() <= std::max<size_t>(g_input.size(), 5),
          "details longer than the input");
    check(command.reason.size() < 300, "an endless reason");
    check(command.reason.empty() == (command.problem == cat::Problem::None),
          "a problem without a reason, or the other way round");
    checkTexts(cat::fields(command));
    checkBridge(command);
    check(cat::textRoom(command) > 127, "no room for an answer");

    cat::Response response;
    response.details = command.details;
    response.result = uint8_t(command.problem);
    check(cat::encode(response)->size() == command.details.object.size() + 7,
          "a response of another length");
}

// What a coding takes comes back as it went.
void checkRoundTrip(const std::string &text)
{
    using cat::TextCoding;
    for (const auto coding : {TextCoding::Packed, TextCoding::Unpacked, TextCoding::Ucs2}) {
        const auto value = cat::encodeTextString(text, coding);
        if (!value)
            continue;
        const std::string back = cat::decodeTextString(*value);
        // Eight packed characters of which the last is '@' read as seven and spare bits.
        const bool full = coding == TextCoding::Packed && value->size() % 7 == 1;
        check(back == text || (full && back + '@' == text), "a text that comes back different");
    }
}

void feed(ByteView input)
{
    g_input = input;
    checkCommand();
    for (const std::string &text : {cat::decodeTextString(input), cat::decodeAlpha(input)}) {
        checkText(text);
        checkRoundTrip(text);
    }
    // As what somebody typed: any bytes.
    checkRoundTrip(std::string(input.begin(), input.end()));
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    feed({data, size});
    return 0;
}

#ifndef STK_LIBFUZZER

namespace {

class Generator {
public:
    explicit Generator(uint64_t seed)
        : m_random(seed)
    {
    }

    Bytes next()
    {
        Bytes bytes = command();
        for (unsigned faults = below(5); faults > 0; --faults)
            addFault(bytes);
        return bytes;
    }

private:
    // 0 to `count` - 1, and 0 for none
    unsigned below(size_t count) { return count ? unsigned(m_random() % count) : 0; }

    const Bytes &command() { return catCommands()[below(catCommands().size())]; }

    void addFault(Bytes &bytes)
    {
        if (bytes.empty())
            bytes.push_back(uint8_t(below(256)));
        static constexpr uint8_t Telling[] = {0x00, 0x01, 0x1b, 0x7f, 0x80, 0x81,
                                              0x82, 0x83, 0xd0, 0xd8, 0xfe, 0xff};
        const uint8_t telling = Telling[below(std::size(Telling))];
        const auto place = bytes.begin() + below(bytes.size());
        const std::function<void()> faults[] = {
            [&] { *place ^= uint8_t(1u << below(8)); },
            [&] { *place = telling; }, // a length that lies, among others
            [&] { bytes.erase(place, bytes.end()); },
            [&] { bytes.erase(place); },
            [&] { bytes.insert(place, 1 + below(40), telling); },
            [&, &other = command()] {
                bytes.insert(place, other.begin() + below(other.size()), other.end());
            },
            [&] { // another type, or another qualifier
                if (bytes.size() > 6)
                    bytes[5 + below(2)] = uint8_t(below(256));
            },
            [&] { // the outer length right again
                if (bytes.size() > 2 && bytes.size() < 0x82)
                    bytes[1] = uint8_t(bytes.size() - 2);
            },
        };
        faults[below(std::size(faults))]();
    }

    std::mt19937_64 m_random;
};

} // namespace

int main(int argc, char **argv)
{
    const double seconds = argc > 1 ? std::atof(argv[1]) : 5;
    const uint64_t seed =
        argc > 2 ? std::strtoull(argv[2], nullptr, 10) : (uint64_t(std::random_device()()));
    std::printf("CatFuzz: %g s with seed %llu\n", seconds, static_cast<unsigned long long>(seed));
    std::fflush(stdout);

    for (const Bytes &command : catCommands()) {
        g_input = command;
        const auto problem = cat::decode(command).problem;
        check(problem == cat::Problem::None || problem == cat::Problem::BeyondCapabilities,
              "a good command that is refused");
    }
    Generator generator(seed);
    unsigned long long count = 0;
    const auto end = std::chrono::steady_clock::now() + std::chrono::duration<double>(seconds);
    for (; std::chrono::steady_clock::now() < end; ++count)
        feed(generator.next());
    std::printf("CatFuzz: %llu inputs\n", count);
    return 0;
}

#endif
