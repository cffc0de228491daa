#ifndef APDU_H
#define APDU_H

#include <cstdint>
#include <functional>
#include <optional>
#include <string>

#include "CardChannel.h"
#include "toolkit/PortReports.h"
#include "cat/Bytes.h"

// Commands to a card and its answers (ETSI TS 102 221 clause 10, ISO/IEC 7816-4 clause 5).

struct Apdu {
    uint8_t cla = 0;
    uint8_t ins = 0;
    uint8_t p1 = 0;
    uint8_t p2 = 0;
    cat::Bytes data{}; ///< at most 255 bytes
    std::optional<uint16_t> expected = std::nullopt; ///< Le: 1 to 256; none: no data is expected
    /// The last bytes of the data that are nobody's to read: blanked out where traffic is told, and
    /// wiped from memory behind the exchange, `data` included.
    size_t secret = 0;
};

struct ApduAnswer {
    cat::Bytes data;
    uint16_t status = 0; ///< SW1 and SW2
};

using ApduTeller = std::function<void(const PortTraffic &)>;

/// Sends the command, fetches what the card announces (61xx, 9Fxx, a warning for T=0), repeats it
/// where the card names another length (6Cxx, 67xx of a 2G card), each a bounded number of times.
/// All other status words are the result's.  Every single exchange is told, without an answer where
/// there was none.  Nothing: the card is gone.
std::optional<ApduAnswer> exchange(CardChannel &channel, Apdu &command, const ApduTeller &tell);

enum class StatusKind {
    Done, ///< 9000 and its kin
    ProactiveCommand, ///< 91xx: done, and a proactive command of xx bytes waits
    MoreData, ///< 61xx, 9Fxx
    OtherLength, ///< 6Cxx
    Busy, ///< 9300: the toolkit is busy, the command was not carried out
    Warning, ///< 62xx, 63xx: carried out, with a remark
    Error
};

StatusKind statusKind(uint16_t status);
/// True for Done, ProactiveCommand and Warning.
bool isDone(uint16_t status);
/// "6A82".
std::string statusDigits(uint16_t status);
/// For people: "file not found".
std::string statusMeaning(uint16_t status);

#endif
