#include "platform/ClipSound.h"

#include <QtDebug>

class ClipSoundPrivate {
public:
    explicit ClipSoundPrivate(const QString &name)
        : fileName(name)
    {
    }

    const QString fileName;
};

ClipSound::ClipSound(const QString &fileName)
    : d(new ClipSoundPrivate(fileName))
{
}

ClipSound::~ClipSound()
{
    delete d;
}

bool ClipSound::Play()
{
    qWarning("ClipSound: cannot play %s: this host has no audio output", qPrintable(d->fileName));
    return false;
}

bool ClipSound::IsPlaying()
{
    return false;
}

void ClipSound::Stop() { }
