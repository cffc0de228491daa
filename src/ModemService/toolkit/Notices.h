#ifndef NOTICES_H
#define NOTICES_H

#include <string>
#include <vector>

#include "PortReports.h"

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
    CaptureFailed, ///< the file and the reason
    ModemMissing,
    ModemIsFolder,
    ModemIsFile,
    NoMbimModem, ///< no arguments
    ModemDenied,
    ModemIsNone,
    ModemIsSerial, ///< and the address to be used
    ModemInUse,
    ModemInUseBy, ///< and the programs
    ModemGone,
    ModemSilent,
    ModemAnswers,
    ModemUnreadable,
    ModemNoSim,
    ModemRefusesPin,
    ModemRefuses, ///< and what was sent
    ModemNoMenu,
    ModemNotOpened, ///< and the reason
    ModemNoToolkit,
    ModemRefusesToolkit,
    ModemKeepsMenu,
    ModemKeepsCommands, ///< and their names
    ModemCountsDecimally,
    ModemToolkitInUse,
    ModemNotReady ///< and what it says
};
constexpr NoticeId LastNoticeId = NoticeId::ModemNotReady;

/// The remark is behind the last argument in the English text alone: what a number means.
Notice noticeOf(NoticeId id, std::vector<std::string> arguments = {},
                const std::string &remark = {});

#endif
