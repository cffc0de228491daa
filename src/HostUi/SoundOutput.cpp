#include "SoundOutput.h"

#include <cstring>

#include <QObject>

#include "WavFile.h"

// Qt 4's GUI library plays files and does not tell their end; later ones have a module for samples.
#if QT_VERSION < 0x050000
#include <QSound>
#include <QTimer>

namespace {

class SoundPlayer : public SoundOutput {
public:
    SoundPlayer(const QString &fileName, std::unique_ptr<WavFile> file, QObject *owner)
        : m_sound(fileName)
    {
        m_end.setSingleShot(true);
        QObject::connect(&m_end, SIGNAL(timeout()), owner, SLOT(update()));
        m_end.start(file->durationMs());
        m_sound.play();
    }
    ~SoundPlayer() override { m_sound.stop(); }

    bool hasEnded() const override { return !m_end.isActive(); }
    QString error() const override
    {
        return QSound::isAvailable() ? QString() : QString::fromLatin1("no audio device");
    }

private:
    QSound m_sound;
    QTimer m_end;
};

} // namespace
#else
#include <QIODevice>

#if QT_VERSION < 0x060000
#include <QAudioDeviceInfo>
#include <QAudioOutput>

namespace {

typedef QAudioDeviceInfo AudioDevice;
typedef QAudioOutput AudioSink;

AudioDevice defaultDevice()
{
    return QAudioDeviceInfo::defaultOutputDevice();
}

void setSigned16Bit(QAudioFormat *format)
{
    format->setCodec(QString::fromLatin1("audio/pcm"));
    format->setByteOrder(QAudioFormat::LittleEndian);
    format->setSampleType(QAudioFormat::SignedInt);
    format->setSampleSize(16);
}

} // namespace
#else
#include <QAudioDevice>
#include <QAudioSink>
#include <QMediaDevices>

namespace {

typedef QAudioDevice AudioDevice;
typedef QAudioSink AudioSink;

AudioDevice defaultDevice()
{
    return QMediaDevices::defaultAudioOutput();
}

void setSigned16Bit(QAudioFormat *format)
{
    format->setSampleFormat(QAudioFormat::Int16);
}

} // namespace
#endif

namespace {

// Long enough for a busy event loop.
const int bufferMs = 250;

/* The device pulls the samples from here, and then silence: a sound that is shorter than the
 * device's buffer would otherwise never start, and one that is longer would end with a click. */
class SoundPlayer : public SoundOutput, private QIODevice {
public:
    SoundPlayer(const QString &, std::unique_ptr<WavFile> file, QObject *owner)
        : m_file(std::move(file))
        , m_owner(owner)
    {
        const AudioDevice device = defaultDevice();
        QAudioFormat format;
        setSigned16Bit(&format);
        format.setChannelCount(m_file->channels());
        format.setSampleRate(m_file->sampleRate());
        if (device.isNull() || !device.isFormatSupported(format))
            return;
        m_output = std::make_unique<AudioSink>(device, format);
        m_output->setBufferSize(format.bytesForDuration(bufferMs * 1000));
        qRegisterMetaType<QAudio::State>("QAudio::State"); // Qt 6 cannot queue it before
        open(QIODevice::ReadOnly | QIODevice::Unbuffered);
        m_output->start(this);
        QObject::connect(m_output.get(), SIGNAL(stateChanged(QAudio::State)), owner, SLOT(update()),
                         Qt::QueuedConnection);
    }

    /* What the device may still hold of the samples is no more than its buffer. */
    bool hasEnded() const override
    {
        return m_pulled >= m_file->dataSize() + m_output->bufferSize();
    }
    QString error() const override
    {
        if (!m_output)
            return QString::fromLatin1("no audio device for channels: %1, Hz: %2")
                .arg(m_file->channels())
                .arg(m_file->sampleRate());
        if (m_output->state() != QAudio::StoppedState)
            return QString();
        return QString::fromLatin1("the audio device failed (error %1)").arg(m_output->error());
    }

private:
    bool isSequential() const override { return true; }
    qint64 readData(char *data, qint64 maxSize) override
    {
        const qint64 samples = m_file->read(data, maxSize);
        std::memset(data + samples, 0, size_t(maxSize - samples));
        m_pulled += maxSize;
        if (hasEnded())
            QMetaObject::invokeMethod(m_owner, "update", Qt::QueuedConnection);
        return maxSize;
    }
    qint64 writeData(const char *, qint64) override { return -1; }

    const std::unique_ptr<WavFile> m_file;
    QObject *const m_owner;
    qint64 m_pulled = 0;
    // Pulls from the members above, so it goes first.
    std::unique_ptr<AudioSink> m_output;
};

} // namespace
#endif

std::unique_ptr<SoundOutput> SoundOutput::start(const QString &fileName,
                                                std::unique_ptr<WavFile> file, QObject *owner,
                                                QString *error)
{
    std::unique_ptr<SoundOutput> output =
        std::make_unique<SoundPlayer>(fileName, std::move(file), owner);
    *error = output->error();
    if (!error->isEmpty())
        output.reset();
    return output;
}
