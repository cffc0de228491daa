<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="en" sourcelanguage="en">
<context>
    <name>STKPlugin</name>
    <message>
        <source>IDS_STK_BTN_BACK</source>
        <translation>Back</translation>
    </message>
    <message>
        <source>IDS_STK_BTN_SELECT</source>
        <translation>Select</translation>
    </message>
    <message>
        <source>IDS_STK_BTN_CLOSE</source>
        <translation>Close</translation>
    </message>
    <message>
        <source>IDS_STK_BTN_OK</source>
        <translation>OK</translation>
    </message>
    <message>
        <source>IDS_STK_BTN_CANCEL</source>
        <translation>Cancel</translation>
    </message>
    <message>
        <source>IDS_STK_MSG_PROMPT</source>
        <translation>Note</translation>
    </message>
    <message>
        <source>IDS_STK_MSG_INPUTFAILED</source>
        <translation>Your input could not be sent to the SIM card.</translation>
    </message>
</context>
<context>
    <name>LuminePlugin</name>
    <message>
        <source>IDS_OK</source>
        <translation>OK</translation>
    </message>
    <message>
        <source>IDS_CANCEL</source>
        <translation>Cancel</translation>
    </message>
    <message>
        <source>IDS_YES</source>
        <translation>Yes</translation>
    </message>
    <message>
        <source>IDS_NO</source>
        <translation>No</translation>
    </message>
</context>
<context>
    <name>ConnectionManager</name>
    <message>
        <source>IDS_CM_TITLE</source>
        <translation>Connection Manager</translation>
    </message>
    <message>
        <source>IDS_CM_MENU_FILE</source>
        <translation>&amp;File</translation>
    </message>
    <message>
        <source>IDS_CM_MENU_MODEM</source>
        <translation>&amp;Modem</translation>
    </message>
    <message>
        <source>IDS_CM_MENU_CARD</source>
        <translation>&amp;Card</translation>
    </message>
    <message>
        <source>IDS_CM_MENU_LANGUAGE</source>
        <translation>&amp;Language</translation>
    </message>
    <message>
        <source>IDS_CM_LANGUAGE</source>
        <translation>Language</translation>
    </message>
    <message>
        <source>IDS_CM_MENU_HELP</source>
        <translation>&amp;Help</translation>
    </message>
    <message>
        <source>IDS_CM_OPEN_CARD</source>
        <translation>&amp;Open card…</translation>
    </message>
    <message>
        <source>IDS_CM_QUIT</source>
        <translation>&amp;Quit</translation>
    </message>
    <message>
        <source>IDS_CM_TOOLKIT</source>
        <translation>SIM toolkit</translation>
    </message>
    <message>
        <source>IDS_CM_REMOVE</source>
        <translation>&amp;Remove modem</translation>
    </message>
    <message>
        <source>IDS_CM_INSERT</source>
        <translation>&amp;Insert modem</translation>
    </message>
    <message>
        <source>IDS_CM_END_SESSION</source>
        <translation>&amp;End session</translation>
    </message>
    <message>
        <source>IDS_CM_TIME_OUT</source>
        <translation>&amp;Time out session</translation>
    </message>
    <message>
        <source>IDS_CM_SHOW_NETWORK</source>
        <translation>&amp;Network side</translation>
    </message>
    <message>
        <source>IDS_CM_NETWORK_TITLE</source>
        <translation>Network side</translation>
    </message>
    <message>
        <source>IDS_CM_NETWORK_HINT</source>
        <translation>Play the network and the modem, also while a window of the SIM toolkit is open.</translation>
    </message>
    <message>
        <source>IDS_CM_ABOUT</source>
        <translation>&amp;About</translation>
    </message>
    <message>
        <source>IDS_CM_ABOUT_TEXT</source>
        <translation>Shows the state of a mobile broadband modem and opens the SIM Application Toolkit of its card.</translation>
    </message>
    <message>
        <source>IDS_CM_TRANSCRIPT</source>
        <translation>Between card and modem</translation>
    </message>
    <message>
        <source>IDS_CM_TRANSCRIPT_EMPTY</source>
        <translation>What the card sends and what it is answered appears here.</translation>
    </message>
    <message>
        <source>IDS_CM_COPY</source>
        <translation>Copy</translation>
    </message>
    <message>
        <source>IDS_CM_CLEAR</source>
        <translation>Clear</translation>
    </message>
    <message>
        <source>IDS_CM_STATE_NO_CARD</source>
        <translation>No card</translation>
    </message>
    <message>
        <source>IDS_CM_STATE_REMOVED</source>
        <translation>Modem removed</translation>
    </message>
    <message>
        <source>IDS_CM_STATE_READY</source>
        <translation>Modem ready</translation>
    </message>
    <message>
        <source>IDS_CM_STATE_BUSY</source>
        <translation>Session under way</translation>
    </message>
    <message>
        <source>IDS_CM_CARD_NAME</source>
        <translation>Card: %1</translation>
    </message>
    <message>
        <source>IDS_CM_NO_CARD_HINT</source>
        <translation>Open a card from the File menu.</translation>
    </message>
    <message>
        <source>IDS_CM_OPEN_TITLE</source>
        <translation>Open card</translation>
    </message>
    <message>
        <source>IDS_CM_CARD_FILES</source>
        <translation>Simulated cards</translation>
    </message>
    <message>
        <source>IDS_CM_URL_OPENED</source>
        <translation>The card opened %1</translation>
    </message>
    <message>
        <source>IDS_CM_TOOLKIT_FAILED</source>
        <translation>The SIM toolkit could not be opened.</translation>
    </message>
    <message>
        <source>IDS_CM_SEND_COMMAND</source>
        <translation>Let the card send…</translation>
    </message>
    <message>
        <source>IDS_CM_WAY_UNTIL_CLOSED</source>
        <translation>Until it is closed</translation>
    </message>
    <message>
        <source>IDS_CM_WAY_CLEARS_ITSELF</source>
        <translation>For 5 seconds</translation>
    </message>
    <message>
        <source>IDS_CM_WAY_ANY_KEY</source>
        <translation>Any character</translation>
    </message>
    <message>
        <source>IDS_CM_WAY_DIGIT</source>
        <translation>A digit</translation>
    </message>
    <message>
        <source>IDS_CM_WAY_YES_NO</source>
        <translation>Yes or no</translation>
    </message>
    <message>
        <source>IDS_CM_WAY_YES_NO_LIMIT</source>
        <translation>Yes or no within 8 seconds</translation>
    </message>
    <message>
        <source>IDS_CM_WAY_TEXT</source>
        <translation>Text</translation>
    </message>
    <message>
        <source>IDS_CM_WAY_DIGITS</source>
        <translation>2 to 4 digits</translation>
    </message>
    <message>
        <source>IDS_CM_WAY_HIDDEN</source>
        <translation>Hidden digits</translation>
    </message>
    <message>
        <source>IDS_CM_WAY_DEFAULT_TEXT</source>
        <translation>With a default text</translation>
    </message>
    <message>
        <source>IDS_CM_WAY_TONE_DIAL</source>
        <translation>Dial tone</translation>
    </message>
    <message>
        <source>IDS_CM_WAY_TONE_BUSY</source>
        <translation>Busy</translation>
    </message>
    <message>
        <source>IDS_CM_WAY_TONE_ERROR</source>
        <translation>Error</translation>
    </message>
    <message>
        <source>IDS_CM_WAY_TONE_CALL_WAITING</source>
        <translation>Call waiting</translation>
    </message>
    <message>
        <source>IDS_CM_WAY_TONE_RINGING</source>
        <translation>Ringing</translation>
    </message>
    <message>
        <source>IDS_CM_WAY_TONE_BEEP</source>
        <translation>Beep</translation>
    </message>
    <message>
        <source>IDS_CM_WAY_TONE_POSITIVE</source>
        <translation>Positive acknowledgement</translation>
    </message>
    <message>
        <source>IDS_CM_WAY_TONE_NEGATIVE</source>
        <translation>Negative acknowledgement</translation>
    </message>
    <message>
        <source>IDS_CM_WAY_URL_WEB</source>
        <translation>Web address</translation>
    </message>
    <message>
        <source>IDS_CM_WAY_URL_NONE</source>
        <translation>Without an address</translation>
    </message>
    <message>
        <source>IDS_CM_WAY_URL_REFUSED</source>
        <translation>Address that is refused</translation>
    </message>
    <message>
        <source>IDS_CM_URL_REFUSED</source>
        <translation>The card asked for %1, which was not opened: %2</translation>
    </message>
    <message>
        <source>IDS_CM_URL_NO_ADDRESS</source>
        <translation>it is no address</translation>
    </message>
    <message>
        <source>IDS_CM_URL_SCHEME</source>
        <translation>only http and https are opened</translation>
    </message>
    <message>
        <source>IDS_CM_URL_NO_HOST</source>
        <translation>it names no host</translation>
    </message>
    <message>
        <source>IDS_CM_READER</source>
        <translation>Card reader: %1 — %2</translation>
    </message>
    <message>
        <source>IDS_CM_READER_CARD</source>
        <translation>card</translation>
    </message>
    <message>
        <source>IDS_CM_READER_EMPTY</source>
        <translation>empty</translation>
    </message>
    <message>
        <source>IDS_CM_READER_MUTE</source>
        <translation>no answer</translation>
    </message>
    <message>
        <source>IDS_CM_READER_IN_USE</source>
        <translation>in use</translation>
    </message>
    <message>
        <source>IDS_CM_READER_GONE</source>
        <translation>not connected</translation>
    </message>
    <message>
        <source>IDS_CM_NO_READER</source>
        <translation>Card reader: %1</translation>
    </message>
    <message>
        <source>IDS_CM_READER_NONE</source>
        <translation>none</translation>
    </message>
    <message>
        <source>IDS_CM_MODEM</source>
        <translation>Modem: %1 — %2</translation>
    </message>
    <message>
        <source>IDS_CM_NO_MODEM</source>
        <translation>Modem: none</translation>
    </message>
    <message>
        <source>IDS_CM_MODEM_FREE</source>
        <translation>free</translation>
    </message>
    <message>
        <source>IDS_CM_MODEM_IN_USE_BY</source>
        <translation>in use by %1</translation>
    </message>
    <message>
        <source>IDS_CM_MODEM_DENIED</source>
        <translation>no permission</translation>
    </message>
    <message>
        <source>IDS_CM_MODEM_CONNECTED</source>
        <translation>connected</translation>
    </message>
    <message>
        <source>IDS_CM_MODEM_NOT_READY</source>
        <translation>not ready</translation>
    </message>
    <message>
        <source>IDS_CM_RESTART</source>
        <translation>Start &amp;anew</translation>
    </message>
    <message>
        <source>IDS_CM_RESTART_MODEM</source>
        <translation>Start &amp;anew (the network goes for a moment)</translation>
    </message>
    <message>
        <source>IDS_CM_STATE_WAITING</source>
        <translation>Waiting for the card</translation>
    </message>
    <message>
        <source>IDS_CM_STATE_WAITING_MODEM</source>
        <translation>Waiting for the modem</translation>
    </message>
    <message>
        <source>IDS_CM_STATE_WAITING_PIN</source>
        <translation>Waiting for the PIN</translation>
    </message>
    <message>
        <source>IDS_CM_STATE_WAITING_TOOLKIT</source>
        <translation>Waiting for the SIM toolkit</translation>
    </message>
    <message>
        <source>IDS_CM_STATE_NO_TOOLKIT</source>
        <translation>No SIM toolkit</translation>
    </message>
    <message>
        <source>IDS_CM_URL_NO_BROWSER</source>
        <translation>The card asked for %1, but no browser could be started.</translation>
    </message>
    <message>
        <source>IDS_CM_UNCODABLE</source>
        <translation>This card cannot take one of the characters that were entered.</translation>
    </message>
    <message>
        <source>IDS_CM_PIN_TITLE</source>
        <translation>PIN of the SIM card</translation>
    </message>
    <message>
        <source>IDS_CM_PIN_ASKS</source>
        <translation>The card in “%1” asks for its PIN.</translation>
    </message>
    <message>
        <source>IDS_CM_PIN_WRONG</source>
        <translation>The last PIN was wrong.</translation>
    </message>
    <message>
        <source>IDS_CM_PIN_FIELD</source>
        <translation>&amp;PIN (4 to 8 digits):</translation>
    </message>
    <message>
        <source>IDS_CM_PIN_TRIES</source>
        <translation>Tries that remain: %1</translation>
    </message>
    <message>
        <source>IDS_CM_PIN_LAST_TRY</source>
        <translation>This is the last try: a wrong PIN blocks the card.</translation>
    </message>
    <message>
        <source>IDS_CM_PIN_CONFIRM</source>
        <translation>I know, and am sure of the PIN</translation>
    </message>
    <message>
        <source>IDS_CM_PIN_OK</source>
        <translation>OK</translation>
    </message>
    <message>
        <source>IDS_CM_PIN_CANCEL</source>
        <translation>Go on without PIN</translation>
    </message>
    <message>
        <source>IDS_CM_NOTICE_NO_DAEMON</source>
        <translation>no smart-card daemon is running (pcscd)</translation>
    </message>
    <message>
        <source>IDS_CM_NOTICE_NO_READER</source>
        <translation>no smart-card reader is connected</translation>
    </message>
    <message>
        <source>IDS_CM_NOTICE_NO_SUCH_READER</source>
        <translation>no smart-card reader's name begins with "%1"; there is %2</translation>
    </message>
    <message>
        <source>IDS_CM_NOTICE_READER_GONE</source>
        <translation>%1: the reader is gone</translation>
    </message>
    <message>
        <source>IDS_CM_NOTICE_READER_FAILS</source>
        <translation>%1: the smart-card daemon reports: %2</translation>
    </message>
    <message>
        <source>IDS_CM_NOTICE_READER_CHOSEN</source>
        <translation>%1: chosen among %2 readers</translation>
    </message>
    <message>
        <source>IDS_CM_NOTICE_READER_HANGS</source>
        <translation>%1: the reader does not answer; another card can be opened</translation>
    </message>
    <message>
        <source>IDS_CM_NOTICE_READER_ANSWERS</source>
        <translation>%1: the reader answers again</translation>
    </message>
    <message>
        <source>IDS_CM_NOTICE_NO_CARD</source>
        <translation>%1: there is no card in the reader</translation>
    </message>
    <message>
        <source>IDS_CM_NOTICE_CARD_MUTE</source>
        <translation>%1: the card does not answer (is it the right way round?)</translation>
    </message>
    <message>
        <source>IDS_CM_NOTICE_CARD_IN_USE</source>
        <translation>%1: another program keeps the card for itself</translation>
    </message>
    <message>
        <source>IDS_CM_NOTICE_CARD_SILENT</source>
        <translation>%1: the card does not answer</translation>
    </message>
    <message>
        <source>IDS_CM_NOTICE_CARD_REFUSES</source>
        <translation>%1: the card answers %2 with %3</translation>
    </message>
    <message>
        <source>IDS_CM_NOTICE_USIM</source>
        <translation>%1: a USIM</translation>
    </message>
    <message>
        <source>IDS_CM_NOTICE_ISIM</source>
        <translation>%1: an ISIM</translation>
    </message>
    <message>
        <source>IDS_CM_NOTICE_SIM</source>
        <translation>%1: a 2G SIM</translation>
    </message>
    <message>
        <source>IDS_CM_NOTICE_UICC</source>
        <translation>%1: a UICC without a USIM</translation>
    </message>
    <message>
        <source>IDS_CM_NOTICE_NO_SIM</source>
        <translation>%1: no SIM application on this card (a bank card?)</translation>
    </message>
    <message>
        <source>IDS_CM_NOTICE_NO_MENU</source>
        <translation>%1: this card has no toolkit menu</translation>
    </message>
    <message>
        <source>IDS_CM_NOTICE_MENU_LATE</source>
        <translation>%1: the toolkit menu came late</translation>
    </message>
    <message>
        <source>IDS_CM_NOTICE_PIN_BLOCKED</source>
        <translation>%1: the PIN of this card is blocked; only its PUK, in a telephone, helps</translation>
    </message>
    <message>
        <source>IDS_CM_NOTICE_PIN_LEFT_OUT</source>
        <translation>%1: the card goes on without its PIN</translation>
    </message>
    <message>
        <source>IDS_CM_NOTICE_PIN_UNCHECKED</source>
        <translation>%1: the PIN could not be checked: the card answers %2</translation>
    </message>
    <message>
        <source>IDS_CM_NOTICE_NO_MENU_PIN_BLOCKED</source>
        <translation>%1: this card has no toolkit menu: its PIN is blocked; only its PUK, in a telephone, helps</translation>
    </message>
    <message>
        <source>IDS_CM_NOTICE_NO_MENU_PIN_LEFT_OUT</source>
        <translation>%1: this card has no toolkit menu: it goes on without its PIN</translation>
    </message>
    <message>
        <source>IDS_CM_NOTICE_NO_MENU_PIN_UNCHECKED</source>
        <translation>%1: this card has no toolkit menu: its PIN could not be checked: the card answers %2</translation>
    </message>
    <message>
        <source>IDS_CM_NOTICE_CAPTURE_FAILED</source>
        <translation>%1: cannot write the capture: %2</translation>
    </message>
    <message>
        <source>IDS_CM_NOTICE_MODEM_MISSING</source>
        <translation>%1: there is no such device</translation>
    </message>
    <message>
        <source>IDS_CM_NOTICE_MODEM_IS_FOLDER</source>
        <translation>%1: this is a folder, no device</translation>
    </message>
    <message>
        <source>IDS_CM_NOTICE_MODEM_IS_FILE</source>
        <translation>%1: this is a file, no device</translation>
    </message>
    <message>
        <source>IDS_CM_NOTICE_NO_MBIM_MODEM</source>
        <translation>no MBIM modem is connected</translation>
    </message>
    <message>
        <source>IDS_CM_NOTICE_MODEM_DENIED</source>
        <translation>%1: this user may not use the device (is the user in the group dialout?)</translation>
    </message>
    <message>
        <source>IDS_CM_NOTICE_MODEM_IS_NONE</source>
        <translation>%1: this is no serial port</translation>
    </message>
    <message>
        <source>IDS_CM_NOTICE_MODEM_IS_SERIAL</source>
        <translation>%1: this is a serial port, no MBIM device; with AT commands it is %2</translation>
    </message>
    <message>
        <source>IDS_CM_NOTICE_MODEM_IN_USE</source>
        <translation>%1: another program keeps the device for itself (a modem manager?)</translation>
    </message>
    <message>
        <source>IDS_CM_NOTICE_MODEM_IN_USE_BY</source>
        <translation>%1: another program keeps the device for itself: %2</translation>
    </message>
    <message>
        <source>IDS_CM_NOTICE_MODEM_GONE</source>
        <translation>%1: the modem is gone</translation>
    </message>
    <message>
        <source>IDS_CM_NOTICE_MODEM_SILENT</source>
        <translation>%1: the modem does not answer</translation>
    </message>
    <message>
        <source>IDS_CM_NOTICE_MODEM_ANSWERS</source>
        <translation>%1: the modem answers again</translation>
    </message>
    <message>
        <source>IDS_CM_NOTICE_MODEM_UNREADABLE</source>
        <translation>%1: the modem sent a command that cannot be read</translation>
    </message>
    <message>
        <source>IDS_CM_NOTICE_MODEM_NO_SIM</source>
        <translation>%1: there is no usable SIM card in the modem</translation>
    </message>
    <message>
        <source>IDS_CM_NOTICE_MODEM_REFUSES_PIN</source>
        <translation>%1: the modem did not take the PIN; the card goes on without it</translation>
    </message>
    <message>
        <source>IDS_CM_NOTICE_MODEM_REFUSES</source>
        <translation>%1: the modem refuses %2</translation>
    </message>
    <message>
        <source>IDS_CM_NOTICE_MODEM_NO_MENU</source>
        <translation>%1: no toolkit menu has come; the card sends it when it starts: Card, Start anew</translation>
    </message>
    <message>
        <source>IDS_CM_NOTICE_MODEM_NOT_OPENED</source>
        <translation>%1: the modem could not be opened: %2</translation>
    </message>
    <message>
        <source>IDS_CM_NOTICE_MODEM_NO_TOOLKIT</source>
        <translation>%1: this modem offers no toolkit</translation>
    </message>
    <message>
        <source>IDS_CM_NOTICE_MODEM_REFUSES_TOOLKIT</source>
        <translation>%1: the modem refuses the toolkit's commands; another of its ports may take them, or it offers no toolkit</translation>
    </message>
    <message>
        <source>IDS_CM_NOTICE_MODEM_KEEPS_MENU</source>
        <translation>%1: this modem keeps the toolkit's menu to itself</translation>
    </message>
    <message>
        <source>IDS_CM_NOTICE_MODEM_KEEPS_COMMANDS</source>
        <translation>%1: this modem keeps to itself: %2</translation>
    </message>
    <message>
        <source>IDS_CM_NOTICE_MODEM_COUNTS_DECIMALLY</source>
        <translation>%1: this modem counts the types of commands in decimal</translation>
    </message>
    <message>
        <source>IDS_CM_NOTICE_MODEM_TOOLKIT_IN_USE</source>
        <translation>%1: another program has the modem's toolkit</translation>
    </message>
    <message>
        <source>IDS_CM_NOTICE_MODEM_NOT_READY</source>
        <translation>%1: the modem is not ready: %2</translation>
    </message>
    <message>
        <source>IDS_CM_URL_ASK</source>
        <translation>The card wants to open a page of this site:</translation>
    </message>
    <message>
        <source>IDS_CM_URL_OPEN</source>
        <translation>Open</translation>
    </message>
    <message>
        <source>IDS_CM_URL_ALWAYS</source>
        <translation>Always for this site</translation>
    </message>
    <message>
        <source>IDS_CM_URL_ALWAYS_HINT</source>
        <translation>Opens it, and pages of this site without asking until the connection manager is closed</translation>
    </message>
    <message>
        <source>IDS_CM_URL_NOT_NOW</source>
        <translation>Not now</translation>
    </message>
    <message>
        <source>IDS_CM_NO_MENU</source>
        <translation>The card offers no menu</translation>
    </message>
</context>
</TS>
