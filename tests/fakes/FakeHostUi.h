#ifndef FAKEHOSTUI_H
#define FAKEHOSTUI_H

#include <QMessageBox>
#include <QString>
#include <QStringList>

class ClipSound;

/* The services of the host UI library under the test's control; frames and message boxes are the
 * real ones. */
struct FakeHostUi {
    QString language; /* in front of every translated text */
    QStringList messages; /* title|text|button1|button2|button3|icon,modal,flags,centre|detail of
                             every box */
    QMessageBox::StandardButton messageAnswer =
        QMessageBox::Ok; /* of the next boxes, at once; 0: they stay up */
    QStringList openedUrls;
    QStringList soundsPlayed; /* the file of every Play() */
    bool soundPlays = true; /* what Play() returns */
    ClipSound *playing = nullptr; /* the sound that plays now, null for none */
    QString libraryPath;
    int beeps = 0;
    int threadWaitSeconds = -1; /* of the last WaitForThreadToStop, -1 before */

    void finishSound();
};

inline FakeHostUi fakeHostUi;

#endif
