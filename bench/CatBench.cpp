// The toolkit codec: commands decoded and responses encoded per second, and what a command takes
// from the heap.  The commands are those of the folder that STK_CONFORMANCE_VECTORS names, or a few
// of the bench's own.

#include <benchmark/benchmark.h>

#include <cstdlib>
#include <fstream>
#include <iostream>
#include <new>
#include <nlohmann/json.hpp>

#include "CatCommands.h"
#include "cat/Command.h"
#include "cat/Hex.h"
#include "cat/Response.h"

namespace {

size_t g_allocations = 0;
size_t g_allocatedBytes = 0;

} // namespace

// Not inlined: the compiler takes a new that it sees with a free that it sees for a mistake.
[[gnu::noinline]] void *operator new(size_t size)
{
    ++g_allocations;
    g_allocatedBytes += size;
    if (void *memory = std::malloc(size))
        return memory;
    throw std::bad_alloc();
}

[[gnu::noinline]] void operator delete(void *memory) noexcept
{
    std::free(memory);
}

[[gnu::noinline]] void operator delete(void *memory, size_t) noexcept
{
    std::free(memory);
}

namespace {

using cat::Bytes;

std::vector<Bytes> readCommands()
{
    const char *folder = std::getenv("STK_CONFORMANCE_VECTORS");
    if (!folder)
        return catCommands();
    const std::string name = std::string(folder) + "/proactive.jsonl";
    std::ifstream file(name);
    std::vector<Bytes> commands;
    for (std::string line; std::getline(file, line);) {
        if (!line.empty())
            commands.push_back(cat::fromHex(nlohmann::json::parse(line).at("pdu")).value());
    }
    if (commands.empty()) {
        std::cerr << name << ": expected proactive commands, found none\n";
        std::exit(EXIT_FAILURE);
    }
    return commands;
}

const std::vector<Bytes> &commands()
{
    static const std::vector<Bytes> all = readCommands();
    return all;
}

void perCommand(benchmark::State &state, size_t commandBytes)
{
    const auto average = [&](size_t sum) {
        return benchmark::Counter(double(sum) / double(state.iterations() * commands().size()));
    };
    state.SetItemsProcessed(int64_t(state.iterations() * commands().size()));
    state.SetBytesProcessed(int64_t(state.iterations() * commandBytes));
    state.counters["heap_bytes_per_command"] = average(g_allocatedBytes);
    state.counters["allocations_per_command"] = average(g_allocations);
}

template <class Work> void measure(benchmark::State &state, Work work)
{
    size_t bytes = 0;
    for (const Bytes &command : commands())
        bytes += command.size();
    g_allocations = g_allocatedBytes = 0;
    for (auto _ : state)
        work();
    perCommand(state, bytes);
}

void decodeCommands(benchmark::State &state)
{
    measure(state, [] {
        for (const Bytes &command : commands())
            benchmark::DoNotOptimize(cat::decode(command));
    });
}
BENCHMARK(decodeCommands);

// Tags and lengths alone: what is less than that is no decoding.  The quotient of the two times is
// the codec's own.
size_t walk(const Bytes &command)
{
    size_t sum = 0;
    for (size_t at = command[1] == 0x81 ? 3 : 2; at + 1 < command.size();) {
        const size_t head = command[at + 1] == 0x81 && at + 2 < command.size() ? 3 : 2;
        sum += command[at];
        at += head + command[at + head - 1];
    }
    return sum;
}

void walkCommands(benchmark::State &state)
{
    measure(state, [] {
        for (const Bytes &command : commands())
            benchmark::DoNotOptimize(walk(command));
    });
}
BENCHMARK(walkCommands);

// A text, an item and the bare result, one after the other.
void encodeResponses(benchmark::State &state)
{
    std::vector<cat::Response> responses;
    for (const Bytes &command : commands()) {
        cat::Response response{cat::decode(command).details};
        if (responses.size() % 3 == 0)
            response.text = cat::encodeTextString("12345", cat::TextCoding::Unpacked);
        else if (responses.size() % 3 == 1)
            response.item = uint8_t(1);
        responses.push_back(std::move(response));
    }
    measure(state, [&responses] {
        for (const cat::Response &response : responses)
            benchmark::DoNotOptimize(cat::encode(response));
    });
}
BENCHMARK(encodeResponses);

} // namespace

BENCHMARK_MAIN();
