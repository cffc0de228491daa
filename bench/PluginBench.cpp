/* What the toolkit window costs, as ratios against the plainest Qt program that does the same,
 * taken in one run.  The trace is written as ever and discarded by the message handler.
 *
 *     build/bench/PluginBench            (with a display, or with QT_QPA_PLATFORM=offscreen)
 */
#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <functional>
#include <map>
#include <mutex>
#include <thread>
#include <vector>

#include <QApplication>
#include <QDialog>
#include <QEventLoop>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QMessageBox>
#include <QPushButton>
#include <QPointer>
#include <QThread>
#include <QTimer>
#include <QTableWidget>
#include <QVBoxLayout>

#include "STKDialog.h"

namespace {

using Clock = std::chrono::steady_clock;

/* The service: as little as can stand behind the plug-in's calls, so that what is measured is ours.
 */
int menuItems = 0;
Clock::time_point answeredAt;

template <size_t units> void put(uint16_t (&text)[units], const QString &from)
{
    for (int i = 0; i < from.size(); ++i)
        text[i] = from.at(i).unicode();
    text[from.size()] = 0;
}

} // namespace

int32_t MOVA_STK_RegisterCallBack(MOVA_STKCallback)
{
    return 0;
}
int32_t MOVA_STK_UnRegisterCallBack(MOVA_STKCallback)
{
    return 0;
}
int32_t MOVA_DevSrv_RegisterDevMgrCallback(MOVA_DevMgrCallback)
{
    return 0;
}
int32_t MOVA_DevSrv_UnRegisterDevMgrCallback(MOVA_DevMgrCallback)
{
    return 0;
}
int32_t MOVA_STKSrv_GetMainMenu(MOVA_STKMenuInfo *menu)
{
    put(menu->szTitle, "Operator");
    menu->sItemCount = static_cast<int16_t>(menuItems);
    menu->pItems = new MOVA_STKMenuItem[menuItems];
    for (int i = 0; i < menuItems; ++i) {
        menu->pItems[i].sItemId = static_cast<int16_t>(i + 1);
        put(menu->pItems[i].szItemText, QString("Service number %1").arg(i + 1));
    }
    return 0;
}
int32_t MOVA_STKSrv_ReleaseMenus(MOVA_STKMenuInfo *menu)
{
    delete[] menu->pItems;
    return 0;
}
int32_t MOVA_STKSrv_GetPromptText(int16_t, MOVA_STKPromptTextInfo *info)
{
    put(info->szText, "Your balance is 12.40");
    info->nClearMode = 1;
    info->usDuration = 0;
    return 0;
}
int32_t MOVA_STKSrv_SendNoDataResponse(int16_t, _STK_UI_EN_STKTYPE, _STK_UI_EN_TERMINALRESPONSE)
{
    answeredAt = Clock::now();
    return 0;
}
int32_t MOVA_STKSrv_GetSubMenu(int16_t, MOVA_STKSubMenuInfo *)
{
    return -1;
}
int32_t MOVA_STKSrv_ReleaseSubMenus(MOVA_STKSubMenuInfo *)
{
    return -1;
}
int32_t MOVA_STKSrv_SelectMenuItem(int16_t, int16_t)
{
    return -1;
}
int32_t MOVA_STKSrv_SelectSubMenuItem(int16_t, int32_t, int16_t)
{
    return -1;
}
int32_t MOVA_STKSrv_GetIdleModePrompt(int16_t, MOVA_STKIdleModeTextInfo *)
{
    return -1;
}
int32_t MOVA_STKSrv_GetPlayTone(int16_t, MOVA_STKPlayToneInfo *)
{
    return -1;
}
int32_t MOVA_STKSrv_GetLaunchBrowser(int16_t, MOVA_STKLaunchBrowserInfo *)
{
    return -1;
}
int32_t MOVA_STKSrv_GetInKeyRequest(int16_t, MOVA_STKInKeyInfo *)
{
    return -1;
}
int32_t MOVA_STKSrv_GetInputRequest(int16_t, MOVA_STKInputInfo *)
{
    return -1;
}
int32_t MOVA_STKSrv_GetRefreshInfo(int16_t, MOVA_STKRefreshInfo *)
{
    return -1;
}
int32_t MOVA_STKSrv_AnswerInKey(int16_t, int32_t, const uint16_t *)
{
    return -1;
}
int32_t MOVA_STKSrv_AnswerInput(int16_t, int32_t, const uint16_t *)
{
    return -1;
}

namespace {

double secondsSince(Clock::time_point start)
{
    return std::chrono::duration<double>(Clock::now() - start).count();
}

/* A thread that stands for the service's: does one thing whenever it is asked to. */
class ForeignThread {
public:
    ForeignThread()
        : m_thread([this] { run(); })
    {
    }
    ~ForeignThread()
    {
        post(nullptr);
        m_thread.join();
    }
    void post(std::function<void()> act)
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        m_act = std::move(act);
        m_asked = true;
        m_changed.notify_one();
    }

private:
    void run()
    {
        for (;;) {
            std::unique_lock<std::mutex> lock(m_mutex);
            m_changed.wait(lock, [this] { return m_asked; });
            m_asked = false;
            if (!m_act)
                return;
            m_act();
        }
    }

    std::mutex m_mutex;
    std::condition_variable m_changed;
    std::function<void()> m_act;
    bool m_asked = false;
    std::thread m_thread;
};

/* Emits on a foreign thread what a plain program would. */
class PlainSender : public QObject {
    Q_OBJECT
signals:
    void menuChanged();
};

/* Takes the time at which a queued signal arrives: connected last, it runs after the slot measured.
 */
class Arrival : public QObject {
    Q_OBJECT
public:
    Clock::time_point start;
    double seconds = 0;

    void wait() { m_loop.exec(); }

public slots:
    void take()
    {
        seconds = secondsSince(start);
        m_loop.quit();
    }

private:
    QEventLoop m_loop;
};

void fillPlain(QTableWidget *table, int items)
{
    table->clear();
    table->setRowCount(items);
    for (int i = 0; i < items; ++i) {
        table->setItem(i, 0, new QTableWidgetItem(QString("Service number %1").arg(i + 1)));
        table->setRowHeight(i, 17);
    }
}

/* A dialog with a table and three buttons, as anybody would write it. */
class PlainDialog : public QDialog {
    Q_OBJECT
public:
    explicit PlainDialog(QWidget *parent, int items)
        : QDialog(parent)
        , table(new QTableWidget(this))
    {
        auto *buttons = new QHBoxLayout;
        for (const char *text : {"Back", "Select", "Close"})
            buttons->addWidget(new QPushButton(text, this));
        auto *outer = new QVBoxLayout(this);
        outer->addWidget(table);
        outer->addLayout(buttons);
        table->setColumnCount(1);
        table->horizontalHeader()->hide();
        table->verticalHeader()->hide();
        table->verticalHeader()->setMinimumSectionSize(17);
        table->setColumnWidth(0, 345);
        table->setEditTriggers(QAbstractItemView::NoEditTriggers);
        table->setSelectionBehavior(QAbstractItemView::SelectRows);
        setFixedSize(380, 357);
        fillPlain(table, items);
    }

    QTableWidget *table;

public slots:
    void fill() { fillPlain(table, 20); }
};

/* Counts the paints of one widget. */
class PaintWatch : public QObject {
public:
    bool painted = false;
    bool eventFilter(QObject *, QEvent *event) override
    {
        painted = painted || event->type() == QEvent::Paint;
        return false;
    }
    static void untilPainted(QWidget *widget)
    {
        PaintWatch watch;
        widget->installEventFilter(&watch);
        while (!watch.painted)
            QCoreApplication::processEvents();
    }
};

STKDialog *toolkit()
{
    return STKDialog::Instance();
}

QDialog *showToolkit(QWidget *parent, int items)
{
    QRect area;
    toolkit()->ShowStkDlg(parent, area);
    if (toolkit()->m_pTableWidget->rowCount() != items)
        qFatal("the menu has %d rows, not %d", toolkit()->m_pTableWidget->rowCount(), items);
    return qobject_cast<QDialog *>(toolkit()->m_pTableWidget->window());
}

void closeAndDelete(QDialog *dialog)
{
    dialog->close();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    while (QApplication::overrideCursor())
        QApplication::restoreOverrideCursor();
}

double median(std::vector<double> &times)
{
    std::nth_element(times.begin(), times.begin() + times.size() / 2, times.end());
    return times[times.size() / 2];
}

/* By turns, and each with nothing left to paint: how fast the threads wake up changes from one
 * moment to the next. */
void setupMenuFromForeignThread(benchmark::State &state)
{
    menuItems = 20;
    QDialog *const dialog = showToolkit(nullptr, 20);
    PlainDialog plainDialog(nullptr, 20);
    plainDialog.show();
    PaintWatch::untilPainted(&plainDialog);
    PlainSender sender;
    ForeignThread thread;
    Arrival arrival;
    QObject::connect(STKLogic::CreateInstance(), SIGNAL(STKSetupMenu()), &arrival, SLOT(take()));
    QObject::connect(&sender, SIGNAL(menuChanged()), &plainDialog, SLOT(fill()));
    QObject::connect(&sender, SIGNAL(menuChanged()), &arrival, SLOT(take()));
    const auto secondsOf = [&](auto send) {
        QCoreApplication::processEvents();
        thread.post([&] {
            arrival.start = Clock::now();
            send();
        });
        arrival.wait();
        return arrival.seconds;
    };
    std::vector<double> ours, plain;
    for (auto _ : state) {
        plain.push_back(secondsOf([&] { emit sender.menuChanged(); }));
        ours.push_back(secondsOf([] {
            MOVA_STKNotifyData data = {MOVA_STKTYPE_SETUP_MENU, 1, 0};
            STKLogic::OnSTKEventCB(0, &data);
        }));
        state.SetIterationTime(ours.back());
    }
    closeAndDelete(dialog);
    state.counters["ratio"] = median(ours) / median(plain);
}

void drawMainMenu(benchmark::State &state)
{
    menuItems = 250;
    QDialog *const dialog = showToolkit(nullptr, 250);
    PaintWatch::untilPainted(dialog);
    for (auto _ : state) {
        const Clock::time_point start = Clock::now();
        toolkit()->showMainMenu();
        toolkit()->m_pTableWidget->viewport()->repaint();
        state.SetIterationTime(secondsSince(start));
    }
    closeAndDelete(dialog);
}

void drawPlainTable(benchmark::State &state)
{
    PlainDialog dialog(nullptr, 250);
    dialog.show();
    PaintWatch::untilPainted(&dialog);
    for (auto _ : state) {
        const Clock::time_point start = Clock::now();
        fillPlain(dialog.table, 250);
        dialog.table->viewport()->repaint();
        state.SetIterationTime(secondsSince(start));
    }
}

void showWindow(benchmark::State &state)
{
    menuItems = 20;
    QWidget parent;
    parent.show();
    PaintWatch::untilPainted(&parent);
    for (auto _ : state) {
        const Clock::time_point start = Clock::now();
        QDialog *const dialog = showToolkit(&parent, 20);
        PaintWatch::untilPainted(dialog);
        state.SetIterationTime(secondsSince(start));
        closeAndDelete(dialog);
    }
}

void showPlainDialog(benchmark::State &state)
{
    QWidget parent;
    parent.show();
    PaintWatch::untilPainted(&parent);
    for (auto _ : state) {
        const Clock::time_point start = Clock::now();
        auto *dialog = new PlainDialog(&parent, 20);
        dialog->setAttribute(Qt::WA_DeleteOnClose);
        dialog->setWindowModality(Qt::WindowModal);
        dialog->show();
        PaintWatch::untilPainted(dialog);
        state.SetIterationTime(secondsSince(start));
        closeAndDelete(dialog);
    }
}

/* Lives on a foreign thread: sends a bare signal to this one and takes the time when the echo is
 * back, or calls the plug-in's callback with a Set Up Call. */
class Pinger : public QObject {
    Q_OBJECT
public:
    Clock::time_point start;
    double seconds = 0;

signals:
    void ping();
    void echoTaken();

public slots:
    void sendPing()
    {
        start = Clock::now();
        emit ping();
    }
    void takeEcho()
    {
        seconds = secondsSince(start);
        emit echoTaken();
    }
    void sendCall()
    {
        MOVA_STKNotifyData data = {MOVA_STKTYPE_SETUP_CALL, 1, 0};
        start = Clock::now();
        STKLogic::OnSTKEventCB(0, &data);
    }
};

class Echo : public QObject {
    Q_OBJECT
signals:
    void echo();
};

/* From the callback to the answer of a command without a window, and a bare signal there and back,
 * by turns on the same pair of threads: how fast these wake up changes from one moment to the next.
 */
void setupCallAnswered(benchmark::State &state)
{
    toolkit();
    QThread thread;
    Pinger pinger;
    Echo echo;
    QEventLoop loop;
    Arrival arrival;
    QObject::connect(&pinger, SIGNAL(ping()), &echo, SIGNAL(echo()));
    QObject::connect(&echo, SIGNAL(echo()), &pinger, SLOT(takeEcho()));
    QObject::connect(&pinger, SIGNAL(echoTaken()), &loop, SLOT(quit()));
    QObject::connect(STKLogic::CreateInstance(), SIGNAL(STKSetupCall()), &arrival, SLOT(take()));
    pinger.moveToThread(&thread);
    thread.start();
    std::vector<double> calls, pings;
    for (auto _ : state) {
        QMetaObject::invokeMethod(&pinger, "sendPing", Qt::QueuedConnection);
        loop.exec();
        pings.push_back(pinger.seconds);
        QMetaObject::invokeMethod(&pinger, "sendCall", Qt::QueuedConnection);
        arrival.wait();
        calls.push_back(std::chrono::duration<double>(answeredAt - pinger.start).count());
        state.SetIterationTime(calls.back());
    }
    thread.quit();
    thread.wait();
    state.counters["ratio"] = median(calls) / median(pings);
}

/* Takes the time at which the first message box is painted, and closes its window. */
class BoxWatch : public QObject {
public:
    Clock::time_point start;
    double seconds = 0;
    QEventLoop loop;

    bool eventFilter(QObject *watched, QEvent *event) override
    {
        if (event->type() != QEvent::Paint || seconds > 0 || !watched->inherits("QMessageBox"))
            return false;
        seconds = secondsSince(start);
        const QPointer<QWidget> window = static_cast<QWidget *>(watched)->window();
        QTimer::singleShot(0, this, [this, window] {
            if (window)
                window->close();
            loop.quit();
        });
        return false;
    }
};

template <typename Send> void timeBox(benchmark::State &state, Send send)
{
    ForeignThread thread;
    BoxWatch watch;
    qApp->installEventFilter(&watch);
    for (auto _ : state) {
        watch.seconds = 0;
        thread.post([&] {
            watch.start = Clock::now();
            send();
        });
        watch.loop.exec();
        QCoreApplication::processEvents();
        state.SetIterationTime(watch.seconds);
    }
}

void displayTextPainted(benchmark::State &state)
{
    toolkit();
    timeBox(state, [] {
        MOVA_STKNotifyData data = {MOVA_STKTYPE_DISPLAY_TEXT, 1, 0};
        STKLogic::OnSTKEventCB(0, &data);
    });
}

class PlainBox : public QObject {
    Q_OBJECT
public slots:
    void show()
    {
        QMessageBox box(QMessageBox::NoIcon, "", "Your balance is 12.40",
                        QMessageBox::Ok | QMessageBox::Cancel);
        QApplication::beep();
        box.exec();
    }
};

void plainBoxPainted(benchmark::State &state)
{
    PlainSender sender;
    PlainBox box;
    QObject::connect(&sender, SIGNAL(menuChanged()), &box, SLOT(show()));
    timeBox(state, [&] { emit sender.menuChanged(); });
}

BENCHMARK(setupMenuFromForeignThread)->UseManualTime()->MinTime(0.1)->Repetitions(5);
BENCHMARK(drawMainMenu)->UseManualTime()->Repetitions(5);
BENCHMARK(drawPlainTable)->UseManualTime()->Repetitions(5);
BENCHMARK(showWindow)->UseManualTime()->Repetitions(5);
BENCHMARK(showPlainDialog)->UseManualTime()->Repetitions(5);
BENCHMARK(setupCallAnswered)->UseManualTime()->Repetitions(5);
BENCHMARK(displayTextPainted)->UseManualTime()->Repetitions(5);
BENCHMARK(plainBoxPainted)->UseManualTime()->Repetitions(5);

/* Prints what Google Benchmark prints and keeps the medians for the ratios. */
class Medians : public benchmark::ConsoleReporter {
public:
    void ReportRuns(const std::vector<Run> &runs) override
    {
        ConsoleReporter::ReportRuns(runs);
        for (const Run &run : runs) {
            if (run.aggregate_name != "median")
                continue;
            m_median[run.run_name.function_name] = run.GetAdjustedRealTime();
            const auto ratio = run.counters.find("ratio");
            if (ratio != run.counters.end())
                m_ratio[run.run_name.function_name] = ratio->second;
        }
    }

    void printRatio(const char *what, const char *ours, const char *plain, double bound) const
    {
        const auto our = m_median.find(ours), other = m_median.find(plain);
        if (our != m_median.end() && other != m_median.end()) // not filtered out
            print(what, our->second / other->second, bound);
    }

    /// Of a benchmark that does both by turns.
    void printRatio(const char *what, const char *both, double bound) const
    {
        const auto ratio = m_ratio.find(both);
        if (ratio != m_ratio.end())
            print(what, ratio->second, bound);
    }

private:
    static void print(const char *what, double ratio, double bound)
    {
        std::printf("%-66s %5.2f   (wanted: at most %.1f)\n", what, ratio, bound);
    }

    std::map<std::string, double> m_median, m_ratio;
};

} // namespace

int main(int argc, char **argv)
{
    benchmark::Initialize(&argc, argv);
    QApplication application(argc, argv);
    qInstallMessageHandler([](QtMsgType type, const QMessageLogContext &, const QString &message) {
        if (type == QtFatalMsg)
            std::fprintf(stderr, "%s\n", qPrintable(message));
    });
    Medians medians;
    benchmark::RunSpecifiedBenchmarks(&medians);
    std::printf("\n");
    medians.printRatio("Set Up Menu, 20 items, from the service's thread to the slot's end",
                       "setupMenuFromForeignThread", 2);
    medians.printRatio("drawing a main menu of 250 items", "drawMainMenu", "drawPlainTable", 1.5);
    medians.printRatio("ShowWindow to the first paint", "showWindow", "showPlainDialog", 2);
    medians.printRatio("Set Up Call, from the service's thread to the answer", "setupCallAnswered",
                       3);
    medians.printRatio("Display Text, from the service's thread to the first paint",
                       "displayTextPainted", "plainBoxPainted", 1.5);
    STKDialog::Destroy();
    return 0;
}

#include "PluginBench.moc"
