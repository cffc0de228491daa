#ifndef TONES_H
#define TONES_H

#include <cstdint>
#include <string>
#include <vector>

/// A part of a tone that sounds at one frequency.
struct Burst {
    int hertz;
    int onMs;
    int silenceMs; ///< after it
};

struct Tone {
    int number; ///< the tone's value in a command: ETSI TS 102 223 clause 8.16
    std::vector<Burst> bursts;
    int times; ///< how often all of the bursts are played
};

/// Null when there is no tone of that number.
const Tone *findTone(int number);

/// Frames a second of what render() returns: a telephone's, well above twice the highest tone.
constexpr int sampleRate = 8000;

/// The tone from its first burst to the end of its last: mono, peak 12 dB below full scale, each
/// burst with soft edges, so that nothing clicks.
std::vector<int16_t> render(const Tone &tone);

/// The samples as a RIFF WAVE file.
std::string wavFile(const std::vector<int16_t> &samples);

#endif
