#ifndef CARDFILE_H
#define CARDFILE_H

#include <map>
#include <optional>
#include <string>
#include <vector>

#include "HexPattern.h"

/// What the card and the terminal do by turns.
struct Step {
    enum class Kind {
        Send, ///< a proactive command
        Envelope, ///< the terminal sends an envelope
        Status, ///< the terminal asks for the status of the card
    };
    Kind kind = Kind::Send;
    cat::Bytes command; ///< what FETCH returns
    /// The data of the terminal response, or of the envelope: one of these.
    std::vector<HexPattern> expected;
    bool reset = false; ///< the card is reset in place of an answer
    bool optional = false; ///< may be left out
};

struct Sequence {
    std::string name; ///< for people: "start 1", "menu 3"
    std::vector<Step> steps;
};

struct CardFile {
    enum class Kind {
        Usim, ///< UICC with a USIM (ETSI TS 102 221)
        Sim, ///< 2G card (3GPP TS 51.011)
        Bank, ///< a card without any of these
        Mute ///< a card that does not answer to a reset
    };
    struct Pin {
        std::string digits;
        int tries = 3;
    };

    std::string file;
    Kind kind = Kind::Usim;
    cat::Bytes atr;
    bool oneByOne = true; ///< T=0: data of an answer is fetched by a command of its own
    std::optional<Pin> pin;
    std::optional<HexPattern> profile;
    std::vector<Sequence> start; ///< one for each start of the card, the last one for all others
    std::map<int, Sequence> menu; ///< by item identifier

    /// Throws StrictJson::Error, or std::runtime_error where the file cannot be read.
    static CardFile read(const std::string &file);
};

#endif
