#ifndef FAKEHOSTUI_H
#define FAKEHOSTUI_H

#include <QString>
#include <QStringList>

class ClipSound;

/* The services of the host UI library under the test's control; frames and message boxes are the
 * real ones. */
struct FakeHostUi
{
    static FakeHostUi &get();
    void reset();

    QString language;                 /* in front of every translated text, for the test to change */
    QStringList messages;             /* title|text|button1|button2|button3 of every message box */
    int messageAnswer;                /* what the next boxes return at once; 0: they stay up */
    QStringList openedUrls;
    QStringList soundsPlayed;         /* the file of every Play() */
    bool soundPlays;                  /* what Play() returns */
    ClipSound *playing;               /* the sound that plays now, null for none */
    QString libraryPath;
    int threadWaitSeconds;            /* of the last WaitForThreadToStop, -1 before */

    void finishSound();
};

#endif
