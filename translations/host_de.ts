<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="de" sourcelanguage="en">
<context>
    <name>STKPlugin</name>
    <message>
        <source>IDS_STK_BTN_BACK</source>
        <translation>Zurück</translation>
    </message>
    <message>
        <source>IDS_STK_BTN_SELECT</source>
        <translation>Wählen</translation>
    </message>
    <message>
        <source>IDS_STK_BTN_CLOSE</source>
        <translation>Schließen</translation>
    </message>
    <message>
        <source>IDS_STK_BTN_OK</source>
        <translation>OK</translation>
    </message>
    <message>
        <source>IDS_STK_BTN_CANCEL</source>
        <translation>Abbrechen</translation>
    </message>
    <message>
        <source>IDS_STK_MSG_PROMPT</source>
        <translation>Hinweis</translation>
    </message>
    <message>
        <source>IDS_STK_MSG_INPUTFAILED</source>
        <translation>Die Eingabe konnte nicht an die SIM-Karte gesendet werden.</translation>
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
        <translation>Abbrechen</translation>
    </message>
    <message>
        <source>IDS_YES</source>
        <translation>Ja</translation>
    </message>
    <message>
        <source>IDS_NO</source>
        <translation>Nein</translation>
    </message>
</context>
<context>
    <name>ConnectionManager</name>
    <message>
        <source>IDS_CM_TITLE</source>
        <translation>Verbindungsmanager</translation>
    </message>
    <message>
        <source>IDS_CM_MENU_FILE</source>
        <translation>&amp;Datei</translation>
    </message>
    <message>
        <source>IDS_CM_MENU_MODEM</source>
        <translation>&amp;Modem</translation>
    </message>
    <message>
        <source>IDS_CM_MENU_CARD</source>
        <translation>&amp;Karte</translation>
    </message>
    <message>
        <source>IDS_CM_MENU_LANGUAGE</source>
        <translation>&amp;Sprache</translation>
    </message>
    <message>
        <source>IDS_CM_LANGUAGE</source>
        <translation>Sprache</translation>
    </message>
    <message>
        <source>IDS_CM_MENU_HELP</source>
        <translation>&amp;Hilfe</translation>
    </message>
    <message>
        <source>IDS_CM_OPEN_CARD</source>
        <translation>Karte &amp;öffnen …</translation>
    </message>
    <message>
        <source>IDS_CM_QUIT</source>
        <translation>&amp;Beenden</translation>
    </message>
    <message>
        <source>IDS_CM_TOOLKIT</source>
        <translation>SIM-Dienste</translation>
    </message>
    <message>
        <source>IDS_CM_REMOVE</source>
        <translation>Modem &amp;entfernen</translation>
    </message>
    <message>
        <source>IDS_CM_INSERT</source>
        <translation>Modem e&amp;insetzen</translation>
    </message>
    <message>
        <source>IDS_CM_END_SESSION</source>
        <translation>Sitzung &amp;beenden</translation>
    </message>
    <message>
        <source>IDS_CM_TIME_OUT</source>
        <translation>Sitzung &amp;ablaufen lassen</translation>
    </message>
    <message>
        <source>IDS_CM_SHOW_NETWORK</source>
        <translation>&amp;Netzseite</translation>
    </message>
    <message>
        <source>IDS_CM_NETWORK_TITLE</source>
        <translation>Netzseite</translation>
    </message>
    <message>
        <source>IDS_CM_NETWORK_HINT</source>
        <translation>Spielen Sie Netz und Modem, auch während ein Fenster der SIM-Dienste offen ist.</translation>
    </message>
    <message>
        <source>IDS_CM_ABOUT</source>
        <translation>&amp;Über</translation>
    </message>
    <message>
        <source>IDS_CM_ABOUT_TEXT</source>
        <translation>Zeigt den Zustand eines Mobilfunkmodems und öffnet die Dienste (SIM Application Toolkit) seiner Karte.</translation>
    </message>
    <message>
        <source>IDS_CM_TRANSCRIPT</source>
        <translation>Zwischen Karte und Modem</translation>
    </message>
    <message>
        <source>IDS_CM_TRANSCRIPT_EMPTY</source>
        <translation>Hier erscheint, was die Karte sendet und was ihr geantwortet wird.</translation>
    </message>
    <message>
        <source>IDS_CM_COPY</source>
        <translation>Kopieren</translation>
    </message>
    <message>
        <source>IDS_CM_CLEAR</source>
        <translation>Leeren</translation>
    </message>
    <message>
        <source>IDS_CM_STATE_NO_CARD</source>
        <translation>Keine Karte</translation>
    </message>
    <message>
        <source>IDS_CM_STATE_REMOVED</source>
        <translation>Modem entfernt</translation>
    </message>
    <message>
        <source>IDS_CM_STATE_READY</source>
        <translation>Modem bereit</translation>
    </message>
    <message>
        <source>IDS_CM_STATE_BUSY</source>
        <translation>Sitzung läuft</translation>
    </message>
    <message>
        <source>IDS_CM_CARD_NAME</source>
        <translation>Karte: %1</translation>
    </message>
    <message>
        <source>IDS_CM_NO_CARD_HINT</source>
        <translation>Öffnen Sie eine Karte über das Menü „Datei“.</translation>
    </message>
    <message>
        <source>IDS_CM_OPEN_TITLE</source>
        <translation>Karte öffnen</translation>
    </message>
    <message>
        <source>IDS_CM_CARD_FILES</source>
        <translation>Simulierte Karten</translation>
    </message>
    <message>
        <source>IDS_CM_URL_OPENED</source>
        <translation>Die Karte hat %1 geöffnet</translation>
    </message>
    <message>
        <source>IDS_CM_TOOLKIT_FAILED</source>
        <translation>Die SIM-Dienste konnten nicht geöffnet werden.</translation>
    </message>
    <message>
        <source>IDS_CM_SEND_COMMAND</source>
        <translation>Die Karte senden lassen …</translation>
    </message>
    <message>
        <source>IDS_CM_WAY_UNTIL_CLOSED</source>
        <translation>Bis er geschlossen wird</translation>
    </message>
    <message>
        <source>IDS_CM_WAY_CLEARS_ITSELF</source>
        <translation>Für 5 Sekunden</translation>
    </message>
    <message>
        <source>IDS_CM_WAY_ANY_KEY</source>
        <translation>Ein beliebiges Zeichen</translation>
    </message>
    <message>
        <source>IDS_CM_WAY_DIGIT</source>
        <translation>Eine Ziffer</translation>
    </message>
    <message>
        <source>IDS_CM_WAY_YES_NO</source>
        <translation>Ja oder Nein</translation>
    </message>
    <message>
        <source>IDS_CM_WAY_YES_NO_LIMIT</source>
        <translation>Ja oder Nein binnen 8 Sekunden</translation>
    </message>
    <message>
        <source>IDS_CM_WAY_TEXT</source>
        <translation>Text</translation>
    </message>
    <message>
        <source>IDS_CM_WAY_DIGITS</source>
        <translation>2 bis 4 Ziffern</translation>
    </message>
    <message>
        <source>IDS_CM_WAY_HIDDEN</source>
        <translation>Verdeckte Ziffern</translation>
    </message>
    <message>
        <source>IDS_CM_WAY_DEFAULT_TEXT</source>
        <translation>Mit Vorgabetext</translation>
    </message>
    <message>
        <source>IDS_CM_WAY_TONE_DIAL</source>
        <translation>Wählton</translation>
    </message>
    <message>
        <source>IDS_CM_WAY_TONE_BUSY</source>
        <translation>Besetzt</translation>
    </message>
    <message>
        <source>IDS_CM_WAY_TONE_ERROR</source>
        <translation>Fehler</translation>
    </message>
    <message>
        <source>IDS_CM_WAY_TONE_CALL_WAITING</source>
        <translation>Anklopfen</translation>
    </message>
    <message>
        <source>IDS_CM_WAY_TONE_RINGING</source>
        <translation>Freizeichen</translation>
    </message>
    <message>
        <source>IDS_CM_WAY_TONE_BEEP</source>
        <translation>Piepton</translation>
    </message>
    <message>
        <source>IDS_CM_WAY_TONE_POSITIVE</source>
        <translation>Positive Quittung</translation>
    </message>
    <message>
        <source>IDS_CM_WAY_TONE_NEGATIVE</source>
        <translation>Negative Quittung</translation>
    </message>
    <message>
        <source>IDS_CM_WAY_URL_WEB</source>
        <translation>Webadresse</translation>
    </message>
    <message>
        <source>IDS_CM_WAY_URL_NONE</source>
        <translation>Ohne Adresse</translation>
    </message>
    <message>
        <source>IDS_CM_WAY_URL_REFUSED</source>
        <translation>Adresse, die abgelehnt wird</translation>
    </message>
    <message>
        <source>IDS_CM_URL_REFUSED</source>
        <translation>Die Karte verlangte %1, das nicht geöffnet wurde: %2</translation>
    </message>
    <message>
        <source>IDS_CM_URL_NO_ADDRESS</source>
        <translation>das ist keine Adresse</translation>
    </message>
    <message>
        <source>IDS_CM_URL_SCHEME</source>
        <translation>nur http und https werden geöffnet</translation>
    </message>
    <message>
        <source>IDS_CM_URL_NO_HOST</source>
        <translation>sie nennt keinen Rechner</translation>
    </message>
    <message>
        <source>IDS_CM_READER</source>
        <translation>Kartenleser: %1 – %2</translation>
    </message>
    <message>
        <source>IDS_CM_READER_CARD</source>
        <translation>Karte</translation>
    </message>
    <message>
        <source>IDS_CM_READER_EMPTY</source>
        <translation>leer</translation>
    </message>
    <message>
        <source>IDS_CM_READER_MUTE</source>
        <translation>keine Antwort</translation>
    </message>
    <message>
        <source>IDS_CM_READER_IN_USE</source>
        <translation>in Benutzung</translation>
    </message>
    <message>
        <source>IDS_CM_READER_GONE</source>
        <translation>nicht angeschlossen</translation>
    </message>
    <message>
        <source>IDS_CM_NO_READER</source>
        <translation>Kartenleser: %1</translation>
    </message>
    <message>
        <source>IDS_CM_READER_NONE</source>
        <translation>keiner</translation>
    </message>
    <message>
        <source>IDS_CM_MODEM</source>
        <translation>Modem: %1 – %2</translation>
    </message>
    <message>
        <source>IDS_CM_NO_MODEM</source>
        <translation>Modem: keines</translation>
    </message>
    <message>
        <source>IDS_CM_MODEM_FREE</source>
        <translation>frei</translation>
    </message>
    <message>
        <source>IDS_CM_MODEM_IN_USE_BY</source>
        <translation>in Benutzung von %1</translation>
    </message>
    <message>
        <source>IDS_CM_MODEM_DENIED</source>
        <translation>keine Berechtigung</translation>
    </message>
    <message>
        <source>IDS_CM_MODEM_CONNECTED</source>
        <translation>verbunden</translation>
    </message>
    <message>
        <source>IDS_CM_MODEM_NOT_READY</source>
        <translation>nicht bereit</translation>
    </message>
    <message>
        <source>IDS_CM_RESTART</source>
        <translation>Neu &amp;starten</translation>
    </message>
    <message>
        <source>IDS_CM_RESTART_MODEM</source>
        <translation>Neu &amp;starten (das Netz ist kurz weg)</translation>
    </message>
    <message>
        <source>IDS_CM_STATE_WAITING</source>
        <translation>Warten auf die Karte</translation>
    </message>
    <message>
        <source>IDS_CM_STATE_WAITING_MODEM</source>
        <translation>Warten auf das Modem</translation>
    </message>
    <message>
        <source>IDS_CM_STATE_WAITING_PIN</source>
        <translation>Warten auf die PIN</translation>
    </message>
    <message>
        <source>IDS_CM_STATE_WAITING_TOOLKIT</source>
        <translation>Warten auf die SIM-Dienste</translation>
    </message>
    <message>
        <source>IDS_CM_STATE_NO_TOOLKIT</source>
        <translation>Keine SIM-Dienste</translation>
    </message>
    <message>
        <source>IDS_CM_URL_NO_BROWSER</source>
        <translation>Die Karte wollte %1 öffnen, aber kein Browser ließ sich starten.</translation>
    </message>
    <message>
        <source>IDS_CM_UNCODABLE</source>
        <translation>Eines der eingegebenen Zeichen kann diese Karte nicht annehmen.</translation>
    </message>
    <message>
        <source>IDS_CM_PIN_TITLE</source>
        <translation>PIN der SIM-Karte</translation>
    </message>
    <message>
        <source>IDS_CM_PIN_ASKS</source>
        <translation>Die Karte in „%1“ fragt nach ihrer PIN.</translation>
    </message>
    <message>
        <source>IDS_CM_PIN_WRONG</source>
        <translation>Die letzte PIN war falsch.</translation>
    </message>
    <message>
        <source>IDS_CM_PIN_FIELD</source>
        <translation>&amp;PIN (4 bis 8 Ziffern):</translation>
    </message>
    <message>
        <source>IDS_CM_PIN_TRIES</source>
        <translation>Verbleibende Versuche: %1</translation>
    </message>
    <message>
        <source>IDS_CM_PIN_LAST_TRY</source>
        <translation>Das ist der letzte Versuch: Eine falsche PIN sperrt die Karte.</translation>
    </message>
    <message>
        <source>IDS_CM_PIN_CONFIRM</source>
        <translation>Ich weiß das und bin mir der PIN sicher</translation>
    </message>
    <message>
        <source>IDS_CM_PIN_OK</source>
        <translation>OK</translation>
    </message>
    <message>
        <source>IDS_CM_PIN_CANCEL</source>
        <translation>Ohne PIN weiter</translation>
    </message>
    <message>
        <source>IDS_CM_NOTICE_NO_DAEMON</source>
        <translation>Es läuft kein Smartcard-Dienst (pcscd)</translation>
    </message>
    <message>
        <source>IDS_CM_NOTICE_NO_READER</source>
        <translation>Es ist kein Kartenleser angeschlossen</translation>
    </message>
    <message>
        <source>IDS_CM_NOTICE_NO_SUCH_READER</source>
        <translation>Kein Kartenleser hat einen Namen, der mit „%1“ beginnt; vorhanden: %2</translation>
    </message>
    <message>
        <source>IDS_CM_NOTICE_READER_GONE</source>
        <translation>%1: Der Leser ist nicht mehr angeschlossen</translation>
    </message>
    <message>
        <source>IDS_CM_NOTICE_READER_FAILS</source>
        <translation>%1: Der Smartcard-Dienst meldet: %2</translation>
    </message>
    <message>
        <source>IDS_CM_NOTICE_READER_CHOSEN</source>
        <translation>%1: aus %2 Lesern ausgewählt</translation>
    </message>
    <message>
        <source>IDS_CM_NOTICE_READER_HANGS</source>
        <translation>%1: Der Leser antwortet nicht; eine andere Karte kann geöffnet werden</translation>
    </message>
    <message>
        <source>IDS_CM_NOTICE_READER_ANSWERS</source>
        <translation>%1: Der Leser antwortet wieder</translation>
    </message>
    <message>
        <source>IDS_CM_NOTICE_NO_CARD</source>
        <translation>%1: Im Leser ist keine Karte</translation>
    </message>
    <message>
        <source>IDS_CM_NOTICE_CARD_MUTE</source>
        <translation>%1: Die Karte antwortet nicht (ist sie richtig herum eingelegt?)</translation>
    </message>
    <message>
        <source>IDS_CM_NOTICE_CARD_IN_USE</source>
        <translation>%1: Ein anderes Programm benutzt die Karte</translation>
    </message>
    <message>
        <source>IDS_CM_NOTICE_CARD_SILENT</source>
        <translation>%1: Die Karte antwortet nicht</translation>
    </message>
    <message>
        <source>IDS_CM_NOTICE_CARD_REFUSES</source>
        <translation>%1: Die Karte beantwortet %2 mit %3</translation>
    </message>
    <message>
        <source>IDS_CM_NOTICE_USIM</source>
        <translation>%1: eine USIM-Karte</translation>
    </message>
    <message>
        <source>IDS_CM_NOTICE_ISIM</source>
        <translation>%1: eine ISIM-Karte</translation>
    </message>
    <message>
        <source>IDS_CM_NOTICE_SIM</source>
        <translation>%1: eine 2G-SIM-Karte</translation>
    </message>
    <message>
        <source>IDS_CM_NOTICE_UICC</source>
        <translation>%1: eine UICC ohne USIM</translation>
    </message>
    <message>
        <source>IDS_CM_NOTICE_NO_SIM</source>
        <translation>%1: Auf dieser Karte ist keine SIM-Anwendung (eine Bankkarte?)</translation>
    </message>
    <message>
        <source>IDS_CM_NOTICE_NO_MENU</source>
        <translation>%1: Diese Karte hat kein Menü mit SIM-Diensten</translation>
    </message>
    <message>
        <source>IDS_CM_NOTICE_MENU_LATE</source>
        <translation>%1: Das Menü der SIM-Dienste kam spät</translation>
    </message>
    <message>
        <source>IDS_CM_NOTICE_PIN_BLOCKED</source>
        <translation>%1: Die PIN dieser Karte ist gesperrt; da hilft nur ihre PUK, in einem Telefon</translation>
    </message>
    <message>
        <source>IDS_CM_NOTICE_PIN_LEFT_OUT</source>
        <translation>%1: Die Karte macht ohne ihre PIN weiter</translation>
    </message>
    <message>
        <source>IDS_CM_NOTICE_PIN_UNCHECKED</source>
        <translation>%1: Die PIN konnte nicht geprüft werden: Die Karte antwortet %2</translation>
    </message>
    <message>
        <source>IDS_CM_NOTICE_NO_MENU_PIN_BLOCKED</source>
        <translation>%1: Diese Karte hat kein Menü mit SIM-Diensten: Ihre PIN ist gesperrt; da hilft nur ihre PUK, in einem Telefon</translation>
    </message>
    <message>
        <source>IDS_CM_NOTICE_NO_MENU_PIN_LEFT_OUT</source>
        <translation>%1: Diese Karte hat kein Menü mit SIM-Diensten: Sie macht ohne ihre PIN weiter</translation>
    </message>
    <message>
        <source>IDS_CM_NOTICE_NO_MENU_PIN_UNCHECKED</source>
        <translation>%1: Diese Karte hat kein Menü mit SIM-Diensten: Ihre PIN konnte nicht geprüft werden: Die Karte antwortet %2</translation>
    </message>
    <message>
        <source>IDS_CM_NOTICE_CAPTURE_FAILED</source>
        <translation>%1: Die Mitschrift kann nicht geschrieben werden: %2</translation>
    </message>
    <message>
        <source>IDS_CM_NOTICE_MODEM_MISSING</source>
        <translation>%1: Dieses Gerät gibt es nicht</translation>
    </message>
    <message>
        <source>IDS_CM_NOTICE_MODEM_IS_FOLDER</source>
        <translation>%1: Das ist ein Ordner, kein Gerät</translation>
    </message>
    <message>
        <source>IDS_CM_NOTICE_MODEM_IS_FILE</source>
        <translation>%1: Das ist eine Datei, kein Gerät</translation>
    </message>
    <message>
        <source>IDS_CM_NOTICE_NO_MBIM_MODEM</source>
        <translation>Es ist kein MBIM-Modem angeschlossen</translation>
    </message>
    <message>
        <source>IDS_CM_NOTICE_MODEM_DENIED</source>
        <translation>%1: Dieser Benutzer darf das Gerät nicht verwenden (ist er in der Gruppe dialout?)</translation>
    </message>
    <message>
        <source>IDS_CM_NOTICE_MODEM_IS_NONE</source>
        <translation>%1: Das ist keine serielle Schnittstelle</translation>
    </message>
    <message>
        <source>IDS_CM_NOTICE_MODEM_IS_SERIAL</source>
        <translation>%1: Das ist eine serielle Schnittstelle, kein MBIM-Gerät; mit AT-Befehlen ist es %2</translation>
    </message>
    <message>
        <source>IDS_CM_NOTICE_MODEM_IN_USE</source>
        <translation>%1: Ein anderes Programm benutzt das Gerät (eine Modemverwaltung?)</translation>
    </message>
    <message>
        <source>IDS_CM_NOTICE_MODEM_IN_USE_BY</source>
        <translation>%1: Ein anderes Programm benutzt das Gerät: %2</translation>
    </message>
    <message>
        <source>IDS_CM_NOTICE_MODEM_GONE</source>
        <translation>%1: Das Modem ist nicht mehr angeschlossen</translation>
    </message>
    <message>
        <source>IDS_CM_NOTICE_MODEM_SILENT</source>
        <translation>%1: Das Modem antwortet nicht</translation>
    </message>
    <message>
        <source>IDS_CM_NOTICE_MODEM_ANSWERS</source>
        <translation>%1: Das Modem antwortet wieder</translation>
    </message>
    <message>
        <source>IDS_CM_NOTICE_MODEM_UNREADABLE</source>
        <translation>%1: Das Modem hat einen unlesbaren Befehl geschickt</translation>
    </message>
    <message>
        <source>IDS_CM_NOTICE_MODEM_NO_SIM</source>
        <translation>%1: Im Modem ist keine brauchbare SIM-Karte</translation>
    </message>
    <message>
        <source>IDS_CM_NOTICE_MODEM_REFUSES_PIN</source>
        <translation>%1: Das Modem hat die PIN nicht angenommen; die Karte macht ohne sie weiter</translation>
    </message>
    <message>
        <source>IDS_CM_NOTICE_MODEM_REFUSES</source>
        <translation>%1: Das Modem lehnt %2 ab</translation>
    </message>
    <message>
        <source>IDS_CM_NOTICE_MODEM_NO_MENU</source>
        <translation>%1: Es ist kein Menü mit SIM-Diensten gekommen; die Karte schickt es, wenn sie startet: Karte, Neu starten</translation>
    </message>
    <message>
        <source>IDS_CM_NOTICE_MODEM_NOT_OPENED</source>
        <translation>%1: Das Modem konnte nicht geöffnet werden: %2</translation>
    </message>
    <message>
        <source>IDS_CM_NOTICE_MODEM_NO_TOOLKIT</source>
        <translation>%1: Dieses Modem bietet keine SIM-Dienste an</translation>
    </message>
    <message>
        <source>IDS_CM_NOTICE_MODEM_REFUSES_TOOLKIT</source>
        <translation>%1: Das Modem lehnt die Befehle der SIM-Dienste ab; ein anderer seiner Anschlüsse nimmt sie vielleicht an, oder es bietet keine SIM-Dienste an</translation>
    </message>
    <message>
        <source>IDS_CM_NOTICE_MODEM_KEEPS_MENU</source>
        <translation>%1: Dieses Modem behält das Menü der SIM-Dienste für sich</translation>
    </message>
    <message>
        <source>IDS_CM_NOTICE_MODEM_KEEPS_COMMANDS</source>
        <translation>%1: Dieses Modem behält für sich: %2</translation>
    </message>
    <message>
        <source>IDS_CM_NOTICE_MODEM_COUNTS_DECIMALLY</source>
        <translation>%1: Dieses Modem zählt die Arten der Befehle dezimal</translation>
    </message>
    <message>
        <source>IDS_CM_NOTICE_MODEM_TOOLKIT_IN_USE</source>
        <translation>%1: Ein anderes Programm hat die SIM-Dienste des Modems</translation>
    </message>
    <message>
        <source>IDS_CM_NOTICE_MODEM_NOT_READY</source>
        <translation>%1: Das Modem ist nicht bereit: %2</translation>
    </message>
    <message>
        <source>IDS_CM_URL_ASK</source>
        <translation>Die Karte möchte eine Seite dieser Website öffnen:</translation>
    </message>
    <message>
        <source>IDS_CM_URL_OPEN</source>
        <translation>Öffnen</translation>
    </message>
    <message>
        <source>IDS_CM_URL_ALWAYS</source>
        <translation>Immer für diese Website</translation>
    </message>
    <message>
        <source>IDS_CM_URL_ALWAYS_HINT</source>
        <translation>Öffnet sie, und Seiten dieser Website ohne Nachfrage, bis der Verbindungsmanager geschlossen wird</translation>
    </message>
    <message>
        <source>IDS_CM_URL_NOT_NOW</source>
        <translation>Nicht jetzt</translation>
    </message>
    <message>
        <source>IDS_CM_NO_MENU</source>
        <translation>Die Karte hat kein Menü</translation>
    </message>
</context>
</TS>
