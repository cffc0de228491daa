#ifndef CARDREPORT_H
#define CARDREPORT_H

#include <string>

#include "PlayedCard.h"

/// What came of a card's file, for people and for tests.
class CardReport {
public:
    /// `file`: where it is written at the end; nowhere where it is empty.  Throws
    /// std::runtime_error where that cannot be.
    CardReport(const PlayedCard &card, std::string file);

    /// The answers that were not expected and were not told yet, on standard error.
    void tellMismatches();
    /// `commands`: how many there were.
    void write(long commands) const;
    /// The program's: 1 after an answer that was not expected, or where all steps have to be played
    /// and were not, which is told.
    int exitStatus(bool requireAll) const;

private:
    const PlayedCard &m_card;
    const std::string m_file;
    size_t m_told = 0;
};

#endif
