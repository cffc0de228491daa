#ifndef ATPORT_H
#define ATPORT_H

#include <chrono>
#include <string>
#include <vector>

#include "AtChannel.h"
#include "AtDialect.h"
#include "ModemPort.h"

/// The toolkit of a modem on an AT port (3GPP TS 27.007 clause 12).  What the terminal's profile
/// claims comes here as unsolicited lines.
class AtPort : public ModemPort {
public:
    /// `profile`: what the terminal does, of TERMINAL PROFILE (ETSI TS 102 223 clause 5.2).  The
    /// reports must live as long as the port.
    AtPort(std::string device, cat::Bytes profile, PortReports &reports, AtDialect dialect = {});
    ~AtPort() override;

    void start(Time now) override;
    void work(Time now) override;
    Time wakeUp() const override;
    int descriptor() const override { return m_channel.descriptor(); }

private:
    // In this order.
    enum class Step {
        Probe,
        EchoOff,
        ErrorNumbers,
        SwitchOff,
        SwitchOn,
        ReadPin,
        EnterPin,
        AskInterface,
        ReadProfiles,
        WriteProfile,
        Download,
        Activate
    };
    using Answer = AtChannel::Answer;
    using Handler = void (AtPort::*)(const Answer &, Time);

    void enter(Stage stage) override;
    void takeStep(Time now) override;
    void send(const ModemToolkit::Message &message, Time now) override;
    void disconnect(bool taken) override;

    void openDevice(Time now);
    void giveBack(bool taken);

    bool takeUnasked(const std::string &line, Time now);
    void takeCommand(std::string_view value, Time now);
    void takeCardState(std::string_view state, Time now);
    void say(std::string command, std::chrono::milliseconds patience, Handler done, Time now,
             size_t secret = 0);
    std::string withDigits(const std::string &name, const char *before,
                           const cat::Bytes &data) const;
    bool isRepeated(const Answer &answer);

    void stepDone(const Answer &answer, Time now);
    void pinRead(const Answer &answer, Time now);
    void pinSent(const Answer &answer, Time now);
    void responseDone(const Answer &answer, Time now);
    void envelopeDone(const Answer &answer, Time now);
    void messageDone(const Answer &answer, ModemToolkit::Outcome outcome, Reaction reaction,
                     Time now);

    const cat::Bytes m_profile;
    const AtDialect m_dialect;

    AtChannel m_channel;
    SerialPort::State m_found = SerialPort::State::Open; // when it was last opened
    Step m_step = Step::Probe;
    Time m_settledAt{}; // after a silence: until then what was late may still come
    bool m_quotes = true; // about hexadecimal digits
    bool m_quotesKnown = false; // the modem has taken them so
    cat::Bytes m_early; // a command that came before start(); some modems do not repeat it
};

#endif
