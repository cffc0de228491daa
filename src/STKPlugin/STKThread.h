#ifndef STKTHREAD_H
#define STKTHREAD_H

#include <atomic>

#include <QThread>
#include <QTime>

class STKLogic;

/* Polls for the card's answer after a user action, so that the GUI thread never waits for the card.
 * One object serves every wait. */
class STKThread : public QThread {
    Q_OBJECT

public:
    STKThread();
    ~STKThread();

    /* Bound of the next wait, or of the one under way, in the unit of TimeStamp. */
    void SetTimeOut(int iTimeOut);

    /* The digits of the time of day as one number: 12:34:56 is 123456.  A wait is measured on it,
     * so that a minute's end counts 40 more than its second and a wait of 20 is at most 20 seconds;
     * across midnight, where the number falls, it ends by an answer alone. */
    static int TimeStamp(const QTime &time);

    /* Set from the GUI thread to end the wait at its next poll. */
    std::atomic<bool> m_bStop;

signals:
    /* The wait is over: an answer came, the time ran out, or it was stopped. */
    void ChangeCursor();

protected:
    void run() override;

private:
    STKLogic *m_pStkLogic;
    std::atomic<int> m_iTimeOut;
    std::atomic<bool> m_bLeaving; /* the end of the wait is told, or about to be */
};

#endif
