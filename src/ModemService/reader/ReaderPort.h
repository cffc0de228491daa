#ifndef READERPORT_H
#define READERPORT_H

#include <chrono>
#include <memory>
#include <optional>
#include <string>

#include "Apdu.h"
#include "CardChannel.h"
#include "CardStart.h"
#include "toolkit/BusyWait.h"
#include "toolkit/ToolkitPort.h"

/// The toolkit of a SIM card in a reader: it looks for the card, has it started, fetches its
/// proactive commands and asks it for them (ETSI TS 102 221 clause 11.2, 3GPP TS 51.011 clause 11).
///
/// Each work() makes one exchange with the card at most.
class ReaderPort : public ToolkitPort, private CardStart::Host {
public:
    /// `name` is for people, until a reader was found.  The reports must live as long as the port.
    ReaderPort(std::unique_ptr<CardChannel> channel, std::string name, PortReports &reports);
    ~ReaderPort() override;

    PortTraits traits() const override { return {}; }
    std::string name() const override { return m_name; }
    void open(PortEvents &events, Time now) override;
    void start(Time now) override;
    void close() override;
    void respond(PortResponse response, Time now) override;
    bool takesEnvelope() const override;
    void sendEnvelope(PortEnvelope envelope, Time now) override;
    void dropEnvelope() override;
    bool expectsCommand() const override { return m_toolkit.pending.has_value(); }
    bool isInSession() const override;
    void setPollInterval(std::optional<std::chrono::milliseconds> interval, Time now) override;
    void answerPin(int request, const Pin &pin, Time now) override;
    void tellMissingMenu() override;
    void restart(Time now) override;
    void lookAgain(Time now) override;
    void interrupt() override { m_channel->interrupt(); }
    void work(Time now) override;
    Time wakeUp() const override;

private:
    // Where the card is.
    enum class Place {
        Closed,
        Awaited, // no card that answers: tried again and again
        Announced, // it answers; start() is to come
        InUse,
        NoSim // answers, but is no SIM: left alone until it is taken out
    };

    // For the start of the card.
    std::optional<ApduAnswer> sendStep(Apdu command, Time now) override;
    std::optional<ApduAnswer> sendOnce(Apdu command, Time now) override;
    void tell(NoticeId id, std::optional<uint16_t> status = std::nullopt) override;
    void wantPin(std::optional<int> triesLeft, bool wrong) override;
    void pinDone() override;
    void leaveAlone() override;
    void profileSent(bool taken, Time now) override;

    void connect(Time now);
    void lose(Time now);
    void forgetCard();
    void reset(Time now);

    void run(Time now);
    Time nextWork() const;
    void fetch(Time now);
    void throttle(Time now);
    void sendResponse(Time now);
    void passEnvelope(Time now);
    void poll(Time now);
    void takeStatus(const char *what, uint16_t status);
    bool isToBeRepeated(uint16_t status, Time now);
    Apdu toolkitApdu(uint8_t ins, uint8_t p1, uint8_t p2) const;

    const std::unique_ptr<CardChannel> m_channel;
    std::string m_name;
    PortReports &m_reports;
    PortEvents *m_events = nullptr;

    Place m_place = Place::Closed;
    std::string m_lastTrouble; // what was in the way of the card, as told last
    int m_failures = 0; // times in a row that a card was there and did not answer
    Time m_retryAt;
    Time m_presenceAt;
    std::optional<int> m_pinRequest; // the one that waits for its answer

    // Of the card in use; forgotten with it.
    struct Toolkit {
        std::optional<uint16_t> pending{}; // length of the command to be fetched
        bool open = false; // a command waits for its answer
        std::optional<PortResponse> response{}; // to be sent
        std::optional<PortEnvelope> envelope{}; // to be sent
        BusyWait busy{};
        std::optional<std::chrono::milliseconds> pollInterval =
            std::chrono::seconds(30); // until the card asks for another, or for none
        Time pollAt{};
        // Of the answer to STATUS, at first the shortest there is (3GPP TS 51.011 clause 9.2.2).
        uint16_t statusLength = 0x16;
        bool rested = false;
        Time restAt{}; // when the start has come to rest
        int chain = 0; // commands since the person had a part in it
        Time notBefore{}; // what throttles an endless chain
        Time lastFetch{};
    };
    CardStart m_start;
    Toolkit m_toolkit;
};

#endif
