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
#include <cstdlib>
#include <map>
#include <mutex>
#include <random>
#include <thread>

#include <sys/resource.h>
#include <unistd.h>

#include <QApplication>
#include <QLineEdit>
#include <QPushButton>
#include <QTableWidget>
#include <QTimer>
#include <QtTest>

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

/* The modem service: answers every call at random and keeps the books of the answers. */
class Modem {
public:
    explicit Modem(unsigned seed)
        : m_dice(seed)
    {
    }

    int32_t fate()
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        return m_dice.once(25) ? -1 : 0;
    }

    template <size_t units> void put(uint16_t (&text)[units])
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        const uint16_t letters[] = {'a',    'W',   ' ',    '<',    '&', 0x416,
                                    0x4E2D, 0x639, 0xD83D, 0xDE00, '\n'};
        const size_t length = m_dice.once(4) ? units : static_cast<size_t>(m_dice.upTo(40));
        for (size_t i = 0; i < length; ++i)
            text[i] = letters[m_dice.upTo(10)];
        if (length < units)
            text[length] = 0;
    }

    int number(int highest)
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        return m_dice.upTo(highest);
    }

    /* A command is out: its answer is awaited. */
    int16_t command(bool alone)
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        ++m_id;
        m_answered[m_id] = Book{alone, false};
        if (m_answered.size() > 1000)
            m_answered.erase(m_answered.begin());
        return static_cast<int16_t>(m_id);
    }

    /* The user interface answers.  What the callback answers by itself, on its own thread, may
     * cross with that: such a command was over before its handler ran. */
    int32_t answer(int16_t id)
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        if (m_dice.once(25))
            return -1;
        const auto book =
            m_answered.find(m_id - static_cast<uint16_t>(m_id - static_cast<uint16_t>(id)));
        if (book == m_answered.end())
            return -1;
        if (std::this_thread::get_id() != guiThread) {
            book->second.alone = false;
        } else if (book->second.answered && book->second.alone) {
            std::printf("command %d was answered twice\n", id);
            ++failures;
        }
        book->second.answered = true;
        ++answers;
        return 0;
    }

    std::thread::id guiThread = std::this_thread::get_id();
    std::atomic<int> failures{0};
    std::atomic<long> answers{0};
    std::atomic<MOVA_STKCallback> stkCallback{nullptr};
    std::atomic<MOVA_DevMgrCallback> deviceCallback{nullptr};

private:
    struct Book {
        bool alone; /* the handlers of all earlier commands had run when it was sent */
        bool answered;
    };

    std::mutex m_mutex;
    Dice m_dice;
    uint32_t m_id = 0;
    std::map<uint32_t, Book> m_answered;
};

Modem *modem = nullptr;

template <typename Record> int32_t menu(Record *record)
{
    if (modem->fate() != 0)
        return -1;
    modem->put(record->szTitle);
    record->sItemCount = static_cast<int16_t>(modem->number(30) - 2);
    record->pItems = record->sItemCount > 0 ? new MOVA_STKMenuItem[record->sItemCount] : nullptr;
    for (int i = 0; i < record->sItemCount; ++i) {
        record->pItems[i].sItemId = static_cast<int16_t>(i);
        modem->put(record->pItems[i].szItemText);
    }
    return 0;
}

template <typename Record> int32_t release(Record *record)
{
    delete[] record->pItems;
    return modem->fate();
}

} // namespace

int32_t MOVA_STK_RegisterCallBack(MOVA_STKCallback callback)
{
    modem->stkCallback = callback;
    return 0;
}
int32_t MOVA_DevSrv_RegisterDevMgrCallback(MOVA_DevMgrCallback callback)
{
    modem->deviceCallback = callback;
    return 0;
}
int32_t MOVA_STK_UnRegisterCallBack(MOVA_STKCallback)
{
    return 0;
}
int32_t MOVA_DevSrv_UnRegisterDevMgrCallback(MOVA_DevMgrCallback)
{
    return 0;
}
int32_t MOVA_STKSrv_GetMainMenu(MOVA_STKMenuInfo *info)
{
    return menu(info);
}
int32_t MOVA_STKSrv_ReleaseMenus(MOVA_STKMenuInfo *info)
{
    return release(info);
}
int32_t MOVA_STKSrv_GetSubMenu(int16_t, MOVA_STKSubMenuInfo *info)
{
    return menu(info);
}
int32_t MOVA_STKSrv_ReleaseSubMenus(MOVA_STKSubMenuInfo *info)
{
    return release(info);
}
int32_t MOVA_STKSrv_SelectMenuItem(int16_t, int16_t)
{
    return modem->fate();
}
int32_t MOVA_STKSrv_SelectSubMenuItem(int16_t, int32_t, int16_t)
{
    return modem->fate();
}
int32_t MOVA_STKSrv_GetRefreshInfo(int16_t, MOVA_STKRefreshInfo *)
{
    return modem->fate();
}
int32_t MOVA_STKSrv_GetIdleModePrompt(int16_t, MOVA_STKIdleModeTextInfo *info)
{
    modem->put(info->szText);
    return modem->fate();
}
int32_t MOVA_STKSrv_GetPlayTone(int16_t, MOVA_STKPlayToneInfo *info)
{
    modem->put(info->szText);
    info->nTone = modem->number(20);
    info->usDuration = static_cast<uint16_t>(modem->number(2));
    return modem->fate();
}
int32_t MOVA_STKSrv_GetLaunchBrowser(int16_t, MOVA_STKLaunchBrowserInfo *info)
{
    modem->put(info->szUrl);
    info->nLaunchMode = modem->number(4);
    return modem->fate();
}
int32_t MOVA_STKSrv_GetInKeyRequest(int16_t, MOVA_STKInKeyInfo *info)
{
    modem->put(info->szText);
    info->nInputType = modem->number(4);
    info->bOption = modem->number(2);
    info->usDuration = static_cast<uint16_t>(modem->number(50));
    return modem->fate();
}
int32_t MOVA_STKSrv_GetInputRequest(int16_t, MOVA_STKInputInfo *info)
{
    modem->put(info->szText);
    modem->put(info->szDefaultText);
    info->nInputType = modem->number(4);
    info->bEcho = modem->number(2);
    info->sMinLen = static_cast<int16_t>(modem->number(4) - 1);
    info->sMaxLen = static_cast<int16_t>(modem->number(40) - 1);
    info->bOption = modem->number(2);
    return modem->fate();
}
int32_t MOVA_STKSrv_GetPromptText(int16_t, MOVA_STKPromptTextInfo *info)
{
    modem->put(info->szText);
    info->nClearMode = modem->number(1);
    info->usDuration = static_cast<uint16_t>(modem->number(2));
    return modem->fate();
}
int32_t MOVA_STKSrv_AnswerInKey(int16_t id, int32_t, const uint16_t *)
{
    return modem->answer(id);
}
int32_t MOVA_STKSrv_AnswerInput(int16_t id, int32_t, const uint16_t *)
{
    return modem->answer(id);
}
int32_t MOVA_STKSrv_SendNoDataResponse(int16_t id, _STK_UI_EN_STKTYPE, _STK_UI_EN_TERMINALRESPONSE)
{
    return modem->answer(id);
}

namespace {

/* Counts the commands whose handlers have not begun.  Called by name: the thread sanitizer does not
 * see how Qt hands a functor over. */
class Queue : public QObject {
    Q_OBJECT
public:
    std::atomic<int> waiting{0};
    /* event loops on top of each other: every window under another has one */
    std::atomic<int> depth{0};

    /* How deep it may get when every waiting command opens a window on top of the others: a slow
     * machine may have no time for the user between them. */
    int deepest() const { return depth + waiting; }
public slots:
    void take()
    {
        depth = QThread::currentThread()->loopLevel(); // first, so that deepest() never falls short
        --waiting;
    }
};

/* The card: a thread that sends whatever comes to its mind. */
class Card {
public:
    Card(unsigned seed, Queue *queue, Clock::time_point end)
        : m_dice(seed)
        , m_queue(queue)
        , m_end(end)
        , m_thread([this] { run(); })
    {
    }
    ~Card() { m_thread.join(); }
    long commands() const { return m_commands; }

private:
    void run()
    {
        while (Clock::now() < m_end) {
            act();
            std::this_thread::sleep_for(
                std::chrono::microseconds(m_dice.once(4) ? 0 : m_dice.upTo(4000)));
        }
    }

    void act()
    {
        if (m_queue->deepest() >= MAX_DEPTH)
            return; // the user must close some windows first: the stack is not endless
        if (m_dice.once(60)) {
            modem->deviceCallback.load()(6600 + m_dice.upTo(4), nullptr);
            return;
        }
        if (m_dice.once(200)) {
            modem->stkCallback.load()(0, nullptr);
            return;
        }
        // The menu and the end of a session come often, as on a real card: they clear a verdict.
        const int types[] = {0, 1, 1,  2,  2,  3,  3,  4,  5,  6, 6,   7,
                             8, 9, 10, 11, 12, 13, 55, 99, 99, 0, 100, -1};
        MOVA_STKNotifyData data = {static_cast<_MOVA_EN_STKTYPE>(m_dice.of(types)),
                                   modem->command(m_queue->waiting == 0), m_dice.once(40)};
        ++m_queue->waiting;
        modem->stkCallback.load()(0, &data);
        // Behind the command's own signal in the queue: its handler has begun when this runs.
        QMetaObject::invokeMethod(m_queue, "take", Qt::QueuedConnection);
        ++m_commands;
    }

    Dice m_dice;
    Queue *m_queue;
    const Clock::time_point m_end;
    std::atomic<long> m_commands{0};
    std::thread m_thread;
};

QDialog *toolkitWindow()
{
    STKTableWidget *const table = STKDialog::Instance()->m_pTableWidget;
    return table ? qobject_cast<QDialog *>(table->window()) : nullptr;
}

/* The user: does something to the window on top, or opens the toolkit. */
class User : public QObject {
public:
    User(unsigned seed, QWidget *mainWindow, Queue *queue, Clock::time_point end)
        : m_dice(seed)
        , m_mainWindow(mainWindow)
        , m_queue(queue)
        , m_end(end)
    {
    }

    /* Acts every other millisecond, also inside the event loop that an action of its own has
     * opened; a repeating timer would wait for that to end. */
    void goOn()
    {
        if (stopped)
            return;
        m_queue->depth = QThread::currentThread()->loopLevel();
        QTimer::singleShot(2, this, [this] { goOn(); });
        act();
    }

    bool stopped = false;
    long shown = 0;

private:
    void act()
    {
        QWidget *const top = QApplication::activeModalWidget();
        if (Clock::now() >= m_end) { // the event loops of all windows have to unwind
            if (top)
                top->close();
            return;
        }
        if (!top || (!toolkitWindow() && m_dice.once(20))) {
            if (!toolkitWindow()) {
                QRect area;
                STKDialog::Instance()->ShowStkDlg(m_mainWindow, area);
                ++shown;
            }
            return;
        }
        const int keys[] = {Qt::Key_Return, Qt::Key_Enter, Qt::Key_Escape, Qt::Key_Down,
                            Qt::Key_Up,     Qt::Key_1,     Qt::Key_A,      Qt::Key_Backspace,
                            Qt::Key_Tab,    Qt::Key_Space};
        switch (m_dice.upTo(5)) {
        case 0:
            clickAButton(top);
            break;
        case 1:
            if (m_dice.once(4))
                top->close();
            break;
        case 2:
            clickARow(top);
            break;
        default:
            QTest::sendKeyEvent(QTest::Click, top->focusWidget() ? top->focusWidget() : top,
                                static_cast<Qt::Key>(m_dice.of(keys)), "1", Qt::NoModifier);
        }
    }

    void clickAButton(QWidget *top)
    {
        const QList<QPushButton *> buttons = top->findChildren<QPushButton *>();
        if (!buttons.isEmpty())
            buttons.at(m_dice.upTo(buttons.size() - 1))->click();
    }

    void clickARow(QWidget *top)
    {
        QTableWidget *const table = top->findChild<QTableWidget *>();
        if (!table || table->rowCount() == 0)
            return;
        const QPoint at =
            table->visualItemRect(table->item(m_dice.upTo(table->rowCount() - 1), 0)).center();
        QTest::mouseClick(table->viewport(), Qt::LeftButton, Qt::NoModifier, at);
        if (m_dice.once(2) && QApplication::activeModalWidget() == top)
            QTest::mouseDClick(table->viewport(), Qt::LeftButton, Qt::NoModifier, at);
    }

    Dice m_dice;
    QWidget *m_mainWindow;
    Queue *m_queue;
    const Clock::time_point m_end;
};

long residentKiB()
{
    long pages = 0, resident = 0;
    if (FILE *const file = std::fopen("/proc/self/statm", "r")) {
        if (std::fscanf(file, "%ld %ld", &pages, &resident) != 2)
            resident = 0;
        std::fclose(file);
    }
    return resident * sysconf(_SC_PAGESIZE) / 1024;
}

long peakKiB()
{
    rusage usage;
    getrusage(RUSAGE_SELF, &usage);
    return usage.ru_maxrss;
}

/* What the design keeps: the timers of every showing, the validators of every digits window, and
 * the cursors of every wait. */
struct Kept {
    int timers = 0, validators = 0;

    static Kept now()
    {
        Kept kept;
        STKInputDlg *const input = STKInputDlg::StkInputDlgInstance();
        kept.timers = STKDialog::Instance()->findChildren<QTimer *>().size() +
            input->findChildren<QTimer *>().size();
        kept.validators = input->findChildren<QValidator *>().size();
        return kept;
    }
    long kiB() const { return (timers * 400L + validators * 2000L) / 1024; }
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

bool toolkitWorks(QWidget *mainWindow)
{
    QRect area;
    STKDialog *const dialog = STKDialog::Instance();
    dialog->ShowStkDlg(mainWindow, area);
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
    Modem theModem(seed);
    modem = &theModem;
    HostUi::setUrlOpener([](const QUrl &) { return true; });
    QWidget mainWindow;
    mainWindow.resize(640, 480);
    mainWindow.show();
    HostUi::setMainWindow(&mainWindow);
    STKDialog::Instance();

    long commands = 0, startKiB = 0;
    Kept keptAtStart;
    const Clock::time_point start = Clock::now(), end = start + std::chrono::seconds(seconds);
    Queue queue;
    User user(seed + 1, &mainWindow, &queue, end);
    QTimer clerk;
    user.goOn();
    {
        Card card(seed + 2, &queue, end);
        QObject::connect(&clerk, &QTimer::timeout, &user, [&] {
            while (QApplication::overrideCursor())
                QApplication::restoreOverrideCursor(); // as a host may
            if (startKiB == 0 && card.commands() > 1000) {
                startKiB = residentKiB();
                keptAtStart = Kept::now();
            }
        });
        clerk.start(50);
        while (Clock::now() < end)
            QTest::qWait(50);
        clerk.stop();
        commands = card.commands();
    }
    const double elapsed = std::chrono::duration<double>(Clock::now() - start).count();
    user.stopped = true;
    const bool closed = closeEverything();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    const Kept kept = Kept::now();
    const long grown = residentKiB() - startKiB, keptKiB = kept.kiB() - keptAtStart.kiB();

    int failures = theModem.failures;
    const auto require = [&failures](bool holds, const char *what) {
        if (!holds) {
            std::printf("FAILED: %s\n", what);
            ++failures;
        }
    };
    require(closed, "every window can be closed");
    int left = 0;
    const QWidgetList windows = QApplication::topLevelWidgets();
    for (QWidget *window : windows)
        left += qobject_cast<ExtendDialog *>(window) != nullptr;
    require(left == 0, "no window is left behind");
    require(toolkitWorks(&mainWindow), "the toolkit works afterwards");
#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)
    require(startKiB == 0 || grown <= keptKiB + 8 * 1024,
            "memory is flat after the first thousand commands");
#endif
    std::printf("soak: %ld commands (%.0f a second), %ld answers, the toolkit shown %ld times\n",
                commands, commands / elapsed, theModem.answers.load(), user.shown);
    std::printf("soak: memory grew by %ld KiB after the first thousand, of which about %ld KiB are "
                "kept on purpose "
                "(%d timers, %d validators); peak %ld KiB\n",
                grown, keptKiB, kept.timers, kept.validators, peakKiB());
    STKDialog::Instance()->unSDKRegisterEvent();
    STKDialog::Destroy();
    std::printf("%d passed, %d failed\n", failures ? 0 : 1, failures);
    return failures ? 1 : 0;
}

#include "Soak.moc"
