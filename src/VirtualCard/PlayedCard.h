#ifndef PLAYEDCARD_H
#define PLAYEDCARD_H

#include <list>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "CardFile.h"

/// What came of the steps, counted.
struct StepCount {
    long ok = 0;
    long mismatches = 0;
};

/// A card that plays what its file describes.
class PlayedCard {
public:
    explicit PlayedCard(CardFile file);

    const CardFile &file() const { return m_file; }
    /// By "<sequence>, step <number>"; steps that were not played are there with zeros.
    const std::map<std::string, StepCount> &steps() const { return m_steps; }
    /// One line each, the first hundred.
    const std::vector<std::string> &mismatches() const { return m_mismatches; }
    long mismatchCount() const { return m_mismatchCount; }
    /// Whether every step that is not optional was played.
    bool isComplete() const;

    /// Power was switched on, or the card was reset.
    void reset();
    /// One command; the result ends with the status words.
    cat::Bytes answer(cat::ByteView command);
    /// In place of the file: MORE TIME without end, or so many times, until the next reset.
    void playEndless(std::optional<int> times);

private:
    struct Command;
    struct Play {
        const Sequence *sequence = nullptr;
        size_t next = 0;
        const Step *step() const
        {
            return next < sequence->steps.size() ? &sequence->steps[next] : nullptr;
        }
    };

    cat::Bytes dispatch(const Command &command);
    cat::Bytes select(const Command &command);
    cat::Bytes select2g(const Command &command);
    cat::Bytes readRecord(const Command &command);
    cat::Bytes verify(const Command &command);
    cat::Bytes terminalProfile(const Command &command);
    cat::Bytes envelope(const Command &command);
    cat::Bytes fetch(const Command &command);
    cat::Bytes terminalResponse(const Command &command);
    cat::Bytes status(const Command &command);
    cat::Bytes getResponse(const Command &command, cat::Bytes kept);
    cat::Bytes aboutDirectory() const;

    void begin(const Sequence &sequence);
    void advance();
    bool resume(Step::Kind kind, cat::ByteView envelope);
    cat::Bytes outgoing(const Command &command, cat::Bytes data);
    cat::Bytes done();
    void compare(const Play &play, cat::ByteView got);
    void mismatch(const std::string &place, const std::string &expected, const std::string &got);
    std::string place(const Play &play) const;
    const cat::Bytes *pending() const;
    bool is2g() const { return m_file.kind == CardFile::Kind::Sim; }

    CardFile m_file;
    std::map<std::string, StepCount> m_steps;
    std::vector<std::string> m_mismatches;
    long m_mismatchCount = 0;

    size_t m_start = 0; // of the sequences that are played from the start of the card
    int m_triesLeft = 0;

    // Until the next reset.
    bool m_verified = false;
    bool m_profileSeen = false;
    uint16_t m_selected = 0x3f00;
    cat::Bytes m_forGetResponse;
    bool m_fetched = false; // what is pending
    std::optional<Play> m_play;
    std::list<Play> m_waiting; // for an envelope, or for STATUS
    std::optional<int> m_endless; // how often still
};

#endif
