#include "CardHost.h"

#include <algorithm>
#include <chrono>
#include <cstring>
#include <map>
#include <memory>
#include <mutex>
#include <utility>

#include "ScenarioCard.h"
#include "ScenarioReader.h"
#include "Service.h"
#include "Session.h"
#include "card/ApduCapture.h"
#include "card/CardListener.h"
#include "card/Pcsc.h"
#include "card/PcscChannel.h"
#include "card/ReaderMonitor.h"
#include "card/ToolkitCard.h"
#include "card/WorkerChannel.h"

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

void withToolkitCard(std::function<void(ToolkitCard &)> function)
{
    constexpr bool AlsoWhileRemoved = true; // to be told when it is back
    theSession().withCard(
        [function = std::move(function)](Card &card) {
            if (auto *toolkitCard = dynamic_cast<ToolkitCard *>(&card))
                function(*toolkitCard);
        },
        AlsoWhileRemoved);
}

// Carries what cards in readers say to whoever listens.  Listeners are called with the lock held,
// so that none is running when its successor has been set.
class Host : public CardListener {
public:
    void exchanged(const ApduTraffic &traffic) override
    {
        theSession().transcript().apdu(traffic.command, traffic.response);
        std::unique_lock<std::mutex> lock(m_mutex);
        if (!m_capture || m_capture->write(traffic))
            return;
        const CardHost::Notice error = m_capture->error();
        m_capture.reset();
        lock.unlock();
        noticed(error);
    }
    void answeredByModem(const std::string &command, const std::string &result) override
    {
        theSession().transcript().answeredByModem(command, result);
    }
    void noticed(const CardHost::Notice &notice) override
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
        auto capture = file.empty() ? nullptr : std::make_unique<ApduCapture>(file);
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

    int addMonitor(CardHost::ReaderListener listener)
    {
        auto monitor = std::make_unique<ReaderMonitor>(std::move(listener));
        std::lock_guard<std::mutex> lock(m_mutex);
        m_monitors.emplace(++m_lastMonitor, std::move(monitor));
        return m_lastMonitor;
    }
    void removeMonitor(int id)
    {
        decltype(m_monitors)::node_type monitor; // waits for its thread without the lock
        std::lock_guard<std::mutex> lock(m_mutex);
        monitor = m_monitors.extract(id);
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
    std::unique_ptr<ApduCapture> m_capture;
    std::string m_language;
    std::map<int, std::unique_ptr<ReaderMonitor>> m_monitors;
    int m_lastMonitor = 0;
};

Host &theHost()
{
    static Host &host = *new Host; // the session may outlive everything that ends with the process
    return host;
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
    return theHost().addMonitor(std::move(listener));
}

void removeReaderListener(int id)
{
    theHost().removeMonitor(id);
}

void openReader(const std::string &nameStart)
{
    const std::string name = nameStart.empty() ? "card reader" : nameStart;
    theSession().insertCard(std::make_unique<ToolkitCard>(
        std::make_unique<WorkerChannel>(std::make_unique<PcscChannel>(nameStart), name, theHost()),
        name, theHost().language(), theHost()));
    // Whoever watches the readers knows first when a card has come.
    static const ReaderMonitor monitor([](const ReaderList &) {
        withToolkitCard([](ToolkitCard &card) { card.readersChanged(Card::Clock::now()); });
    });
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
    withToolkitCard(
        [request, pin](ToolkitCard &card) { card.answerPin(request, pin, Card::Clock::now()); });
}

std::string captureApdus(const std::string &file)
{
    return theHost().capture(file);
}

void setLanguage(const std::string &language)
{
    theHost().setLanguage(language);
    withToolkitCard(
        [language](ToolkitCard &card) { card.setLanguage(language, Card::Clock::now()); });
}

Pin::Pin(const char *digits, size_t count)
{
    constexpr size_t Fewest = 4;
    const auto isDigit = [](char character) { return character >= '0' && character <= '9'; };
    if (count < Fewest || count > m_digits.size() || !std::all_of(digits, digits + count, isDigit))
        return;
    std::copy_n(digits, count, m_digits.begin());
    m_count = count;
}

Pin::Pin(const Pin &other) = default;

Pin &Pin::operator=(const Pin &other) = default;

Pin::~Pin()
{
    explicit_bzero(m_digits.data(), m_digits.size());
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
        return "a card in a reader sends its own commands only";
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
    theSession().setCommandListener(std::move(listener));
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
