#ifndef FAULTPLAN_H
#define FAULTPLAN_H

#include <chrono>
#include <optional>
#include <random>
#include <string>
#include <utility>

#include "cat/Bytes.h"

/// What a card may do in place of an answer.
enum class Fault {
    Slow, ///< it answers, seconds later
    Cut, ///< it stops in the middle of its answer, and is gone for a moment
    WrongLength, ///< a byte is missing, or a length in the status words is wrong
    Endless, ///< from now on it sends one command after the other
    Error, ///< 6F00
    Busy, ///< 9300
    Garbage, ///< random bytes
    Remove, ///< it is taken out, and put in again after a moment
    Hang ///< it never answers, and the reader waits for ever; not at random
};

/// When a card misbehaves.
class FaultPlan {
public:
    FaultPlan() = default; ///< never
    /// "FAULT@N": at the N-th command, counted over the program's life.  "FAULT@each": at the first
    /// command after a start of the card, next time at the second, and so on.  A number: at random,
    /// from this seed.  Nothing where the text is none of these.
    static std::optional<FaultPlan> read(const std::string &text);

    void cardStarted();
    /// Asked once for each command, before it is answered.
    std::optional<Fault> next();
    bool isRandom() const { return m_kind == Kind::Random; }

    // How a fault is done.
    std::chrono::milliseconds slowness();
    std::chrono::milliseconds absence();
    cat::Bytes garbage();
    cat::Bytes wrongLength(cat::Bytes answer);

private:
    enum class Kind { Never, Once, Each, Random };

    unsigned upTo(unsigned highest);

    Kind m_kind = Kind::Never;
    Fault m_fault = Fault::Slow;
    long m_at = 1;
    long m_commands = 0;
    std::mt19937 m_engine;
};

/// The fault's name on the command line.
const char *faultName(Fault fault);

#endif
