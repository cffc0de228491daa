#ifndef MODEMPORT_H
#define MODEMPORT_H

#include <chrono>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "ModemToolkit.h"
#include "toolkit/Notices.h"
#include "toolkit/ToolkitPort.h"

/// A port to the card in a modem, as far as it does not matter what the modem is spoken to in:
/// whether modem and card are there, the PIN, the start step by step, the card's start anew.  The
/// modem fetches, polls and keeps the timers.
class ModemPort : public ToolkitPort {
public:
    PortTraits traits() const override;
    std::string name() const override { return m_device; }
    void open(PortEvents &events, Time now) override;
    void start(Time now) override;
    void close() override;
    void respond(PortResponse response, Time now) override;
    bool takesEnvelope() const override { return m_toolkit.takesEnvelope() && !m_restart; }
    void sendEnvelope(PortEnvelope envelope, Time now) override;
    void dropEnvelope() override { m_toolkit.dropEnvelope(); }
    bool expectsCommand() const override { return m_toolkit.expectsCommand(); }
    bool isInSession() const override { return m_toolkit.isInSession(); }
    void setPollInterval(std::optional<std::chrono::milliseconds>, Time) override { }
    void answerPin(int request, const Pin &pin, Time now) override;
    void tellMissingMenu() override;
    void restart(Time now) override;
    void lookAgain(Time now) override;

protected:
    static constexpr Time Never = Time::max();
    static constexpr std::chrono::milliseconds RetryPeriod{1000};

    // What is said next on the way to the toolkit begins with this.
    enum class Stage {
        Modem, // to be opened
        Card, // is it there?
        SwitchOff, // the card, and on again: only where a person wants it
        Pin, // is it wanted?
        EnterPin,
        Toolkit // to be taken
    };

    /// What the modem made of a message.
    enum class Reaction {
        Definite, // took it, or refused it
        Busy, // did not take it now, but will later
        Silent
    };

    ModemPort(std::string device, PortReports &reports);

    /// The step that the stage begins with is the next.
    virtual void enter(Stage stage) = 0;
    /// Says what is next; called when it is time and nothing is on its way.
    virtual void takeStep(Time now) = 0;
    virtual void send(const ModemToolkit::Message &message, Time now) = 0;
    /// `taken`: the toolkit is to be given back.
    virtual void disconnect(bool taken) = 0;

    void goTo(Stage stage, Time at);
    /// Once nothing is on its way: the next step, or message.
    void goOn(Time now);
    /// When goOn() is to be called.
    Time nextTime() const;

    /// Whether the modem's device can be one; if not, says why.
    bool isDevice(bool maySerial, Time now);
    void cardIsThere(Time now);
    void cardIsGone(Time now);
    /// The modem says unasked that its card cannot be used.  `waiting`: for an answer, which will
    /// say so, too.
    void cardIsTaken(bool missing, bool waiting, Time now);
    /// The modem itself is gone, or answers no more.
    void lose(Time now);
    void answered(ModemToolkit::Outcome outcome, Reaction reaction, Time now);
    /// Whether the modem is to be asked anything more, having answered this time or not.
    bool isWorthAsking(bool hasAnswered);
    /// It did not answer the last time.
    bool isInDoubt() const { return m_silences > 0; }

    /// The card is locked.  Asks the person, unless a PIN was taken that has yet to have its
    /// effect.  Zero tries: nobody tells.
    void wantPin(int triesLeft, Time now);
    const Pin &pin() const { return m_pin; }
    /// What was entered was wrong, or else was taken, as far as anybody knows: the card tells.
    void pinEntered(bool wrong, Time now);
    void goOnWithoutPin(NoticeId why);
    bool isPinDeclined() const { return m_withoutPin.has_value(); }

    void tell(NoticeId id, const std::string &argument = {});

    bool isOpen() const { return m_place != Place::Closed; }
    bool isInUse() const { return m_place == Place::InUse; }
    /// What the modem says to what it was asked before counts.
    bool wantsAnswer() const { return isOpen() && !m_restart; }
    /// What the modem still tells of the card that is to start anew is over.
    bool isStartingAnew() const { return m_restart || m_switchedOff; }

    PortReports &m_reports;
    std::string m_device;
    PortEvents *m_events = nullptr;
    ModemToolkit m_toolkit;
    Time m_stepAt; // when the step is to be taken
    bool m_taken = false; // the toolkit, as far as anybody knows
    bool m_switchedOff = false; // the card, or about to be
    bool m_refusesToolkit = false; // the modem, whatever it was asked for it
    bool m_keepsMenu = false; // the modem, for itself

private:
    enum class Place {
        Closed,
        Awaited, // no modem that answers, or no card: tried again and again
        Announced, // start() is to come
        InUse
    };

    using Trouble = std::pair<NoticeId, std::vector<std::string>>; // and the notice's arguments

    void endPinRequest();

    Place m_place = Place::Closed;
    bool m_restart = false; // once nothing is on its way
    std::optional<Trouble> m_trouble; // what was in the way, as told last
    int m_silences = 0; // in a row
    std::optional<int> m_pinRequest;
    int m_pinReadings = 0; // left, until a PIN that was taken must have had its effect
    bool m_pinWrong = false; // what was entered
    Pin m_pin;
    std::optional<NoticeId> m_withoutPin; // why the card goes on so
};

#endif
