#ifndef MBIMPORT_H
#define MBIMPORT_H

#include <array>
#include <chrono>
#include <optional>
#include <string>
#include <vector>

#include "MbimLink.h"
#include "toolkit/BusyWait.h"
#include "toolkit/Notices.h"
#include "toolkit/ToolkitPort.h"

/// Who carries out a type of proactive command (PacSupport of MBIM 1.0, service STK).
struct MbimSupport {
    static constexpr size_t Types = 256;
    std::array<uint8_t, Types> of{};

    /// Where the type stands: at its number, or, as a few modems count, at its digits read as a
    /// decimal number.
    bool isDecimal() const;
    size_t position(uint8_t type) const;
    /// Whether the host may take the type over.
    bool isFree(uint8_t type) const;
    /// Whether the host has it.
    bool isHosts(uint8_t type) const;
};

/// A bit for each of the types that the modem leaves to the host (PacHostControl).
std::array<uint8_t, 32> hostControl(const std::vector<uint8_t> &types, const MbimSupport &support);

/// The proactive command at the beginning of what a modem sent; padding may follow it.
cat::ByteView commandIn(cat::ByteView bytes);

/// The toolkit of an MBIM modem (MBIM 1.0, service STK).
class MbimPort : public ToolkitPort {
public:
    /// `device`: "/dev/cdc-wdm0"; empty: the first there is.  `types`: of the proactive commands
    /// that the terminal carries out.  The reports must live as long as the port.
    MbimPort(std::string device, std::vector<uint8_t> types, PortReports &reports);
    ~MbimPort() override;

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
    int descriptor() const override { return m_link.loop().descriptor(); }

private:
    enum class Place { Closed, Awaited, Announced, InUse };
    // What is said next on the way to the toolkit, in this order.
    enum class Step {
        Open,
        ReadServices,
        ReadCard,
        SwitchOff, // of the radio, and with it the card: only where a person wants it
        SwitchOn,
        ReadPin,
        AwaitPin,
        EnterPin,
        ReadSupport,
        ReadEnvelopes,
        Subscribe,
        TakeOver,
        Run
    };
    using Result = MbimLink::Result;
    using Handler = void (MbimPort::*)(const Result &);

    void takeStep();
    void send(MbimMessage *message, Handler done);
    void send(MbimLink::Message message, Handler done);
    void go(Step step);
    void opened(const Result &result);
    void servicesRead(const Result &result);
    void cardRead(const Result &result);
    void switchedOff(const Result &result);
    void switchedOn(const Result &result);
    void pinRead(const Result &result);
    void pinEntered(const Result &result);
    void supportRead(const Result &result);
    void envelopesRead(const Result &result);
    void subscribed(const Result &result);
    void tookOver(const Result &result);
    void wantPin(std::optional<int> triesLeft, bool wrong);
    void goOnWithoutPin(NoticeId why);
    void endPinRequest();
    void giveBack();
    void noCard(NoticeId why);

    void notified(const MbimMessage &message);
    void sendWaiting(Time now);
    void responseSent(const Result &result);
    void envelopeSent(const Result &result);
    void endSession();
    void lose();
    void tell(NoticeId id, const std::string &argument = {});

    const std::string m_wanted; // empty: the first
    std::string m_device;
    const std::vector<uint8_t> m_types;
    PortReports &m_reports;
    PortEvents *m_events = nullptr;
    mutable MbimLink m_link;

    Place m_place = Place::Closed;
    Step m_step = Step::Open;
    Time m_now; // as work() was told
    Time m_stepAt;
    bool m_waiting = false; // for an answer
    bool m_lost = false;
    bool m_taken = false; // the toolkit, as far as anybody knows
    bool m_restart = false; // once no answer is awaited
    std::string m_trouble; // what was in the way, as told last
    MbimSupport m_support;

    std::optional<int> m_pinRequest;
    Pin m_pin;
    bool m_pinDeclined = false;
    bool m_pinWrong = false;

    bool m_open = false; // a command waits for its answer
    std::optional<PortResponse> m_response; // to be sent
    std::optional<PortResponse> m_sentResponse;
    bool m_overtaken = false; // a newer command came while that was being sent
    std::optional<PortEnvelope> m_envelope; // to be sent, or being sent
    BusyWait m_busy;
    std::optional<Time> m_restAt;
    std::optional<Time> m_endAt; // when silence means that the session is over
};

#endif
