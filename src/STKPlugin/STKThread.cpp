#include "STKThread.h"

#include "STKLogic.h"
#include "TraceLog.h"

#define STK_TRACE_FILE "../../src/STKPlugin/STKThread"

namespace {
const unsigned long POLL_INTERVAL_MS = 100;
}

STKThread::STKThread()
    : m_bStop(false)
    , m_pStkLogic(STKLogic::CreateInstance())
    , m_iTimeOut(0)
    , m_bLeaving(false)
{
    TRACE_FILE_FUNC("%s: %s: called");
}

STKThread::~STKThread()
{
    TRACE_TIME_FILE_FUNC("%s: %s: %s: Called");
    if (m_pStkLogic) {
        STKLogic::DestroyInst();
        m_pStkLogic = nullptr;
    }
}

void STKThread::SetTimeOut(int iTimeOut)
{
    TRACE_TIME_FILE_FUNC_VALUE("%s: %s: %s: Called with TimeOut = %d", iTimeOut);
    // One that is not gone yet would not start again, and would forget this time-out.
    if (m_bLeaving.load(std::memory_order_relaxed)) {
        wait();
        m_bLeaving.store(false, std::memory_order_relaxed);
    }
    m_iTimeOut.store(iTimeOut, std::memory_order_relaxed);
    TRACE_TIME_FILE_FUNC("%s: %s: %s: Exited");
}

int STKThread::TimeStamp(const QTime &time)
{
    return time.toString(Qt::TextDate).remove(':').toInt();
}

void STKThread::run()
{
    TRACE_TIME_FILE_FUNC("%s: %s: %s: called");
    m_bStop.store(false, std::memory_order_relaxed);
    const int iStart = TimeStamp(QTime::currentTime());
    if (m_iTimeOut.load(std::memory_order_relaxed) < 1)
        return;
    if (!m_pStkLogic) {
        TRACE_TIME_FILE_FUNC("%s: %s: %s: Logic Instance is null");
        return;
    }
    // The time-out is read anew on every pass: a further user action replaces it while this runs.
    while (!m_bStop.load(std::memory_order_relaxed) && !m_pStkLogic->GetResponseVar() &&
           TimeStamp(QTime::currentTime()) - iStart < m_iTimeOut.load(std::memory_order_relaxed))
        msleep(POLL_INTERVAL_MS);
    m_bLeaving.store(true, std::memory_order_relaxed);
    emit ChangeCursor();
    m_iTimeOut.store(0, std::memory_order_relaxed);
}
