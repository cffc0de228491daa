#ifndef CAT_DATAOBJECT_H
#define CAT_DATAOBJECT_H

#include <string>

#include "Bytes.h"
#include "Command.h"

// The comprehension-TLV data objects of the standard (ETSI TS 102 223 clauses 8 and 9.3), and how
// the values of those that commands here use are read.

namespace cat {

struct DataObject {
    uint8_t tag; ///< without the comprehension bit
    const char *clause; ///< of ETSI TS 102 223 where no other standard is named
    const char *name;
};

/// Clause 8.31; its second byte is a record of EF_IMG.
struct IconIdentifier {
    bool selfExplanatory = false; ///< the icon takes the place of the text
};

/// A data object whose value is read; false for a value that is malformed.  Bytes behind those that
/// the standard has are passed over.
template <class Value> struct ReadableObject : DataObject {
    bool (*read)(ByteView bytes, Value &value);
};

struct ResponseLength {
    uint8_t min = 0;
    uint8_t max = 0;
};

/// What an SMS-SUBMIT sends; empty for what is none.
struct Submission {
    std::string address;
    std::string message;
};

bool readCommandDetails(ByteView bytes, CommandDetails &details);
bool readDeviceIdentities(ByteView bytes, DeviceIdentities &devices);
bool readDuration(ByteView bytes, Duration &duration);
bool readAlpha(ByteView bytes, std::string &text);
bool readAddress(ByteView bytes, std::string &number);
bool readSsString(ByteView bytes, std::string &code);
bool readUssdString(ByteView bytes, std::string &code);
bool readSubmission(ByteView bytes, Submission &submission);
bool readTextString(ByteView bytes, std::string &text);
bool readItem(ByteView bytes, Item &item);
bool readResponseLength(ByteView bytes, ResponseLength &length);
bool readIcon(ByteView bytes, IconIdentifier &icon);
bool readTimerIdentifier(ByteView bytes, uint8_t &timer);
bool readTimerValue(ByteView bytes, std::chrono::seconds &value);
bool readLanguage(ByteView bytes, std::string &language);
bool readUrl(ByteView bytes, std::string &url);
bool readByte(ByteView bytes, uint8_t &value);
bool readBytes(ByteView bytes, Bytes &value);
bool readFileList(ByteView bytes, Bytes &files);
bool readPresence(ByteView bytes, bool &there);

/// The data objects that are read.
namespace Objects {

inline constexpr ReadableObject<cat::CommandDetails> CommandDetails{
    {0x01, "8.6", "command details"}, readCommandDetails};
inline constexpr ReadableObject<cat::DeviceIdentities> DeviceIdentities{
    {0x02, "8.7", "device identities"}, readDeviceIdentities};
inline constexpr ReadableObject<cat::Duration> Duration{{0x04, "8.8", "duration"}, readDuration};
inline constexpr ReadableObject<std::string> AlphaIdentifier{{0x05, "8.2", "alpha identifier"},
                                                             readAlpha};
inline constexpr ReadableObject<std::string> Address{{0x06, "8.1", "address"}, readAddress};
inline constexpr ReadableObject<std::string> SsString{{0x09, "8.14", "SS string"}, readSsString};
inline constexpr ReadableObject<std::string> UssdString{{0x0a, "8.17", "USSD string"},
                                                        readUssdString};
inline constexpr ReadableObject<Submission> SmsTpdu{{0x0b, "8.13", "SMS TPDU"}, readSubmission};
inline constexpr ReadableObject<std::string> TextString{{0x0d, "8.15", "text string"},
                                                        readTextString};
inline constexpr ReadableObject<uint8_t> Tone{{0x0e, "8.16", "tone"}, readByte};
inline constexpr ReadableObject<cat::Item> Item{{0x0f, "8.9", "item"}, readItem};
inline constexpr ReadableObject<uint8_t> ItemIdentifier{{0x10, "8.10", "item identifier"},
                                                        readByte};
inline constexpr ReadableObject<cat::ResponseLength> ResponseLength{
    {0x11, "8.11", "response length"}, readResponseLength};
inline constexpr ReadableObject<Bytes> FileList{{0x12, "8.18", "file list"}, readFileList};
inline constexpr ReadableObject<std::string> DefaultText{{0x17, "8.23", "default text"},
                                                         readTextString};
inline constexpr ReadableObject<Bytes> EventList{{0x19, "8.25", "event list"}, readBytes};
inline constexpr ReadableObject<cat::IconIdentifier> IconIdentifier{
    {0x1e, "8.31", "icon identifier"}, readIcon};
inline constexpr DataObject ItemIconIdentifierList{0x1f, "8.32", "item icon identifier list"};
inline constexpr ReadableObject<Bytes> CommandApdu{{0x22, "8.35", "C-APDU"}, readBytes};
inline constexpr ReadableObject<uint8_t> TimerIdentifier{{0x24, "8.37", "timer identifier"},
                                                         readTimerIdentifier};
inline constexpr ReadableObject<std::chrono::seconds> TimerValue{{0x25, "8.38", "timer value"},
                                                                 readTimerValue};
inline constexpr ReadableObject<Bytes> AtCommand{{0x28, "8.40", "AT command"}, readBytes};
inline constexpr ReadableObject<bool> ImmediateResponse{{0x2b, "8.43", "immediate response"},
                                                        readPresence};
inline constexpr ReadableObject<Bytes> DtmfString{{0x2c, "8.44", "DTMF string"}, readBytes};
inline constexpr ReadableObject<std::string> Language{{0x2d, "8.45", "language"}, readLanguage};
inline constexpr ReadableObject<std::string> Url{{0x31, "8.48", "URL"}, readUrl};
inline constexpr ReadableObject<Bytes> ChannelData{{0x36, "8.53", "channel data"}, readBytes};
inline constexpr ReadableObject<uint8_t> ChannelDataLength{{0x37, "8.54", "channel data length"},
                                                           readByte};

} // namespace Objects

} // namespace cat

#endif
