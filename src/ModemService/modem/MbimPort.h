#ifndef MBIMPORT_H
#define MBIMPORT_H

#include <chrono>
#include <optional>
#include <string>
#include <vector>

#include "MbimLink.h"
#include "MbimSupport.h"
#include "ModemPort.h"

/// The toolkit of an MBIM modem (MBIM 1.0, service STK).
class MbimPort : public ModemPort {
public:
    /// `device`: "/dev/cdc-wdm0"; empty: the first there is.  `types`: of the proactive commands
    /// that the terminal carries out.  The reports must live as long as the port.
    MbimPort(std::string device, std::vector<uint8_t> types, PortReports &reports);
    ~MbimPort() override;

    void work(Time now) override;
    Time wakeUp() const override;
    int descriptor() const override { return m_link.loop().descriptor(); }

private:
    // In this order.
    enum class Step {
        Open,
        ReadServices,
        ReadCard,
        SwitchOff, // of the radio, and with it the card
        SwitchOn,
        ReadPin,
        EnterPin,
        ReadSupport,
        ReadEnvelopes,
        Subscribe,
        TakeOver
    };
    using Result = MbimLink::Result;
    using Handler = void (MbimPort::*)(const Result &);

    void enter(Stage stage) override;
    void takeStep(Time now) override;
    void send(const ModemToolkit::Message &message, Time now) override;
    void disconnect(bool taken) override;

    void openDevice();
    void say(MbimMessage *message, Handler done);
    void say(MbimLink::Message message, Handler done);
    void heard(const Result &result, Handler done);
    void go(Step step);
    void opened(const Result &result);
    void servicesRead(const Result &result);
    void cardRead(const Result &result);
    void switchedOff(const Result &result);
    void switchedOn(const Result &result);
    void pinRead(const Result &result);
    void pinSent(const Result &result);
    bool lacksCard(const Result &result);
    void supportRead(const Result &result);
    void envelopesRead(const Result &result);
    void subscribed(const Result &result);
    void tookOver(const Result &result);
    void responseSent(const Result &result);
    void envelopeSent(const Result &result);
    static Reaction reactionIn(const Result &result);

    void notified(const MbimMessage &message);
    void takeCommand(const MbimMessage &notification);
    void takeCardState(const MbimMessage &notification);

    const std::string m_wanted; // empty: the first
    const std::vector<uint8_t> m_types;
    mutable MbimLink m_link;
    Step m_step = Step::Open;
    Time m_now; // as work() was told
    bool m_waiting = false; // for an answer
    bool m_lost = false;
    MbimSupport m_support;
};

#endif
