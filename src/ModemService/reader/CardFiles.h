#ifndef CARDFILES_H
#define CARDFILES_H

#include <cstdint>
#include <optional>

#include "cat/Bytes.h"

// What a card says of its files.

/// File control parameters of a UICC (ETSI TS 102 221 clause 11.1.1.3), as far as they are used.
struct FileParameters {
    uint8_t recordLength = 0; ///< 0 where the file has no records
    uint8_t records = 0;
    /// The key reference of the PIN that guards the file; none where no PIN is in use.
    std::optional<uint8_t> pin = 0x01;
};
FileParameters readFileParameters(cat::ByteView selectAnswer);

/// The application identifier in a record of EF_DIR (ETSI TS 102 221 clause 13.1); empty where
/// there is none.
cat::Bytes applicationIdentifier(cat::ByteView record);

/// The PIN in the answer to SELECT of a 2G card's directory (3GPP TS 51.011 clause 9.2.1).
struct Chv1 {
    bool enabled = false;
    int triesLeft = 0;
};
Chv1 readChv1(cat::ByteView selectAnswer);

#endif
