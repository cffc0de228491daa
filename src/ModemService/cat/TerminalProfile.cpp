#include "Response.h"

namespace cat {

namespace {

// A bit of the profile (clause 5.2), bytes and bits counted from 1.
struct Facility {
    uint8_t byte;
    uint8_t bit;
    enum Kind {
        No,
        Done, // by the windows and the session
        Modems // by a terminal that has no modem of its own to do it
    } kind;
    const char *name;
    uint8_t type = 0; // of the proactive command, clause 9.4, where it is Done
};

constexpr auto No = Facility::No, Done = Facility::Done, Modems = Facility::Modems;

constexpr Facility Facilities[] = {
    {1, 1, Done, "profile download"},
    {1, 2, No, "SMS-PP data download"},
    {1, 3, No, "cell broadcast data download"},
    {1, 4, Done, "menu selection"},
    {1, 5, No, "SMS-PP data download"},
    {1, 6, Modems, "timer expiration"},
    {1, 7, No, "USSD string in call control"},
    {1, 8, No, "call control by NAA"},

    {2, 1, Done, "command result"},
    {2, 2, No, "call control by NAA"},
    {2, 3, No, "call control by NAA"},
    {2, 4, No, "MO short message control"},
    {2, 5, No, "call control by NAA"},
    {2, 6, Done, "UCS2 entry"},
    {2, 7, Done, "UCS2 display"},
    {2, 8, Done, "display of the extension text"},

    {3, 1, Done, "DISPLAY TEXT", 0x21},
    {3, 2, Done, "GET INKEY", 0x22},
    {3, 3, Done, "GET INPUT", 0x23},
    {3, 4, Modems, "MORE TIME"},
    {3, 5, Done, "PLAY TONE", 0x20},
    {3, 6, Modems, "POLL INTERVAL"},
    {3, 7, Modems, "POLLING OFF"},
    {3, 8, Modems, "REFRESH"},

    {4, 1, Done, "SELECT ITEM", 0x24},
    {4, 2, Modems, "SEND SHORT MESSAGE", 0x13},
    {4, 3, Modems, "SEND SS", 0x11},
    {4, 4, Modems, "SEND USSD", 0x12},
    {4, 5, No, "SET UP CALL", 0x10}, // always refused
    {4, 6, Done, "SET UP MENU", 0x25},
    {4, 7, No, "PROVIDE LOCAL INFORMATION (location and IMEI)"},
    {4, 8, No, "PROVIDE LOCAL INFORMATION (NMR)"},

    {5, 1, Done, "SET UP EVENT LIST", 0x05},
    {5, 2, No, "event: MT call"},
    {5, 3, No, "event: call connected"},
    {5, 4, No, "event: call disconnected"},
    {5, 5, No, "event: location status"},
    {5, 6, Done, "event: user activity"},
    {5, 7, No, "event: idle screen available"},
    {5, 8, No, "event: card reader status"},

    {6, 1, Done, "event: language selection"},
    {6, 2, No, "event: browser termination"},
    {6, 3, No, "event: data available"},
    {6, 4, No, "event: channel status"},
    {6, 5, No, "event: access technology change"},
    {6, 6, No, "event: display parameters changed"},
    {6, 7, No, "event: local connection"},
    {6, 8, No, "event: network search mode change"},

    {7, 1, No, "POWER ON CARD"},
    {7, 2, No, "POWER OFF CARD"},
    {7, 3, No, "PERFORM CARD APDU"},
    {7, 4, No, "GET READER STATUS (status)"},
    {7, 5, No, "GET READER STATUS (identifier)"},

    {8, 1, Modems, "TIMER MANAGEMENT (start, stop)"},
    {8, 2, Modems, "TIMER MANAGEMENT (get current value)"},
    {8, 3, Modems, "PROVIDE LOCAL INFORMATION (date, time and time zone)"},
    {8, 4, Done, "GET INKEY (binary choice)"},
    {8, 5, Done, "SET UP IDLE MODE TEXT", 0x28},
    {8, 6, No, "RUN AT COMMAND"},
    {8, 7, No, "SET UP CALL (second alpha identifier)"},
    {8, 8, No, "call control by NAA (second capability configuration)"},

    {9, 1, Done, "DISPLAY TEXT (sustained)"},
    {9, 2, No, "SEND DTMF"},
    {9, 3, No, "PROVIDE LOCAL INFORMATION (BCCH channel list)"},
    {9, 4, Modems, "PROVIDE LOCAL INFORMATION (language)"},
    {9, 5, No, "PROVIDE LOCAL INFORMATION (timing advance)"},
    {9, 6, Done, "LANGUAGE NOTIFICATION", 0x35},
    {9, 7, Done, "LAUNCH BROWSER", 0x15},
    {9, 8, No, "PROVIDE LOCAL INFORMATION (access technology)"},

    // 10 and 11: soft keys.  12 and 13: bearer independent protocol.  14 to 16: screen sizes, which
    // windows do not have.  17: bearer independent protocol again.

    {18, 1, Done, "DISPLAY TEXT (variable time-out)"},
    {18, 2, No, "GET INKEY (help while waiting for an immediate response)"},
    {18, 3, No, "USB"},
    {18, 4, Done, "GET INKEY (variable time-out)"},
    {18, 5, No, "PROVIDE LOCAL INFORMATION (ESN)"},
    {18, 6, No, "call control on GPRS"},
    {18, 7, No, "PROVIDE LOCAL INFORMATION (IMEISV)"},
    {18, 8, No, "PROVIDE LOCAL INFORMATION (search mode change)"},
};

} // namespace

Bytes terminalProfile(bool besideModem)
{
    Bytes profile;
    for (const Facility &facility : Facilities) {
        if (facility.kind == No || (besideModem && facility.kind == Modems))
            continue;
        if (profile.size() < facility.byte)
            profile.resize(facility.byte);
        profile[facility.byte - 1] |= uint8_t(1 << (facility.bit - 1));
    }
    return profile;
}

Bytes typesBesideModem()
{
    Bytes types;
    for (const Facility &facility : Facilities) {
        if (facility.type)
            types.push_back(facility.type);
    }
    return types;
}

} // namespace cat
