#ifndef SOUNDOUTPUT_H
#define SOUNDOUTPUT_H

#include <memory>

#include <QString>

class QObject;
class WavFile;

/// One sound on its way to the default audio device; silent from its destruction on.
class SoundOutput {
public:
    virtual ~SoundOutput() = default;

    /// All that the file holds was heard.
    virtual bool hasEnded() const = 0;
    /// Why the device gave up; empty as long as it has not.
    virtual QString error() const = 0;

    /// Starts to play an open file.  The event loop calls the slot update() of the owner, which may
    /// delete the output there, when one of the above may have changed.  Null, with the reason in
    /// error, when there is no device for it.
    static std::unique_ptr<SoundOutput>
    start(const QString &fileName, std::unique_ptr<WavFile> file, QObject *owner, QString *error);
};

#endif
