#ifndef WALKTHROUGHPLAYER_H
#define WALKTHROUGHPLAYER_H

#include <QElapsedTimer>
#include <QObject>

#include "TerminalLog.h"
#include "Walkthrough.h"

class MainWindow;

/// Plays a walkthrough on the windows with real mouse and key events, step by step from the event
/// loop, so that it goes on inside the nested event loops of modal windows too.  GUI thread only.
class WalkthroughPlayer : public QObject {
    Q_OBJECT

public:
    /// Pictures go to the folder; an empty one means that none are taken.
    WalkthroughPlayer(const Walkthrough &walkthrough, MainWindow &window,
                      const QString &screenshots);

    /// What the terminal does, for the steps that expect it.
    TerminalLog &log() { return m_log; }
    /// Begins as soon as the event loop runs.  The application then quits by itself: with status 0
    /// after the last step, with status 1 and a line on standard error after a step that failed.
    void start();
    /// Whether the last step was played.  An application that ends before has failed the rest.
    bool isOver() const { return m_over; }
    /// The step that is under way, for a message: "FILE: step 3 (open)".
    QString place() const;

private:
    /// What came of one attempt at a step.
    struct Outcome {
        enum { Done, NotYet, Failed } kind;
        QString expected; ///< of a step that is not done
        QString seen;
    };
    static constexpr int Interval = 20; // ms between two attempts at a step
    static constexpr int NoAttempt = -1;
    using Play = Outcome (WalkthroughPlayer::*)(const Walkthrough::Step &);

    static Play playerOf(const QString &name);
    void playNext();
    void scheduleNext();
    void attempt(const Walkthrough::Step &step);
    void finish(int status);
    void fail(const Outcome &outcome);

    Outcome open(const Walkthrough::Step &step);
    Outcome expectMenu(const Walkthrough::Step &step);
    Outcome select(const Walkthrough::Step &step);
    Outcome back(const Walkthrough::Step &step);
    Outcome close(const Walkthrough::Step &step);
    Outcome key(const Walkthrough::Step &step);
    Outcome expectBusy(const Walkthrough::Step &step);
    Outcome expectClosed(const Walkthrough::Step &step);
    Outcome expectMessage(const Walkthrough::Step &step);
    Outcome expectCountdown(const Walkthrough::Step &step);
    Outcome press(const Walkthrough::Step &step);
    Outcome expectInput(const Walkthrough::Step &step);
    Outcome type(const Walkthrough::Step &step);
    Outcome erase(const Walkthrough::Step &step);
    Outcome closeBox(const Walkthrough::Step &step);
    Outcome expectPin(const Walkthrough::Step &step);
    Outcome confirmPin(const Walkthrough::Step &step);
    Outcome enterPin(const Walkthrough::Step &step);
    Outcome expectTone(const Walkthrough::Step &step);
    Outcome expectUrl(const Walkthrough::Step &step);
    Outcome expectNote(const Walkthrough::Step &step);
    Outcome answerUrl(const Walkthrough::Step &step);
    Outcome expectResponse(const Walkthrough::Step &step);
    Outcome modem(const Walkthrough::Step &step);
    Outcome timeOut(const Walkthrough::Step &step);
    Outcome endSession(const Walkthrough::Step &step);
    Outcome send(const Walkthrough::Step &step);
    Outcome language(const Walkthrough::Step &step);
    Outcome wait(const Walkthrough::Step &step);
    Outcome screenshot(const Walkthrough::Step &step);
    Outcome quit(const Walkthrough::Step &step);
    Outcome clickButton(const QString &objectName, const QString &words);

    const Walkthrough &m_walkthrough;
    MainWindow &m_window;
    const QString m_screenshots;
    TerminalLog m_log;
    QElapsedTimer m_sinceStep;
    size_t m_index = 0;
    int m_attempt = NoAttempt; // level of the event loop that the current attempt was made in
    bool m_over = false;
};

#endif
