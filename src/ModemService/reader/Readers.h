#ifndef READERS_H
#define READERS_H

#include <optional>
#include <string>
#include <vector>

#include "toolkit/PortReports.h"

/// One smart-card reader.
struct Reader {
    enum class State {
        Empty, ///< no card is in it
        Card, ///< a card that answers
        Mute, ///< a card that does not answer, or the wrong way round
        InUse ///< a card that another program keeps for itself
    };
    std::string name; ///< as the smart-card daemon calls it
    State state = State::Empty;
};

struct ReaderList {
    std::vector<Reader> readers; ///< in the daemon's order
    std::optional<Notice> problem; ///< why there can be no readers
};

#endif
