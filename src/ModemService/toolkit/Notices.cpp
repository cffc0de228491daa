#include "Notices.h"

#include <utility>

namespace {

struct NoticeRow {
    NoticeId id;
    bool problem;
    const char *name; // of the text in the host's catalogues
    const char *english;
    Notice::Awaited awaited = Notice::Awaited::Card;
};

constexpr auto Modem = Notice::Awaited::Modem, Toolkit = Notice::Awaited::Toolkit,
               Nothing = Notice::Awaited::Nothing;

constexpr NoticeRow NoticeRows[] = {
    {NoticeId::NoDaemon, true, "IDS_CM_NOTICE_NO_DAEMON",
     "no smart-card daemon is running (pcscd)"},
    {NoticeId::NoReader, true, "IDS_CM_NOTICE_NO_READER", "no smart-card reader is connected"},
    {NoticeId::NoSuchReader, true, "IDS_CM_NOTICE_NO_SUCH_READER",
     "no smart-card reader's name begins with \"%1\"; there is %2"},
    {NoticeId::ReaderGone, true, "IDS_CM_NOTICE_READER_GONE", "%1: the reader is gone"},
    {NoticeId::ReaderFails, true, "IDS_CM_NOTICE_READER_FAILS",
     "%1: the smart-card daemon reports: %2"},
    {NoticeId::ReaderChosen, false, "IDS_CM_NOTICE_READER_CHOSEN", "%1: chosen among %2 readers"},
    {NoticeId::ReaderHangs, true, "IDS_CM_NOTICE_READER_HANGS",
     "%1: the reader does not answer; another card can be opened"},
    {NoticeId::ReaderAnswers, false, "IDS_CM_NOTICE_READER_ANSWERS",
     "%1: the reader answers again"},
    {NoticeId::NoCard, true, "IDS_CM_NOTICE_NO_CARD", "%1: there is no card in the reader"},
    {NoticeId::CardMute, true, "IDS_CM_NOTICE_CARD_MUTE",
     "%1: the card does not answer (is it the right way round?)"},
    {NoticeId::CardInUse, true, "IDS_CM_NOTICE_CARD_IN_USE",
     "%1: another program keeps the card for itself"},
    {NoticeId::CardSilent, true, "IDS_CM_NOTICE_CARD_SILENT", "%1: the card does not answer"},
    {NoticeId::CardRefuses, true, "IDS_CM_NOTICE_CARD_REFUSES", "%1: the card answers %2 with %3"},
    {NoticeId::Usim, false, "IDS_CM_NOTICE_USIM", "%1: a USIM"},
    {NoticeId::Isim, false, "IDS_CM_NOTICE_ISIM", "%1: an ISIM"},
    {NoticeId::Sim, false, "IDS_CM_NOTICE_SIM", "%1: a 2G SIM"},
    {NoticeId::Uicc, false, "IDS_CM_NOTICE_UICC", "%1: a UICC without a USIM"},
    {NoticeId::NoSim, true, "IDS_CM_NOTICE_NO_SIM",
     "%1: no SIM application on this card (a bank card?)"},
    {NoticeId::NoMenu, true, "IDS_CM_NOTICE_NO_MENU", "%1: this card has no toolkit menu"},
    {NoticeId::MenuLate, false, "IDS_CM_NOTICE_MENU_LATE", "%1: the toolkit menu came late"},
    {NoticeId::PinBlocked, true, "IDS_CM_NOTICE_PIN_BLOCKED",
     "%1: the PIN of this card is blocked; only its PUK, in a telephone, helps"},
    {NoticeId::PinLeftOut, true, "IDS_CM_NOTICE_PIN_LEFT_OUT",
     "%1: the card goes on without its PIN"},
    {NoticeId::PinUnchecked, true, "IDS_CM_NOTICE_PIN_UNCHECKED",
     "%1: the PIN could not be checked: the card answers %2"},
    {NoticeId::NoMenuPinBlocked, true, "IDS_CM_NOTICE_NO_MENU_PIN_BLOCKED",
     "%1: this card has no toolkit menu: its PIN is blocked; only its PUK, in a telephone, helps"},
    {NoticeId::NoMenuPinLeftOut, true, "IDS_CM_NOTICE_NO_MENU_PIN_LEFT_OUT",
     "%1: this card has no toolkit menu: it goes on without its PIN"},
    {NoticeId::NoMenuPinUnchecked, true, "IDS_CM_NOTICE_NO_MENU_PIN_UNCHECKED",
     "%1: this card has no toolkit menu: its PIN could not be checked: the card answers %2"},
    {NoticeId::CaptureFailed, true, "IDS_CM_NOTICE_CAPTURE_FAILED",
     "%1: cannot write the capture: %2"},
    {NoticeId::ModemMissing, true, "IDS_CM_NOTICE_MODEM_MISSING", "%1: there is no such device",
     Modem},
    {NoticeId::ModemIsFolder, true, "IDS_CM_NOTICE_MODEM_IS_FOLDER",
     "%1: this is a folder, no device", Modem},
    {NoticeId::ModemIsFile, true, "IDS_CM_NOTICE_MODEM_IS_FILE", "%1: this is a file, no device",
     Modem},
    {NoticeId::NoMbimModem, true, "IDS_CM_NOTICE_NO_MBIM_MODEM", "no MBIM modem is connected",
     Modem},
    {NoticeId::ModemDenied, true, "IDS_CM_NOTICE_MODEM_DENIED",
     "%1: this user may not use the device (is the user in the group dialout?)", Modem},
    {NoticeId::ModemIsNone, true, "IDS_CM_NOTICE_MODEM_IS_NONE", "%1: this is no serial port",
     Modem},
    {NoticeId::ModemIsSerial, true, "IDS_CM_NOTICE_MODEM_IS_SERIAL",
     "%1: this is a serial port, no MBIM device; with AT commands it is %2", Modem},
    {NoticeId::ModemInUse, true, "IDS_CM_NOTICE_MODEM_IN_USE",
     "%1: another program keeps the device for itself (a modem manager?)", Modem},
    {NoticeId::ModemInUseBy, true, "IDS_CM_NOTICE_MODEM_IN_USE_BY",
     "%1: another program keeps the device for itself: %2", Modem},
    {NoticeId::ModemGone, true, "IDS_CM_NOTICE_MODEM_GONE", "%1: the modem is gone", Modem},
    {NoticeId::ModemSilent, true, "IDS_CM_NOTICE_MODEM_SILENT", "%1: the modem does not answer",
     Modem},
    {NoticeId::ModemAnswers, false, "IDS_CM_NOTICE_MODEM_ANSWERS", "%1: the modem answers again"},
    {NoticeId::ModemUnreadable, true, "IDS_CM_NOTICE_MODEM_UNREADABLE",
     "%1: the modem sent a command that cannot be read"},
    {NoticeId::ModemNoSim, true, "IDS_CM_NOTICE_MODEM_NO_SIM",
     "%1: there is no usable SIM card in the modem"},
    {NoticeId::ModemRefusesPin, true, "IDS_CM_NOTICE_MODEM_REFUSES_PIN",
     "%1: the modem did not take the PIN; the card goes on without it"},
    {NoticeId::ModemRefuses, true, "IDS_CM_NOTICE_MODEM_REFUSES", "%1: the modem refuses %2"},
    {NoticeId::ModemNoMenu, true, "IDS_CM_NOTICE_MODEM_NO_MENU",
     "%1: no toolkit menu has come; the card sends it when it starts: Card, Start anew"},
    {NoticeId::ModemNotOpened, true, "IDS_CM_NOTICE_MODEM_NOT_OPENED",
     "%1: the modem could not be opened: %2", Modem},
    {NoticeId::ModemNoToolkit, true, "IDS_CM_NOTICE_MODEM_NO_TOOLKIT",
     "%1: this modem offers no toolkit", Nothing},
    {NoticeId::ModemRefusesToolkit, true, "IDS_CM_NOTICE_MODEM_REFUSES_TOOLKIT",
     "%1: the modem refuses the toolkit's commands; another of its ports may take them, or it "
     "offers no toolkit",
     Nothing},
    {NoticeId::ModemKeepsMenu, true, "IDS_CM_NOTICE_MODEM_KEEPS_MENU",
     "%1: this modem keeps the toolkit's menu to itself"},
    {NoticeId::ModemKeepsCommands, false, "IDS_CM_NOTICE_MODEM_KEEPS_COMMANDS",
     "%1: this modem keeps to itself: %2"},
    {NoticeId::ModemCountsDecimally, false, "IDS_CM_NOTICE_MODEM_COUNTS_DECIMALLY",
     "%1: this modem counts the types of commands in decimal"},
    {NoticeId::ModemToolkitInUse, true, "IDS_CM_NOTICE_MODEM_TOOLKIT_IN_USE",
     "%1: another program has the modem's toolkit", Toolkit},
    {NoticeId::ModemNotReady, true, "IDS_CM_NOTICE_MODEM_NOT_READY",
     "%1: the modem is not ready: %2", Toolkit},
};

constexpr bool isInOrder()
{
    size_t next = 0;
    for (const NoticeRow &row : NoticeRows) {
        if (static_cast<size_t>(row.id) != next++)
            return false;
    }
    return next == static_cast<size_t>(LastNoticeId) + 1;
}
static_assert(isInOrder(), "a row for each identifier, in their order");

// In one pass: what stands in an argument is no place for another.
std::string filledIn(const std::string &text, const std::vector<std::string> &arguments)
{
    std::string result;
    for (size_t at = 0; at < text.size(); ++at) {
        const size_t number = text[at] == '%' ? static_cast<size_t>(text[at + 1] - '1') : 9;
        if (number < arguments.size()) {
            result += arguments[number];
            ++at;
        } else {
            result += text[at];
        }
    }
    return result;
}

} // namespace

Notice noticeOf(NoticeId id, std::vector<std::string> arguments, const std::string &remark)
{
    const NoticeRow &row = NoticeRows[static_cast<size_t>(id)];
    Notice notice{row.name, arguments, {}, row.problem, row.awaited};
    if (!remark.empty())
        arguments.back() += " (" + remark + ')';
    notice.text = filledIn(row.english, arguments);
    return notice;
}
