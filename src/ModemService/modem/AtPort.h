#ifndef ATPORT_H
#define ATPORT_H

#include <chrono>
#include <optional>
#include <string>
#include <vector>

#include "AtLines.h"
#include "SerialPort.h"
#include "toolkit/BusyWait.h"
#include "toolkit/Notices.h"
#include "toolkit/ToolkitPort.h"

/// The toolkit of a modem on an AT port (3GPP TS 27.007 clause 12).  The modem fetches, polls and
/// keeps the timers; what the terminal's profile claims comes here as unsolicited lines.
class AtPort : public ToolkitPort {
public:
    /// `profile`: what the terminal does, of TERMINAL PROFILE (ETSI TS 102 223 clause 5.2).  The
    /// reports must live as long as the port.
    AtPort(std::string device, cat::Bytes profile, PortReports &reports,
           const AtDialect &dialect = StandardDialect);
    ~AtPort() override;

    PortTraits traits() const override;
    std::string name() const override { return m_device; }
    void open(PortEvents &events, Time now) override;
    void start(Time now) override;
    void close() override;
    void respond(PortResponse response, Time now) override;
    bool takesEnvelope() const override;
    void sendEnvelope(PortEnvelope envelope, Time now) override;
    void dropEnvelope() override;
    bool expectsCommand() const override;
    bool isInSession() const override;
    void setPollInterval(std::optional<std::chrono::milliseconds>, Time) override { }
    void answerPin(int request, const Pin &pin, Time now) override;
    void tellMissingMenu() override;
    void restart(Time now) override;
    void lookAgain(Time now) override;
    void work(Time now) override;
    Time wakeUp() const override;
    int descriptor() const override { return m_serial.descriptor(); }

private:
    // Where the modem is.
    enum class Place {
        Closed,
        Awaited, // no port that answers, or no SIM: tried again and again
        Announced, // start() is to come
        InUse
    };
    // What is said next on the way to the toolkit, in this order.
    enum class Step {
        Probe,
        EchoOff,
        ErrorNumbers,
        SwitchOff, // of the card, and on again: only where a person wants it
        SwitchOn,
        ReadPin,
        AwaitPin,
        EnterPin,
        AskInterface,
        ReadProfiles,
        WriteProfile,
        Download,
        Activate,
        Run
    };
    struct Answer {
        std::optional<AtFinal> final; // nothing: there was none in time
        std::vector<std::string> lines;

        bool isOk() const { return final && final->kind == AtFinal::Kind::Ok; }
    };
    using Handler = void (AtPort::*)(const Answer &, Time);
    struct Exchange {
        std::string command;
        Handler done = nullptr;
        Time deadline;
        Answer answer;
    };

    void openDevice(Time now);
    void retryLater(Time now);
    void lose(Time now);
    void giveBack();

    void readLines(Time now);
    void takeLine(const std::string &line, Time now);
    void takeCommand(std::string_view value, Time now);
    void bring(const cat::Bytes &command, Time now);
    void send(std::string command, std::chrono::milliseconds patience, Handler done, Time now);
    void finish(Time now);

    void takeStep(Time now);
    void stepDone(const Answer &answer, Time now);
    void pinRead(const Answer &answer, Time now);
    void pinEntered(const Answer &answer, Time now);
    void wantPin(bool wrong);
    void endPinRequest();
    void goOnWithoutPin(NoticeId why);
    void cardIsThere(Time now);
    void noCard(Time now);

    void sendWaiting(Time now);
    void sendHexadecimal(const char *name, const cat::Bytes &data, Handler done, Time now);
    std::string digitsOf(const cat::Bytes &data) const;
    bool isRepeated(const Answer &answer);
    void responseDone(const Answer &answer, Time now);
    void envelopeDone(const Answer &answer, Time now);
    void endSession();

    void tell(NoticeId id, const std::string &argument = {});

    const std::string m_device;
    const cat::Bytes m_profile;
    const AtDialect &m_dialect;
    PortReports &m_reports;
    PortEvents *m_events = nullptr;

    SerialPort m_serial;
    AtLineReader m_lines;
    Place m_place = Place::Closed;
    Step m_step = Step::Probe;
    Time m_stepAt; // when the step is to be taken
    std::string m_trouble; // what was in the way, as told last
    int m_silences = 0; // in a row
    std::optional<Exchange> m_exchange;
    bool m_quotes = true; // about hexadecimal digits
    bool m_quotesKnown = false; // the modem has taken them so
    bool m_restart = false; // once no answer is awaited
    bool m_taken = false; // the toolkit, as far as anybody knows
    cat::Bytes m_early; // a command that came before start(); some modems do not repeat it

    std::optional<int> m_pinRequest;
    Pin m_pin;
    bool m_pinDeclined = false;

    bool m_open = false; // a command waits for its answer
    std::optional<PortResponse> m_response; // to be sent
    std::optional<PortResponse> m_sentResponse; // its result is awaited
    bool m_overtaken = false; // a newer command came while that was being sent
    std::optional<PortEnvelope> m_envelope; // to be sent, or being sent
    BusyWait m_busy;
    std::optional<Time> m_restAt;
    std::optional<Time> m_endAt; // when silence means that the session is over
};

#endif
