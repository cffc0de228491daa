#ifndef TOOLKITCARD_H
#define TOOLKITCARD_H

#include <array>
#include <cstdint>
#include <deque>
#include <memory>
#include <optional>
#include <string>

#include "Apdu.h"
#include "Card.h"
#include "CardChannel.h"
#include "CardHost.h"
#include "CardListener.h"
#include "Notices.h"
#include "cat/Command.h"
#include "cat/Response.h"

/// A SIM card in a reader, and the part of a modem that speaks with it: it starts the card's
/// toolkit, fetches its proactive commands, answers those that a modem answers, and hands out the
/// rest (ETSI TS 102 223, ETSI TS 102 221, 3GPP TS 31.111; for 2G cards 3GPP TS 51.014, TS 51.011).
///
/// It moves by nextEvent() alone, by one command to the card a call, and everything else only says
/// what is to be done next.  It has no clock but the times that it is given, except for the date
/// and time that a card asks for.
class ToolkitCard : public Card {
public:
    /// `name` is for people.  The listener must live as long as the card.
    ToolkitCard(std::unique_ptr<CardChannel> channel, std::string name, std::string language,
                CardListener &listener);
    ~ToolkitCard() override;

    CardTraits traits() const override;
    void powerOn(Time now) override;
    void powerOff() override;
    void selectMenuItem(int16_t itemId, Time now) override;
    void respond(const TerminalResponse &response, Time now) override;
    void endSession() override;
    void interrupt() override { m_channel->interrupt(); }
    std::optional<CardEvent> nextEvent(Time now) override;
    Time wakeUp() const override;

    /// An invalid PIN: the card goes on without.  An answer to a request that is over does nothing.
    void answerPin(int request, const CardHost::Pin &pin, Time now);
    /// ISO 639, two letters.
    void setLanguage(const std::string &language, Time now);
    /// A card was put in or taken out, of any reader: there is no need to wait for the next look.
    void readersChanged(Time now);

private:
    // Where the card is.
    enum class Place {
        Off, // nothing is to be done until powerOn()
        Awaited, // no card that answers: tried again and again
        Announced, // it answers; powerOn() is to come
        InUse,
        NoSim // answers, but is no SIM: left alone until it is taken out
    };
    // What comes next on the way of a card in use to its toolkit, in this order.
    enum class Step {
        SelectMasterFile,
        SelectDirectory,
        ReadDirectory,
        SelectApplication,
        SelectMasterFile2g,
        SelectGsm,
        SelectUnderUiccClass,
        ReadPinState,
        AwaitPin,
        VerifyPin,
        SendProfile,
        ReportInitialised,
        Run
    };
    // A proactive command from FETCH to its terminal response.
    struct CommandInProgress {
        cat::Command command;
        std::optional<cat::TextCoding> answerCoding;
        std::optional<TerminalResponse> modemAnswer; // nothing: the user answers
        Time since;
        std::optional<cat::Response> response; // ready to be sent
    };
    struct Envelope {
        cat::Bytes data;
        const char *name = "";
        bool selection = false;
    };
    struct Timer {
        std::optional<Time> started; // none: it does not run
        std::chrono::seconds value{0};
    };
    struct ModemPart; // what the modem does with a command, a function for each

    // Presence.
    void work(Time now);
    void connect(Time now);
    void lose(Time now);
    void forgetCard();
    void tellChoice(const CardChannel::Status &status);
    void leaveAlone();

    // One step of the start each.
    void takeStep(Time now);
    void selectMasterFile(Time now);
    void selectDirectory(Time now);
    void readDirectory(Time now);
    void selectApplication(Time now);
    void selectMasterFile2g(Time now);
    void selectGsm(Time now);
    void selectUnderUiccClass(Time now);
    void takeApplication(NoticeId kind, cat::ByteView selectAnswer);
    void leaveClass2g();
    void readPinState(Time now);
    void verifyPin(Time now);
    void sendProfile(Time now);
    void reportInitialised(Time now);

    void wantPin(std::optional<int> triesLeft, bool wrong);
    void goOnWithoutPin(NoticeId why, NoticeId noMenu,
                        std::optional<uint16_t> status = std::nullopt);
    void passPin();
    void endPinRequest();

    // The toolkit at work.
    void run(Time now);
    Time nextWork() const;
    void fetch(Time now);
    void dropSelection();
    void present(ProactiveCommand proactive, Time now);
    void handOut(cat::Command command, Time now);
    void answerByModem(const cat::Command &command, cat::Response response, Time now,
                       const std::string &details = {});
    void sendResponse(Time now);
    void restart(const cat::Command &refresh);
    void resetCard(Time now);
    bool hasEnvelope() const;
    void sendEnvelope(Time now);
    bool isToBeRepeated(uint16_t status, Time now);
    void queueEnvelope(cat::Bytes data, const char *name);
    bool reportsEvent(uint8_t event) const;
    void userActed();
    void poll(Time now);
    void passTimers(Time now);
    void checkMenu(Time now);
    void takeStatus(const char *what, uint16_t status);
    void endOfSession();
    static cat::Response responseTo(const CommandInProgress &current,
                                    const TerminalResponse &answer);
    static cat::Response endOf(const CommandInProgress &current);

    std::optional<ApduAnswer> send(Apdu command, Time now);
    std::optional<ApduAnswer> sendStep(Apdu command, Time now);
    Apdu toolkitApdu(uint8_t ins, uint8_t p1, uint8_t p2) const;
    void notice(NoticeId id, std::optional<uint16_t> status = std::nullopt);
    template <class Event> bool forgetEvents();

    const std::unique_ptr<CardChannel> m_channel;
    const std::string m_name;
    CardListener &m_listener;
    std::string m_language;

    Place m_place = Place::Off;
    bool m_removalTold = false;
    std::string m_readerName;
    std::string m_lastTrouble; // what was in the way of the card, as told last
    int m_failures = 0; // times in a row that a card was there and did not answer
    Time m_retryAt;
    Time m_presenceAt;
    std::deque<CardEvent> m_events;

    // Without a word from the toolkit for so long, its start has come to rest.
    static constexpr std::chrono::milliseconds RestTime{2000};

    // Of the card in use; forgotten with it.
    struct State {
        Step step = Step::SelectMasterFile;
        bool isUicc = true;
        uint8_t record = 1; // of EF_DIR, to be read next
        uint8_t records = 0;
        uint8_t recordLength = 0;
        bool answersAsUicc = false; // whatever its applications are
        bool isIsim = false;
        cat::Bytes application; // its identifier, or the beginning of that
        cat::Bytes isim; // the same, where the card has no USIM
        uint8_t pinKey = 0x01;
        int pinTries = 0;
        CardHost::Pin pin;
        NoticeId noMenu = NoticeId::NoMenu; // what a card without a menu has for a reason
        std::optional<uint16_t> noMenuStatus;
        bool pinSettled = false; // declined, or entered into a 2G card
        bool profileSent = false;
        bool menuSeen = false;
        bool menuChecked = false;
        Time restAt; // when the start has come to rest

        std::optional<uint16_t> pending; // length of the command to be fetched
        std::optional<CommandInProgress> command;
        std::optional<ProactiveCommand> held; // while a text before it is still on screen
        bool endAwaited = false; // somebody has seen it begin
        bool endQuietly = false; // nobody wants to hear of its end
        bool unwanted = false; // its next command: the session was ended before that was fetched
        bool textShown = false; // a text that was answered before the user has seen it
        bool textWaits = false; // until the user clears it
        bool endHeld = false; // the session's end, until the user has seen that text

        std::optional<Envelope> envelope; // being sent
        std::optional<uint8_t> selection;
        std::deque<Envelope> envelopes; // to be sent between sessions

        Time busyAt; // the card's toolkit is busy: when to try again
        std::chrono::milliseconds busyDelay{0};
        Time busyUntil; // when to give up

        std::optional<std::chrono::milliseconds> pollInterval =
            std::chrono::seconds(30); // until the card asks for another, or for none
        Time pollAt;
        // Of the answer to STATUS, at first the shortest there is (3GPP TS 51.011 clause 9.2.2).
        uint16_t statusLength = 0x16;
        std::array<Timer, 8> timers;
        cat::Bytes eventList;
        int chain = 0; // commands since the person had a part in it
        Time notBefore; // what throttles an endless chain
        Time lastFetch;
    };
    State m_state;
    std::optional<int> m_pinRequest; // the one that waits for its answer
};

#endif
