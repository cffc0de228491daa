#ifndef PROACTIVECOMMAND_H
#define PROACTIVECOMMAND_H

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "ServiceFunction.h"
#include "ServiceStatus.h"
#include "cat/TextString.h"
#include "platform/ModemService.h"

// The proactive commands of a card as values, one structure for each (ETSI TS 102 223 clause 6.4).
// `Type` is the number that the service reports, `Name` the command's name in the standard. Numbers
// are what the card sent, valid or not.

struct CommandText {
    std::string utf8;
    bool unterminated = false; ///< fills its record to the end, without the closing zero: a fault
};

struct CommandMenuItem {
    int16_t id = 0;
    CommandText text;
};

struct CommandMenu {
    CommandText title;
    std::vector<CommandMenuItem> items;
    std::optional<int16_t> reportedCount; ///< reported in place of the number of items: a fault
    bool withoutItems = false; ///< the record's item pointer is null: a fault

    const CommandMenuItem *find(int16_t id) const;
};

struct SetUpMenu {
    static constexpr int32_t Type = MOVA_STKTYPE_SETUP_MENU;
    static constexpr const char *Name = "SET UP MENU";
    CommandMenu menu;
};

struct DisplayText {
    static constexpr int32_t Type = MOVA_STKTYPE_DISPLAY_TEXT;
    static constexpr const char *Name = "DISPLAY TEXT";
    CommandText text;
    int32_t clearMode = 1;
    uint16_t duration = 0; ///< seconds
};

/// `inputType` of the commands below, as the records have it.
enum InputType : int32_t { AnyCharacters = 0, YesOrNo = 1, DigitsOnly = 2, Ucs2Characters = 3 };

struct GetInkey {
    static constexpr int32_t Type = MOVA_STKTYPE_GET_INKEY;
    static constexpr const char *Name = "GET INKEY";
    CommandText text;
    int32_t inputType = 0;
    int32_t option = 0;
    uint16_t duration = 0;
};

struct GetInput {
    static constexpr int32_t Type = MOVA_STKTYPE_GET_INPUT;
    static constexpr const char *Name = "GET INPUT";
    CommandText text;
    int32_t inputType = 0;
    int32_t echo = 1;
    int16_t minLength = 0;
    int16_t maxLength = 255;
    int32_t option = 0;
    CommandText defaultText;
};

struct SetUpCall {
    static constexpr int32_t Type = MOVA_STKTYPE_SETUP_CALL;
    static constexpr const char *Name = "SET UP CALL";
    CommandText text;
    std::string address; ///< dialling number
};

struct PlayTone {
    static constexpr int32_t Type = MOVA_STKTYPE_PLAY_TONE;
    static constexpr const char *Name = "PLAY TONE";
    CommandText text;
    int32_t tone = 16; ///< general beep, ETSI TS 102 223 clause 8.16
    uint16_t duration = 1; ///< seconds
};

struct SelectItem {
    static constexpr int32_t Type = MOVA_STKTYPE_SELECT_ITEM;
    static constexpr const char *Name = "SELECT ITEM";
    CommandMenu menu;
    int16_t defaultItem = 0;
};

struct Refresh {
    static constexpr int32_t Type = MOVA_STKTYPE_REFRESH;
    static constexpr const char *Name = "REFRESH";
    int32_t qualifier = 0; ///< ETSI TS 102 223 clause 8.6
    std::vector<uint8_t> files; ///< file list, ETSI TS 102 223 clause 8.18; at most 256 bytes
};

struct SendSs {
    static constexpr int32_t Type = MOVA_STKTYPE_SEND_SS;
    static constexpr const char *Name = "SEND SS";
    CommandText text;
    std::string code; ///< supplementary service control string
};

struct SendShortMessage {
    static constexpr int32_t Type = MOVA_STKTYPE_SEND_SMS;
    static constexpr const char *Name = "SEND SHORT MESSAGE";
    CommandText text;
    std::string address;
    std::string message;
};

struct SendUssd {
    static constexpr int32_t Type = MOVA_STKTYPE_SEND_USSD;
    static constexpr const char *Name = "SEND USSD";
    CommandText text;
    std::string code;
};

struct LaunchBrowser {
    static constexpr int32_t Type = MOVA_STKTYPE_LAUNCH_BROWSER;
    static constexpr const char *Name = "LAUNCH BROWSER";
    CommandText url;
    int32_t launchMode = 0;
};

struct SetUpIdleModeText {
    static constexpr int32_t Type = MOVA_STKTYPE_SETUP_IDLE_MODE_TEXT;
    static constexpr const char *Name = "SET UP IDLE MODE TEXT";
    CommandText text;
};

/// A command that has no details, with any type number.
struct UnknownCommand {
    static constexpr const char *Name = "UNKNOWN COMMAND";
    int32_t type = 0;
};

using CommandBody = std::variant<UnknownCommand, SetUpMenu, DisplayText, GetInkey, GetInput,
                                 SetUpCall, PlayTone, SelectItem, Refresh, SendSs, SendShortMessage,
                                 SendUssd, LaunchBrowser, SetUpIdleModeText>;

/// What the card is told of a command that it sent (ETSI TS 102 223 clause 6.8).
struct TerminalResponse {
    enum class Result {
        Performed, ///< carried out, or answered with an item or a text
        BackwardMove, ///< back in the session
        Cancelled, ///< the user closed the input without an answer
        Terminated, ///< the user ended the session, or nothing could handle the command
        NotSupported, ///< beyond the terminal's capabilities
        NoResponse, ///< the response time ran out
        Unable, ///< the terminal is currently unable to do it: there is no service
        Other ///< any other number in a response without data
    };

    Result result = Result::Performed;
    std::optional<int16_t> item = std::nullopt; ///< identifier of the chosen item
    std::optional<std::string> text = std::nullopt; ///< the text that was entered, UTF-8
    std::optional<cat::Bytes> coded = std::nullopt; ///< the same for the card, see codeText()
    std::optional<int32_t> value = std::nullopt; ///< the number of a response without data
};

struct ProactiveCommand {
    CommandBody body;
    Faults faults{}; ///< for calls about this command
    std::chrono::milliseconds responseTime{
        0}; ///< how long the card waits for the answer, 0 for ever
    TerminalResponse modemAnswer{}; ///< to what the modem answers by itself
    /// How the text that the user enters is coded.  Nothing where every text is taken as it is.
    std::optional<cat::TextCoding> answerCoding = std::nullopt;
    size_t answerRoom = SIZE_MAX; ///< bytes of the coded text that the response has room for
};

/// Codes the text that the user entered, if any, as the command wants it.  A status other than
/// success where its coding cannot carry the text, or the response has no room for it.
ServiceStatus codeText(const ProactiveCommand &command, TerminalResponse &response);

int32_t commandType(const CommandBody &body);
const char *commandName(const CommandBody &body);
/// The menu of a Set Up Menu or Select Item, null for every other command.
const CommandMenu *commandMenu(const CommandBody &body);
/// True for what the modem carries out and answers by itself: Set Up Menu, Refresh, Send SS, Send
/// Short Message, Send USSD.
bool isAnsweredByModem(const CommandBody &body);

/// "ok", "back", "cancelled", "terminated", "notSupported", "noResponse", "unable" or
/// "other".
const char *resultName(TerminalResponse::Result result);

#endif
