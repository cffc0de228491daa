#ifndef NOTICES_H
#define NOTICES_H

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "CardHost.h"

/// What a card in a reader, or the way to it, has to say to people; see the table in Notices.cpp.
/// The first argument is the reader's name where nothing else is said.
enum class NoticeId {
    NoDaemon, ///< no arguments
    NoReader, ///< no arguments
    NoSuchReader, ///< the beginning of a name, and the names that there are
    ReaderGone,
    ReaderFails, ///< and what the daemon says
    ReaderChosen, ///< and how many there are
    ReaderHangs,
    ReaderAnswers,
    NoCard,
    CardMute,
    CardInUse,
    CardSilent,
    CardRefuses, ///< and what was sent, and the status words
    Usim,
    Isim,
    Sim,
    Uicc,
    NoSim,
    NoMenu,
    MenuLate,
    PinBlocked,
    PinLeftOut,
    PinUnchecked, ///< and the status words
    NoMenuPinBlocked,
    NoMenuPinLeftOut,
    NoMenuPinUnchecked, ///< and the status words
    CaptureFailed ///< the file and the reason
};
constexpr NoticeId LastNoticeId = NoticeId::CaptureFailed;

/// Status words are the last argument; the English text says what they mean, too.
CardHost::Notice noticeOf(NoticeId id, std::vector<std::string> arguments = {},
                          std::optional<uint16_t> status = std::nullopt);

#endif
