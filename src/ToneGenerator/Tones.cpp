#include "Tones.h"

#include <algorithm>
#include <cmath>

namespace {

const double pi = std::acos(-1.0);
// 12 dB below full scale.
constexpr double peak = 32767 * 0.251189;
constexpr int edgeSamples = sampleRate * 5 / 1000;

// 1 to 8 are the supervisory tones, with the frequencies and cadences of 3GPP TS 22.001 annex F.
// The sound of the others is the terminal's own.  What goes on until it is stopped is 10 to 15
// seconds long here.
const Tone tones[] = {
    // Dial tone
    {1, {{425, 10000, 0}}, 1},
    // Called subscriber busy
    {2, {{425, 500, 500}}, 10},
    // Congestion
    {3, {{425, 200, 200}}, 25},
    // Radio path acknowledge
    {4, {{425, 200, 0}}, 1},
    // Radio path not available, call dropped
    {5, {{425, 200, 200}}, 3},
    // Error, special information
    {6, {{950, 330, 0}, {1400, 330, 0}, {1800, 330, 1000}}, 5},
    // Call waiting
    {7, {{425, 200, 600}, {425, 200, 3000}}, 3},
    // Ringing
    {8, {{425, 1000, 4000}}, 3},
    // General beep
    {16, {{1000, 200, 0}}, 1},
    // Positive acknowledgement: rises
    {17, {{880, 120, 40}, {1320, 240, 0}}, 1},
    // Negative acknowledgement or error: falls
    {18, {{440, 200, 60}, {330, 400, 0}}, 1},
    // Ringing as selected by the user for an incoming speech call
    {19, {{660, 150, 0}, {880, 150, 0}, {660, 150, 0}, {880, 150, 1400}}, 5},
    // Alert as selected by the user for an incoming short message
    {20, {{1320, 100, 60}, {1320, 100, 60}, {1760, 200, 0}}, 1},
};

int samplesOf(int milliseconds)
{
    return sampleRate / 1000 * milliseconds;
}

/* A raised cosine over the first and the last samples of a burst. */
double envelope(int sample, int samples)
{
    const int toEdge = std::min(sample, samples - 1 - sample);
    return toEdge >= edgeSamples ? 1 : (1 - std::cos(pi * toEdge / edgeSamples)) / 2;
}

void append(const Burst &burst, std::vector<int16_t> *samples)
{
    const int count = samplesOf(burst.onMs);
    const double step = 2 * pi * burst.hertz / sampleRate;
    for (int i = 0; i < count; ++i)
        samples->push_back(int16_t(std::lround(peak * envelope(i, count) * std::sin(step * i))));
    samples->insert(samples->end(), samplesOf(burst.silenceMs), 0);
}

void append(uint32_t value, int bytes, std::string *file)
{
    for (; bytes > 0; --bytes, value >>= 8)
        file->push_back(char(value & 0xFF));
}

} // namespace

const Tone *findTone(int number)
{
    const auto tone = std::find_if(std::begin(tones), std::end(tones),
                                   [number](const Tone &t) { return t.number == number; });
    return tone == std::end(tones) ? nullptr : tone;
}

std::vector<int16_t> render(const Tone &tone)
{
    std::vector<int16_t> samples;
    for (int i = 0; i < tone.times; ++i) {
        for (const Burst &burst : tone.bursts)
            append(burst, &samples);
    }
    samples.resize(samples.size() - samplesOf(tone.bursts.back().silenceMs));
    return samples;
}

std::string wavFile(const std::vector<int16_t> &samples)
{
    constexpr int channels = 1;
    constexpr int frame = channels * sizeof(int16_t);
    const uint32_t size = uint32_t(samples.size() * frame);
    std::string file = "RIFF";
    append(36 + size, 4, &file);
    file += "WAVEfmt ";
    append(16, 4, &file);
    append(1, 2, &file); // PCM
    append(channels, 2, &file);
    append(sampleRate, 4, &file);
    append(sampleRate * frame, 4, &file);
    append(frame, 2, &file);
    append(16, 2, &file); // bits in a sample
    file += "data";
    append(size, 4, &file);
    for (const int16_t sample : samples)
        append(uint16_t(sample), 2, &file);
    return file;
}
