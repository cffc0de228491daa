#include "PluginTest.h"

#include <QSignalSpy>

#include "STKThread.h"
#include "TraceLog.h"

#define FILE_NAME "../../src/STKPlugin/STKThread"

/* A thread whose end the thread sanitizer sees: QThread::wait orders it inside Qt, out of its
 * sight. */
struct JoinedThread : STKThread {
    void run() override
    {
        STKThread::run();
        m_ended.store(true, std::memory_order_release);
    }
    bool join() { return wait(5000) && m_ended.load(std::memory_order_acquire); }

    std::atomic<bool> m_ended{false};
};

class TestSTKThread : public PluginTest {
    Q_OBJECT

private slots:
    void timeIsMeasuredOnTheDigitsOfTheClock()
    {
        const struct {
            const char *name;
            QTime start, now;
            int timeOut;
            bool over;
        } rows[] = {
            {"within a minute, not yet", QTime(12, 34, 10), QTime(12, 34, 29, 999), 20, false},
            {"within a minute, over", QTime(12, 34, 10), QTime(12, 34, 30), 20, true},
            {"a minute's end counts 41", QTime(12, 0, 59), QTime(12, 1, 0), 41, true},
            {"and no more", QTime(12, 0, 59), QTime(12, 1, 0), 42, false},
            {"an hour's end counts 4041", QTime(12, 59, 59), QTime(13, 0, 0), 4041, true},
            {"midnight goes back", QTime(23, 59, 59), QTime(0, 0, 30), 20, false},
            {"leading zeros", QTime(0, 0, 1), QTime(0, 0, 21), 20, true},
        };
        for (const auto &row : rows) {
            const int passed = STKThread::TimeStamp(row.now) - STKThread::TimeStamp(row.start);
            QVERIFY2((passed >= row.timeOut) == row.over, row.name);
        }
    }

    void theTraceTellsTheTime()
    {
        const QTime before = QTime::currentTime();
        const QTime now = QTime::fromString(TraceTime().constData(), "hh:mm:ss:zzz");
        QVERIFY2(now.isValid(), TraceTime().constData());
        QVERIFY((before.msecsTo(now) + 86400000) % 86400000 < 5000);
    }

    void aThreadTracesItsLife()
    {
        auto *thread = new STKThread;
        thread->SetTimeOut(20);
        delete thread;
        QCOMPARE(takeTrace().filter(FILE_NAME),
                 QStringList({FILE_NAME ": STKThread: called",
                              "TIME: " FILE_NAME ": SetTimeOut: Called with TimeOut = 20",
                              "TIME: " FILE_NAME ": SetTimeOut: Exited",
                              "TIME: " FILE_NAME ": ~STKThread: Called"}));
        // It took the shared logic along.
        QVERIFY(!STKLogic::CreateInstance()->GetResponseVar());
        STKLogic::DestroyInst();
    }

    void aWaitEnds_data() { addRows("by", {"no time-out", "answer", "stop", "shorter time-out"}); }
    void aWaitEnds()
    {
        QFETCH(QString, by);
        JoinedThread thread;
        QSignalSpy ended(&thread, SIGNAL(ChangeCursor()));
        // No minute's end may cut the wait short: a day's digits are less than this.
        thread.SetTimeOut(by == "no time-out" ? 0 : 1000000);
        thread.start();
        QStringList trace;
        QTRY_VERIFY((trace += takeTrace()).contains("TIME: " FILE_NAME ": run: called"));
        if (by == "no time-out") {
            QVERIFY(thread.join());
            deliver();
            QCOMPARE(ended.count(), 0);
            return;
        }
        QTRY_VERIFY((trace += takeTrace()).join(" ").contains("GetResponseVar")); // it polls
        QVERIFY(thread.isRunning());
        QElapsedTimer elapsed;
        elapsed.start();
        if (by == "answer")
            STKLogic::CreateInstance()->SetResponseVar(true);
        else if (by == "stop")
            thread.m_bStop = true;
        else
            thread.SetTimeOut(-1000000);
        QVERIFY(thread.join());
        QVERIFY2(elapsed.elapsed() < 1000, "the end is seen at the next poll");
        QTRY_COMPARE(ended.count(), 1);
    }
};

QTEST_MAIN(TestSTKThread)
#include "TestSTKThread.moc"
