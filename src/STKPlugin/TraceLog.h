#ifndef TRACELOG_H
#define TRACELOG_H

#include <chrono>
#include <cstring>

#include <QDateTime>
#include <QtDebug>

/* The running trace: one line per event on Qt's debug channel.
 *
 * The format stands at the place that writes the line, so that it can be searched for and is
 * checked by the compiler.  A macro fixes nothing but the order of the arguments, which its name
 * spells; the function is always the bare name of the one that writes.  An implementation file
 * defines STK_TRACE_FILE, its name in the trace, before it writes its first line. */

/* The time field of a line: the local time of day, hours to milliseconds, "hh:mm:ss:zzz".
 *
 * Asking for the local time costs more than all the rest of a line, so a thread asks once a second;
 * nothing but the milliseconds changes within one. */
class TraceTime {
public:
    explicit TraceTime(qint64 nMSecsSinceEpoch = Now())
    {
        static thread_local qint64 s_nSecond = -1;
        static thread_local char s_szSecond[] = "hh:mm:ss:";
        if (nMSecsSinceEpoch / 1000 != s_nSecond) {
            s_nSecond = nMSecsSinceEpoch / 1000;
            const QTime time = QDateTime::fromMSecsSinceEpoch(nMSecsSinceEpoch).time();
            std::memcpy(s_szSecond, time.toString("hh:mm:ss:").toLatin1().constData(),
                        sizeof s_szSecond);
        }
        std::memcpy(m_szText, s_szSecond, sizeof s_szSecond - 1);
        const int nMSec = static_cast<int>(nMSecsSinceEpoch % 1000);
        m_szText[9] = static_cast<char>('0' + nMSec / 100);
        m_szText[10] = static_cast<char>('0' + nMSec / 10 % 10);
        m_szText[11] = static_cast<char>('0' + nMSec % 10);
        m_szText[12] = 0;
    }

    const char *constData() const { return m_szText; }

private:
    static qint64 Now()
    {
        using namespace std::chrono;
        return duration_cast<milliseconds>(system_clock::now().time_since_epoch()).count();
    }

    char m_szText[sizeof "hh:mm:ss:zzz"];
};

#define TRACE_FILE_FUNC(format) qDebug(format, STK_TRACE_FILE, __func__)
#define TRACE_FILE_FUNC_LINE(format) qDebug(format, STK_TRACE_FILE, __func__, __LINE__)
#define TRACE_FILE_FUNC_TIME(format)                                                               \
    qDebug(format, STK_TRACE_FILE, __func__, TraceTime().constData())
#define TRACE_VALUE_FILE_FUNC_TIME(format, value)                                                  \
    qDebug(format, value, STK_TRACE_FILE, __func__, TraceTime().constData())
#define TRACE_TIME_FILE_FUNC(format)                                                               \
    qDebug(format, TraceTime().constData(), STK_TRACE_FILE, __func__)
#define TRACE_TIME_FILE_FUNC_VALUE(format, value)                                                  \
    qDebug(format, TraceTime().constData(), STK_TRACE_FILE, __func__, value)
#define TRACE_TIME_FILE_FUNC_LINE(format) TRACE_TIME_FILE_FUNC_VALUE(format, __LINE__)

/* The entry and exit lines that most functions write. */
#define TRACE_START() TRACE_FILE_FUNC_TIME("Start of %s: %s: %s: ")
#define TRACE_END() TRACE_FILE_FUNC_TIME("End of %s: %s: %s: ")

#endif
