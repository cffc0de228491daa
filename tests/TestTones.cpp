// The tone files that the build made.

#include <algorithm>
#include <cmath>
#include <cstring>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace {

using Samples = std::vector<int16_t>;

constexpr int samplesPerMs = 48;

/* A stretch of one frequency, or of silence (0 Hz). */
struct Stretch {
    int hertz;
    int ms;
};

struct Expected {
    int number;
    std::vector<Stretch> first; // what the tone begins with
    int ms; // all of it
};

std::string bytesOf(int number)
{
    std::ifstream file(TONES "/tone_" + std::to_string(number), std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(file), {});
}

Samples samplesOf(const std::string &file)
{
    Samples samples((file.size() - 44) / 2);
    std::memcpy(samples.data(), file.data() + 44, samples.size() * 2);
    return samples;
}

/* The amplitude of one frequency, by the Goertzel filter. */
double amplitude(const int16_t *samples, int count, int hertz)
{
    const double turn = 2 * std::cos(2 * std::acos(-1.0) * hertz / (1000.0 * samplesPerMs));
    double last = 0;
    double beforeLast = 0;
    for (int i = 0; i < count; ++i) {
        const double now = samples[i] + turn * last - beforeLast;
        beforeLast = last;
        last = now;
    }
    return 2 * std::sqrt(last * last + beforeLast * beforeLast - turn * last * beforeLast) / count;
}

int dominatingFrequency(const int16_t *samples, int count)
{
    int best = 0;
    double most = 100; // a tone is much louder
    for (int hertz = 100; hertz <= 3000; hertz += 5) {
        const double found = amplitude(samples, count, hertz);
        if (found > most) {
            most = found;
            best = hertz;
        }
    }
    return best;
}

} // namespace

class Tones : public testing::TestWithParam<Expected> { };

TEST_P(Tones, AreWavFilesOfTheirLength)
{
    const std::string file = bytesOf(GetParam().number);
    ASSERT_GT(file.size(), 44u);
    const uint32_t size = uint32_t(GetParam().ms) * samplesPerMs * 2;
    // PCM, mono, 48000 frames and 96000 bytes a second, 2 bytes a frame, 16 bits
    const uint8_t format[] = {16, 0, 0,    0,    1, 0, 1, 0, 0x80, 0xBB,
                              0,  0, 0x00, 0x77, 1, 0, 2, 0, 16,   0};
    const auto little = [](uint32_t n) {
        return std::string({char(n), char(n >> 8), char(n >> 16), char(n >> 24)});
    };
    EXPECT_EQ(file.substr(0, 44),
              "RIFF" + little(36 + size) + "WAVEfmt " + std::string(format, std::end(format)) +
                  "data" + little(size));
    EXPECT_EQ(file.size(), 44 + size);
}

TEST_P(Tones, FollowFrequencyAndCadence)
{
    const Samples samples = samplesOf(bytesOf(GetParam().number));
    size_t at = 0;
    for (const Stretch &stretch : GetParam().first) {
        const size_t count = size_t(stretch.ms) * samplesPerMs;
        ASSERT_LE(at + count, samples.size());
        const int16_t *const begin = samples.data() + at;
        if (stretch.hertz == 0) {
            EXPECT_EQ(std::count(begin, begin + count, 0), count) << "at sample " << at;
        } else {
            EXPECT_NEAR(dominatingFrequency(begin, int(count)), stretch.hertz, 5);
            // Both ends sound: the stretch is neither shorter nor moved.
            for (const int16_t *end : {begin, begin + count - 10 * samplesPerMs}) {
                EXPECT_GT(amplitude(end, 10 * samplesPerMs, stretch.hertz), 4000)
                    << "at sample " << at;
            }
        }
        at += count;
    }
}

TEST_P(Tones, DoNotClick)
{
    const Samples samples = samplesOf(bytesOf(GetParam().number));
    const int loudest = std::abs(*std::max_element(samples.begin(), samples.end()));
    EXPECT_NEAR(20 * std::log10(loudest / 32767.0), -12, 0.1);
    EXPECT_EQ(samples.front(), 0);
    EXPECT_EQ(samples.back(), 0);

    int highest = 0;
    for (const Stretch &stretch : GetParam().first)
        highest = std::max(highest, stretch.hertz);
    const double slope = loudest * 2 * std::acos(-1.0) * highest / (1000.0 * samplesPerMs);
    // A jump at an edge hides below the steepest slope of the tone, a bend does not.
    const double bend = slope * 2 * std::acos(-1.0) * highest / (1000.0 * samplesPerMs);
    for (size_t i = 1; i + 1 < samples.size(); ++i) {
        ASSERT_LE(std::abs(samples[i] - samples[i - 1]), slope + 1) << "at sample " << i;
        ASSERT_LE(std::abs(samples[i + 1] - 2 * samples[i] + samples[i - 1]), bend * 1.2 + 2)
            << "at sample " << i;
    }
}

// 1 to 8: 3GPP TS 22.001 annex F.
INSTANTIATE_TEST_SUITE_P(
    , Tones,
    testing::Values(
        Expected{1, {{425, 10000}}, 10000}, Expected{2, {{425, 500}, {0, 500}, {425, 500}}, 9500},
        Expected{3, {{425, 200}, {0, 200}, {425, 200}}, 9800}, Expected{4, {{425, 200}}, 200},
        Expected{5, {{425, 200}, {0, 200}, {425, 200}, {0, 200}, {425, 200}}, 1000},
        Expected{6, {{950, 330}, {1400, 330}, {1800, 330}, {0, 1000}, {950, 330}}, 8950},
        Expected{7, {{425, 200}, {0, 600}, {425, 200}, {0, 3000}, {425, 200}}, 9000},
        Expected{8, {{425, 1000}, {0, 4000}, {425, 1000}}, 11000}, Expected{16, {{1000, 200}}, 200},
        Expected{17, {{880, 120}, {0, 40}, {1320, 240}}, 400},
        Expected{18, {{440, 200}, {0, 60}, {330, 400}}, 660},
        Expected{19, {{660, 150}, {880, 150}, {660, 150}, {880, 150}, {0, 1400}}, 8600},
        Expected{20, {{1320, 100}, {0, 60}, {1320, 100}, {0, 60}, {1760, 200}}, 520}),
    [](const auto &info) { return std::to_string(info.param.number); });
