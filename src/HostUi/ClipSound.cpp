#include "platform/ClipSound.h"

#include <memory>

#include <QtDebug>

#include "HostUiState.h"
#include "SoundOutput.h"
#include "WavFile.h"

class ClipSoundPrivate : public QObject {
    Q_OBJECT

public:
    explicit ClipSoundPrivate(const QString &fileName)
        : m_fileName(fileName)
    {
    }

    bool play();
    bool isPlaying() const { return m_output != nullptr; }
    void stop() { m_output.reset(); }

signals:
    void ended();

private slots:
    void update();

private:
    void warn(const QString &reason) const;

    const QString m_fileName;
    std::unique_ptr<SoundOutput> m_output;
};

bool ClipSoundPrivate::play()
{
    stop();
    if (HostUi::state().soundListener)
        HostUi::state().soundListener(m_fileName);
    std::unique_ptr<WavFile> file = std::make_unique<WavFile>(m_fileName);
    if (!file->open()) {
        warn(file->error());
        return false;
    }
    QString error;
    m_output = SoundOutput::start(m_fileName, std::move(file), this, &error);
    if (!m_output)
        warn(error);
    return m_output != nullptr;
}

/* May still be called for an output that was stopped since. */
void ClipSoundPrivate::update()
{
    if (!m_output)
        return;
    const QString error = m_output->error();
    if (!error.isEmpty()) {
        warn(error);
        stop();
        return;
    }
    if (!m_output->hasEnded())
        return;
    stop();
    // Whoever hears this may delete the sound.
    emit ended();
}

void ClipSoundPrivate::warn(const QString &reason) const
{
    qWarning("Cannot play %s: %s", qPrintable(m_fileName), qPrintable(reason));
}

ClipSound::ClipSound(QString fileName)
    : d(new ClipSoundPrivate(fileName))
{
    connect(d, SIGNAL(ended()), this, SIGNAL(finished()));
}

ClipSound::~ClipSound()
{
    delete d;
}

bool ClipSound::Play()
{
    return d->play();
}

bool ClipSound::IsPlaying()
{
    return d->isPlaying();
}

void ClipSound::Stop()
{
    d->stop();
}

#include "ClipSound.moc"
