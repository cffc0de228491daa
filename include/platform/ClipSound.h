#ifndef CLIPSOUND_H
#define CLIPSOUND_H

#include <QObject>
#include <QString>

#include "HostUiGlobal.h"

class ClipSoundPrivate;

/* Plays one sound file, once.  GUI thread only. */
class HOSTUI_API ClipSound : public QObject {
    Q_OBJECT

public:
    explicit ClipSound(QString fileName);
    ~ClipSound();

    /* False when the file is no playable sound or there is no audio device. */
    bool Play();
    /* True from a successful Play() until the sound ended or was stopped. */
    bool IsPlaying();
    /* Silent at once; finished() is not emitted. */
    void Stop();

signals:
    /* The file was played to its end. */
    void finished();

private:
    ClipSoundPrivate *d;
};

#endif
