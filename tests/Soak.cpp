/* Throws random commands with random fields, delays, faults and overlaps, and random user actions,
 * at the plug-in in the real frames, for as long as it is told, from a seed that it prints.
 *
 *     Soak [SECONDS [SEED]]
 *
 * It ends with exit status 1 when a command was answered twice, when a window was left behind, when
 * the toolkit could not be used afterwards, or when memory grew by more than what the design keeps.
 * A crash or a sanitizer's report ends it by itself.
 */
#include <atomic>
#include <chrono>
#include <cstdio>
#include <map>
#include <mutex>
#include <random>
#include <thread>

#include <unistd.h>

#include <QApplication>
#include <QFile>
#include <QPushButton>
#include <QTableWidget>
#include <QTimer>
#include <QtTest>

#include "FakeModemService.h"
#include "HostUi.h"
#include "STKDialog.h"
#include "STKInputDlg.h"
#include "STKThread.h"

namespace {

using Clock = std::chrono::steady_clock;

const int MAX_DEPTH = 40;

/* Random numbers of one thread. */
class Dice {
public:
    explicit Dice(unsigned seed)
        : m_engine(seed)
    {
    }
    int upTo(int highest) { return std::uniform_int_distribution<int>(0, highest)(m_engine); }
    bool once(int in) { return upTo(in - 1) == 0; }
    template <size_t count> int of(const int (&values)[count]) { return values[upTo(count - 1)]; }

private:
    std::mt19937 m_engine;
};

long residentKiB()
{
    QFile file("/proc/self/statm");
    const QByteArray fields = file.open(QIODevice::ReadOnly) ? file.readAll() : "0 0";
    return fields.split(' ').at(1).toLong() * sysconf(_SC_PAGESIZE) / 1024;
}

/* What the design keeps: the timers of every showing and the validators of every digits window. */
struct Kept {
    int timers = STKDialog::Instance()->findChildren<QTimer *>().size() +
        STKInputDlg::StkInputDlgInstance()->findChildren<QTimer *>().size();
    int validators = STKInputDlg::StkInputDlgInstance()->findChildren<QValidator *>().size();

    long kiB() const { return (timers * 400L + validators * 2000L) / 1024; }
};

/* The modem service, the card, and the user, who all do whatever comes to their minds. */
class Soak : public QObject {
    Q_OBJECT

public:
    Soak(unsigned seed, int seconds)
        : m_end(Clock::now() + std::chrono::seconds(seconds))
        , m_service(seed)
        , m_user(seed + 1)
        , m_card(seed + 2)
    {
        fakeModem.onCall = [this](const QString &function, int id) { return call(function, id); };
        m_mainWindow.resize(640, 480);
        m_mainWindow.show();
        HostUi::setMainWindow(&m_mainWindow);
        HostUi::setUrlOpener([](const QUrl &) { return true; });
        STKDialog::Instance();
    }

    void run()
    {
        beTheUser();
        std::thread card([this] {
            while (Clock::now() < m_end) {
                beTheCard();
                std::this_thread::sleep_for(
                    std::chrono::microseconds(m_card.once(4) ? 0 : m_card.upTo(4000)));
            }
        });
        while (Clock::now() < m_end) {
            QTest::qWait(50);
            if (startKiB == 0 && commands > 1000) {
                startKiB = residentKiB();
                keptAtStart = Kept().kiB();
            }
        }
        card.join();
        // What still waits may open windows, within this very wait: the user closes them.
        for (int i = 0; i < 1000 && (m_waiting > 0 || QApplication::activeModalWidget()); ++i)
            QTest::qWait(10);
        m_stopped = true;
    }

    void openToolkit()
    {
        QRect area;
        STKDialog::Instance()->ShowStkDlg(&m_mainWindow, area);
        ++shown;
    }

    int failures = 0;
    long answers = 0, shown = 0, startKiB = 0, keptAtStart = 0;
    std::atomic<long> commands{0};

public slots:
    /* A command's handler has begun. */
    void take()
    {
        m_depth = QThread::currentThread()->loopLevel(); // first, so that the sum never falls short
        --m_waiting;
    }

private:
    struct Book {
        bool alone; /* the handlers of all earlier commands had run when it was sent */
        bool answered;
    };

    int32_t call(const QString &function, int id)
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        if (m_service.once(25))
            return -1;
        if (function.startsWith("Answer") || function.startsWith("Send"))
            return answer(id);
        if (function.endsWith("Menu"))
            fillMenus();
        else if (function.startsWith("Get"))
            fillDetails();
        return 0;
    }

    QString text()
    {
        const int letters[] = {'a', 'W', ' ', '<', '&', 0x416, 0x4E2D, 0x639, 0xD83D, 0xDE00, '\n'};
        QString text;
        for (int left = m_service.once(4) ? 600 : m_service.upTo(40); left > 0; --left)
            text += QChar(m_service.of(letters));
        return text;
    }

    void fillMenus()
    {
        FakeModemService &to = fakeModem;
        to.mainTitle = to.subTitle = text();
        to.mainItems.clear();
        for (int id = m_service.upTo(28); id > 0; --id)
            to.mainItems.push_back({static_cast<int16_t>(id), text()});
        to.subItems = to.mainItems;
        to.itemCountOverride = m_service.once(20) ? -2 : to.NoOverride;
        to.nullItems = m_service.once(20);
    }

    void fillDetails()
    {
        FakeModemService &to = fakeModem;
        const auto number = [this](int highest) {
            return static_cast<short>(m_service.upTo(highest));
        };
        const auto time = [this](int longest) {
            return static_cast<uint16_t>(m_service.upTo(longest));
        };
        to.playTone = {number(20), time(2), {}};
        to.launchBrowser.nLaunchMode = number(4);
        to.inKey = {{}, number(4), number(2), time(50)};
        to.input = {{}, number(4), number(2), number(4), number(40), number(2), {}};
        --to.input.sMinLen;
        --to.input.sMaxLen;
        to.promptText = {{}, number(1), time(2)};
        to.put(to.idleText.szText, text());
        to.put(to.playTone.szText, text());
        to.put(to.launchBrowser.szUrl, text());
        to.put(to.inKey.szText, text());
        to.put(to.input.szText, text());
        to.put(to.input.szDefaultText, text());
        to.put(to.promptText.szText, text());
    }

    /* The user interface answers.  What the callback answers by itself, on its own thread, may
     * cross with that: such a command was over before its handler ran. */
    int32_t answer(int id)
    {
        const auto book =
            m_answered.find(m_id - static_cast<uint16_t>(m_id - static_cast<uint16_t>(id)));
        if (book == m_answered.end())
            return -1;
        if (QThread::currentThread() != qApp->thread()) {
            book->second.alone = false;
        } else if (book->second.answered && book->second.alone) {
            std::printf("command %d was answered twice\n", id);
            ++failures;
        }
        book->second.answered = true;
        ++answers;
        return 0;
    }

    /* A command is out: its answer is awaited. */
    int16_t command()
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        ++m_id;
        m_answered[m_id] = Book{m_waiting == 0, false};
        if (m_answered.size() > 1000)
            m_answered.erase(m_answered.begin());
        return static_cast<int16_t>(m_id);
    }

    void beTheCard()
    {
        // Every waiting command may open a window on top of the others, and a slow machine may have
        // no time for the user between them: the stack is not endless.
        if (m_depth + m_waiting >= MAX_DEPTH)
            return;
        if (m_card.once(60)) {
            fakeModem.deviceCallback(6600 + m_card.upTo(4), nullptr);
            return;
        }
        if (m_card.once(200)) {
            fakeModem.stkCallback(0, nullptr);
            return;
        }
        // The menu and the end of a session come often, as on a real card: they clear a verdict.
        const int types[] = {0, 1, 1,  2,  2,  3,  3,  4,  5,  6, 6,   7,
                             8, 9, 10, 11, 12, 13, 55, 99, 99, 0, 100, -1};
        MOVA_STKNotifyData data = {static_cast<_MOVA_EN_STKTYPE>(m_card.of(types)), command(),
                                   m_card.once(40)};
        ++m_waiting;
        fakeModem.stkCallback(0, &data);
        // Behind the command's own signal in the queue; by name, since the thread sanitizer does
        // not see how Qt hands a functor over.
        QMetaObject::invokeMethod(this, "take", Qt::QueuedConnection);
        ++commands;
    }

    /* Every other millisecond, also inside the event loop that an action has opened; a repeating
     * timer would wait for that to end. */
    void beTheUser()
    {
        if (m_stopped)
            return;
        m_depth = QThread::currentThread()->loopLevel();
        QTimer::singleShot(2, this, [this] { beTheUser(); });
        while (m_user.once(25) && QApplication::overrideCursor())
            QApplication::restoreOverrideCursor(); // as a host may
        QWidget *const top = QApplication::activeModalWidget();
        STKTableWidget *const table = STKDialog::Instance()->m_pTableWidget;
        if (Clock::now() >= m_end) { // the event loops of all windows have to unwind
            if (top)
                top->close();
            STKLogic::OnSTKEventCB(0, nullptr); // a wait for the card ends, and lets its window go
        } else if (!table && (!top || m_user.once(20))) {
            openToolkit();
        } else if (top) {
            useWindow(top);
        }
    }

    void useWindow(QWidget *top)
    {
        const int keys[] = {Qt::Key_Return, Qt::Key_Enter, Qt::Key_Escape, Qt::Key_Down,
                            Qt::Key_Up,     Qt::Key_1,     Qt::Key_A,      Qt::Key_Backspace,
                            Qt::Key_Tab,    Qt::Key_Space};
        const auto buttons = top->findChildren<QPushButton *>();
        const int what = m_user.upTo(5);
        if (what == 0 && !buttons.isEmpty())
            buttons.at(m_user.upTo(buttons.size() - 1))->click();
        else if (what == 1 && m_user.once(4))
            top->close();
        else if (what == 2)
            clickARow(top, top->findChild<QTableWidget *>());
        else if (what > 2)
            QTest::sendKeyEvent(QTest::Click, top->focusWidget() ? top->focusWidget() : top,
                                static_cast<Qt::Key>(m_user.of(keys)), "1", Qt::NoModifier);
    }

    void clickARow(QWidget *top, QTableWidget *table)
    {
        if (!table || table->rowCount() == 0)
            return;
        const QPoint at =
            table->visualItemRect(table->item(m_user.upTo(table->rowCount() - 1), 0)).center();
        QTest::mouseClick(table->viewport(), Qt::LeftButton, Qt::NoModifier, at);
        if (m_user.once(2) && QApplication::activeModalWidget() == top)
            QTest::mouseDClick(table->viewport(), Qt::LeftButton, Qt::NoModifier, at);
    }

    const Clock::time_point m_end;
    Dice m_service, m_user, m_card;
    QWidget m_mainWindow;
    bool m_stopped = false;
    /* commands whose handlers have not begun, and event loops on top of each other: every window
     * under another has one */
    std::atomic<int> m_waiting{0}, m_depth{0};
    std::mutex m_mutex;
    uint32_t m_id = 0;
    std::map<uint32_t, Book> m_answered;
};

bool closeEverything()
{
    for (int i = 0; i < 200; ++i) {
        QWidget *const top = QApplication::activeModalWidget();
        if (!top && !STKDialog::Instance()->m_pStkThread->isRunning())
            return true;
        if (top)
            top->close();
        QTest::qWait(20);
        // A wait for the card ends with whatever the card sends.
        STKLogic::OnSTKEventCB(0, nullptr);
    }
    return false;
}

bool toolkitWorks(Soak &soak)
{
    STKDialog *const dialog = STKDialog::Instance();
    soak.openToolkit();
    QTest::qWait(50);
    STKTableWidget *const table = dialog->m_pTableWidget;
    for (int i = 0; i < 100 && !dialog->m_pStkThread->isRunning(); ++i) {
        // The modem may refuse its menu, or have an empty one, or one with a text that is empty;
        // nor is every choice taken, and then the menu is another one.
        if (table->rowCount() == 0 || table->item(0, 0)->text().isEmpty()) {
            dialog->onSTKSetupMenu();
            continue;
        }
        table->setCurrentCell(0, 0);
        dialog->onButtonClickSelect();
    }
    const bool works = dialog->m_pStkThread->isRunning();
    return closeEverything() && works;
}

} // namespace

int main(int argc, char **argv)
{
    const int seconds = argc > 1 ? std::atoi(argv[1]) : 60;
    const unsigned seed = argc > 2 ? static_cast<unsigned>(std::strtoul(argv[2], nullptr, 10))
                                   : std::random_device()();
    std::printf("soak: %d s, seed %u\n", seconds, seed);
    std::fflush(stdout);

    QApplication application(argc, argv);
    application.setQuitOnLastWindowClosed(false);
    qInstallMessageHandler([](QtMsgType type, const QMessageLogContext &, const QString &message) {
        if (type == QtFatalMsg)
            std::fprintf(stderr, "%s\n", qPrintable(message));
    });
    Soak soak(seed, seconds);
    soak.run();
    const bool closed = closeEverything();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    const Kept kept;
    const long grown = residentKiB() - soak.startKiB, keptKiB = kept.kiB() - soak.keptAtStart;

    int failures = soak.failures;
    const auto require = [&failures](bool holds, const char *what) {
        failures += !holds;
        if (!holds)
            std::printf("FAILED: %s\n", what);
    };
    require(closed, "every window can be closed");
    int left = 0;
    for (QWidget *window : QApplication::topLevelWidgets())
        left += bool(qobject_cast<ExtendDialog *>(window));
    require(left == 0, "no window is left behind");
    require(toolkitWorks(soak), "the toolkit works afterwards");
#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)
    require(soak.startKiB == 0 || grown <= keptKiB + 8 * 1024,
            "memory is flat after the first thousand commands");
#endif
    std::printf("soak: %ld commands (%ld a second), %ld answers, the toolkit shown %ld times\n",
                soak.commands.load(), soak.commands / qMax(seconds, 1), soak.answers, soak.shown);
    std::printf("soak: memory grew by %ld KiB after the first thousand, of which about %ld KiB are "
                "kept on purpose (%d timers, %d validators)\n",
                grown, keptKiB, kept.timers, kept.validators);
    STKDialog::Instance()->unSDKRegisterEvent();
    STKDialog::Destroy();
    std::printf("%d passed, %d failed\n", failures ? 0 : 1, failures);
    return failures ? 1 : 0;
}

#include "Soak.moc"
