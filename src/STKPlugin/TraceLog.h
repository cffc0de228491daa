#ifndef TRACELOG_H
#define TRACELOG_H

#include <atomic>

#include <QDateTime>
#include <QtDebug>

/* The running trace: one line per event on Qt's debug channel.
 *
 * The format stands at the place that writes the line, so that it can be searched for and is
 * checked by the compiler.  A macro fixes nothing but the order of the arguments, which its name
 * spells; the function is always the bare name of the one that writes.  An implementation file
 * defines STK_TRACE_FILE, its name in the trace, before it writes its first line. */

/* The time field of a line: the local time of day, its digits ASCII in every locale.  How far it is
 * from the system's clock is looked up once a minute: that looks at the time zone's file, and takes
 * many times as long as all the rest of a line. */
inline QByteArray TraceTime()
{
    const qint64 MINUTE_MS = 60 * 1000, DAY_MS = 24 * 60 * MINUTE_MS;
    static std::atomic<int> nMinute(-1), nOffset(0); /* whichever thread has looked last */
    const qint64 nNow = QDateTime::currentMSecsSinceEpoch();
    const int nThisMinute = static_cast<int>(nNow / MINUTE_MS);
    if (nMinute.load(std::memory_order_acquire) != nThisMinute) {
        const qint64 nLocal = QTime(0, 0).msecsTo(QDateTime::fromMSecsSinceEpoch(nNow).time());
        nOffset.store(static_cast<int>(nLocal + DAY_MS - nNow % DAY_MS), std::memory_order_relaxed);
        nMinute.store(nThisMinute, std::memory_order_release);
    }
    const int nTime = static_cast<int>((nNow + nOffset.load(std::memory_order_relaxed)) % DAY_MS);
    char szTime[32];
    qsnprintf(szTime, sizeof szTime, "%02d:%02d:%02d:%03d", nTime / (60 * 60 * 1000),
              nTime / (60 * 1000) % 60, nTime / 1000 % 60, nTime % 1000);
    return szTime;
}

/* A text argument of a line, in the encoding in which qDebug takes it. */
inline QByteArray TraceText(const QString &strText)
{
#if QT_VERSION < 0x050000
    return strText.toLocal8Bit();
#else
    return strText.toUtf8();
#endif
}

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

/* Conditions of an early return: whether a check fails, and then its line is written. */
#define TRACE_IS_NULL(pointer)                                                                     \
    (!(pointer) && (TRACE_TIME_FILE_FUNC_LINE("Arg is NULL: %s: %s: %s %d"), true))
#define TRACE_FAILS(check, format) (!(check) && (TRACE_FILE_FUNC_TIME(format), true))

#endif
