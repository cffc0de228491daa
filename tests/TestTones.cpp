// The tone files that the build made.

#include <algorithm>
#include <cmath>
#include <complex>
#include <fstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace {

constexpr int samplesPerMs = 8;
const double pi = std::acos(-1.0);

struct Expected {
    int number;
    int ms; // all of the tone
    std::vector<std::pair<int, int>>
        first; // bursts of one frequency in Hz, or silence (0), and their ms
};

// 1 to 8: 3GPP TS 22.001 annex F.
const Expected tones[] = {
    {1, 10000, {{425, 10000}}},
    {2, 9500, {{425, 500}, {0, 500}, {425, 500}}},
    {3, 9800, {{425, 200}, {0, 200}, {425, 200}}},
    {4, 200, {{425, 200}}},
    {5, 1000, {{425, 200}, {0, 200}, {425, 200}, {0, 200}, {425, 200}}},
    {6, 8950, {{950, 330}, {1400, 330}, {1800, 330}, {0, 1000}, {950, 330}}},
    {7, 9000, {{425, 200}, {0, 600}, {425, 200}, {0, 3000}, {425, 200}}},
    {8, 11000, {{425, 1000}, {0, 4000}, {425, 1000}}},
    {16, 200, {{1000, 200}}},
    {17, 400, {{880, 120}, {0, 40}, {1320, 240}}},
    {18, 660, {{440, 200}, {0, 60}, {330, 400}}},
    {19, 8600, {{660, 150}, {880, 150}, {660, 150}, {880, 150}, {0, 1400}}},
    {20, 520, {{1320, 100}, {0, 60}, {1320, 100}, {0, 60}, {1760, 200}}},
};

std::vector<int16_t> samplesOf(int number)
{
    std::ifstream file(TONES "/tone_" + std::to_string(number), std::ios::binary);
    file.seekg(44);
    std::vector<int16_t> samples;
    for (char bytes[2]; file.read(bytes, 2);)
        samples.push_back(int16_t(uint8_t(bytes[0]) | bytes[1] * 256));
    return samples;
}

/* The amplitude of one frequency: its Fourier coefficient. */
double amplitude(const int16_t *samples, int count, int hertz)
{
    std::complex<double> sum;
    for (int i = 0; i < count; ++i)
        sum += std::polar<double>(samples[i], 2 * pi * hertz * i / (1000 * samplesPerMs));
    return 2 * std::abs(sum) / count;
}

} // namespace

TEST(Tones, FollowTheirCadenceAndDoNotClick)
{
    for (const Expected &tone : tones) {
        SCOPED_TRACE(tone.number);
        const std::vector<int16_t> samples = samplesOf(tone.number);
        ASSERT_EQ(samples.size(), size_t(tone.ms) * samplesPerMs);
        const int loudest = *std::max_element(samples.begin(), samples.end());
        EXPECT_NEAR(20 * std::log10(loudest / 32767.0), -12, 0.1);
        const int16_t *at = samples.data();
        int highest = 0;
        for (const auto &[hertz, ms] : tone.first) {
            const int count = ms * samplesPerMs;
            const int edge = 10 * samplesPerMs; // half of it is soft
            // Silence is silent; a burst is of its frequency and sounds from end to end.
            const double least = hertz ? 0.7 * loudest : 0;
            EXPECT_GE(amplitude(at, edge, hertz), least);
            EXPECT_GE(amplitude(at + count - edge, edge, hertz), least);
            EXPECT_GE(amplitude(at, count, hertz), least * 1.3);
            EXPECT_EQ(std::count(at, at + count, 0) == count, hertz == 0);
            at += count;
            highest = std::max(highest, hertz);
        }
        // A sample that leaves the curve bends it more than the highest tone does.
        const double bend = loudest * std::pow(2 * pi * highest / (1000 * samplesPerMs), 2);
        EXPECT_EQ(samples.front(), 0);
        EXPECT_EQ(samples.back(), 0);
        for (size_t i = 1; i + 1 < samples.size(); ++i)
            ASSERT_LE(std::abs(samples[i - 1] - 2 * samples[i] + samples[i + 1]), 1.2 * bend + 2)
                << "at sample " << i;
    }
}
