#include "CardHost.h"

#include <algorithm>
#include <chrono>
#include <cstring>
#include <map>
#include <memory>
#include <mutex>
#include <utility>

#include "Service.h"
#include "cat/Response.h"
#include "modem/AtPort.h"
#include "modem/MbimPort.h"
#include "modem/ModemMonitor.h"
#include "reader/Pcsc.h"
#include "reader/PcscChannel.h"
#include "reader/ReaderMonitor.h"
#include "reader/ReaderPort.h"
#include "reader/WorkerChannel.h"
#include "scenario/ScenarioCard.h"
#include "scenario/ScenarioReader.h"
#include "scenario/StrictJson.h"
#include "session/Session.h"
#include "toolkit/TrafficCapture.h"
#include "toolkit/ToolkitTerminal.h"

Session &theSession()
{
    // A reader that never answers must not keep the process from its end: such a session, and the
    // thread in it, is left behind.
    struct Holder {
        Session *const session = new Session;
        ~Holder()
        {
            if (session->stop(std::chrono::seconds(3)))
                delete session;
        }
    };
    static Holder holder;
    return *holder.session;
}

namespace {

void withTerminal(std::function<void(ToolkitTerminal &)> function)
{
    constexpr bool AlsoWhileRemoved = true; // to be told when it is back
    theSession().withCard(
        [function = std::move(function)](Card &card) {
            if (auto *terminal = dynamic_cast<ToolkitTerminal *>(&card))
                function(*terminal);
        },
        AlsoWhileRemoved);
}

// Terminals, by what may come and go for them.
class ReaderTerminal final : public ToolkitTerminal {
public:
    using ToolkitTerminal::ToolkitTerminal;
};
class ModemTerminal final : public ToolkitTerminal {
public:
    using ToolkitTerminal::ToolkitTerminal;
};

template <class Terminal> void lookAgain()
{
    withTerminal([](ToolkitTerminal &terminal) {
        if (dynamic_cast<Terminal *>(&terminal))
            terminal.lookAgain(Card::Clock::now());
    });
}

// What watches something for the host, each on a thread of its own.
template <class Monitor> class Monitors {
public:
    template <class Listener> int add(Listener listener)
    {
        auto monitor = std::make_unique<Monitor>(std::move(listener));
        std::lock_guard<std::mutex> lock(m_mutex);
        m_monitors.emplace(++m_last, std::move(monitor));
        return m_last;
    }
    void remove(int id)
    {
        typename decltype(m_monitors)::node_type monitor; // waits for its thread without the lock
        std::lock_guard<std::mutex> lock(m_mutex);
        monitor = m_monitors.extract(id);
    }

private:
    std::mutex m_mutex;
    std::map<int, std::unique_ptr<Monitor>> m_monitors;
    int m_last = 0;
};

// Carries what ports say to whoever listens.  Listeners are called with the lock held,
// so that none is running when its successor has been set.
class Host : public PortReports {
public:
    void exchanged(const PortTraffic &traffic) override
    {
        theSession().transcript().apdu(traffic.command, traffic.response);
        std::unique_lock<std::mutex> lock(m_mutex);
        if (!m_capture || m_capture->write(traffic))
            return;
        const Notice error = m_capture->error();
        m_capture.reset();
        lock.unlock();
        noticed(error);
    }
    void answeredByTerminal(const std::string &command, const std::string &result) override
    {
        theSession().transcript().answeredByModem(command, result);
    }
    void spoken(bool byModem, const std::string &line) override
    {
        theSession().transcript().spoken(byModem, line);
    }
    void noticed(const Notice &notice) override
    {
        theSession().transcript().notice(notice);
        theSession().transcript().deliver(); // the card may be waited for
        std::lock_guard<std::mutex> lock(m_mutex);
        if (m_noticeListener)
            m_noticeListener(notice);
    }
    void pinWanted(const CardHost::PinRequest &request) override
    {
        {
            std::lock_guard<std::mutex> lock(m_mutex);
            m_pinRequest = request;
        }
        tellPinRequest();
    }
    void pinDone() override
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        m_pinRequest.reset();
        if (m_pinListener)
            m_pinListener(std::nullopt);
    }

    void setNoticeListener(CardHost::NoticeListener listener)
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        m_noticeListener = std::move(listener);
    }
    void setPinListener(CardHost::PinListener listener)
    {
        {
            std::lock_guard<std::mutex> lock(m_mutex);
            m_pinListener = std::move(listener);
            if (!m_pinRequest)
                return;
        }
        theSession().withCard([this](Card &) { tellPinRequest(); });
    }
    std::string capture(const std::string &file)
    {
        auto capture = file.empty() ? nullptr : std::make_unique<TrafficCapture>(file);
        if (capture && !capture->isOpen())
            return capture->error().text;
        std::lock_guard<std::mutex> lock(m_mutex);
        m_capture = std::move(capture);
        return {};
    }
    void setLanguage(const std::string &language)
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        m_language = language;
    }
    std::string language()
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        return m_language;
    }

    void setDialect(AtDialect dialect)
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        m_dialect = std::move(dialect);
    }
    AtDialect dialect()
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        return m_dialect;
    }

private:
    // On the session's thread.
    void tellPinRequest()
    {
        std::unique_lock<std::mutex> lock(m_mutex);
        if (!m_pinRequest)
            return;
        if (m_pinListener) {
            m_pinListener(m_pinRequest);
            return;
        }
        const int id = m_pinRequest->id;
        lock.unlock();
        CardHost::answerPin(id, CardHost::Pin()); // nobody else will
    }

    std::mutex m_mutex;
    CardHost::NoticeListener m_noticeListener;
    CardHost::PinListener m_pinListener;
    std::optional<CardHost::PinRequest> m_pinRequest;
    std::unique_ptr<TrafficCapture> m_capture;
    std::string m_language;
    AtDialect m_dialect;
};

Host &theHost()
{
    static Host &host = *new Host; // the session may outlive everything that ends with the process
    return host;
}

Monitors<ReaderMonitor> &readerMonitors()
{
    static Monitors<ReaderMonitor> monitors;
    return monitors;
}

Monitors<ModemMonitor> &modemMonitors()
{
    static Monitors<ModemMonitor> monitors;
    return monitors;
}

template <class Terminal>
void insertTerminal(std::unique_ptr<ToolkitPort> port, const std::string &name)
{
    theSession().insertCard(
        std::make_unique<Terminal>(std::move(port), name, theHost().language(), theHost()));
}

} // namespace

namespace CardHost {

std::string openScenario(const std::string &file)
{
    try {
        theSession().insertCard(std::make_unique<ScenarioCard>(readScenario(file)));
        return {};
    } catch (const ScenarioError &error) {
        theSession().insertCard(nullptr);
        return error.what();
    }
}

ReaderList listReaders()
{
    return PcscContext().readers();
}

int addReaderListener(ReaderListener listener)
{
    return readerMonitors().add(std::move(listener));
}

void removeReaderListener(int id)
{
    readerMonitors().remove(id);
}

void openReader(const std::string &nameStart)
{
    const std::string name = nameStart.empty() ? "card reader" : nameStart;
    auto channel =
        std::make_unique<WorkerChannel>(std::make_unique<PcscChannel>(nameStart), name, theHost());
    insertTerminal<ReaderTerminal>(
        std::make_unique<ReaderPort>(std::move(channel), name, theHost()), name);
    // Whoever watches the readers knows first when a card has come.
    static const ReaderMonitor monitor([](const ReaderList &) { lookAgain<ReaderTerminal>(); });
}

std::vector<Modem> listModems()
{
    return ::listModems();
}

int addModemListener(ModemListener listener)
{
    return modemMonitors().add(std::move(listener));
}

void removeModemListener(int id)
{
    modemMonitors().remove(id);
}

void openModem(Modem::Kind kind, const std::string &device)
{
    constexpr bool BesideModem = true;
    if (kind == Modem::Kind::At)
        insertTerminal<ModemTerminal>(std::make_unique<AtPort>(device,
                                                               cat::terminalProfile(BesideModem),
                                                               theHost(), theHost().dialect()),
                                      device);
    else
        insertTerminal<ModemTerminal>(
            std::make_unique<MbimPort>(device, cat::typesBesideModem(), theHost()),
            device.empty() ? "MBIM modem" : device);
    static const ModemMonitor monitor(
        [](const std::vector<Modem> &) { lookAgain<ModemTerminal>(); });
}

std::string setAtDialect(const std::string &file)
{
    try {
        theHost().setDialect(readAtDialect(file));
        return {};
    } catch (const StrictJson::Error &error) {
        return error.what();
    }
}

void restartCard()
{
    withTerminal([](ToolkitTerminal &terminal) { terminal.restart(Card::Clock::now()); });
}

void setNoticeListener(NoticeListener listener)
{
    theHost().setNoticeListener(std::move(listener));
}

void setPinListener(PinListener listener)
{
    theHost().setPinListener(std::move(listener));
}

void answerPin(int request, const Pin &pin)
{
    withTerminal([request, pin](ToolkitTerminal &terminal) {
        terminal.answerPin(request, pin, Card::Clock::now());
    });
}

std::string captureApdus(const std::string &file)
{
    return theHost().capture(file);
}

void setLanguage(const std::string &language)
{
    theHost().setLanguage(language);
    withTerminal([language](ToolkitTerminal &terminal) {
        terminal.setLanguage(language, Card::Clock::now());
    });
}

void closeCard()
{
    theSession().insertCard(nullptr);
}

ModemState state()
{
    return theSession().state();
}

void removeModem()
{
    theSession().removeModem();
}

void insertModem()
{
    theSession().insertModem();
}

void endSession()
{
    theSession().endSession();
}

void timeOutSession()
{
    theSession().timeOutSession();
}

std::string sendCommand(const std::string &json)
{
    const ModemState modem = state();
    if (modem == ModemState::NoCard || modem == ModemState::Removed)
        return modem == ModemState::NoCard ? "no card is in the modem" : "the modem was removed";
    if (!theSession().hasCard<ScenarioCard>())
        return "a real card sends its own commands only";
    try {
        theSession().withCard([script = readCommand(json)](Card &card) {
            if (auto *scenarioCard = dynamic_cast<ScenarioCard *>(&card))
                scenarioCard->send(script, Card::Clock::now());
        });
        return {};
    } catch (const ScenarioError &error) {
        return error.what();
    }
}

bool hasMenu()
{
    return theSession().hasMenu();
}

void setCommandListener(CommandListener listener)
{
    theSession().callbacks().setListener(std::move(listener));
}

int addTranscriptListener(TranscriptListener listener)
{
    return theSession().transcript().addListener(std::move(listener));
}

void removeTranscriptListener(int id)
{
    theSession().transcript().removeListener(id);
}

} // namespace CardHost
