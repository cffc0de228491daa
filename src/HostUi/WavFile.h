#ifndef WAVFILE_H
#define WAVFILE_H

#include <QFile>
#include <QString>

/// A sound file that is read while it plays: RIFF WAVE with PCM samples of 16 bits, one or two
/// channels, 8000 to 192000 frames a second.  Its name does not matter.
class WavFile {
public:
    explicit WavFile(const QString &fileName);

    /// False when the file is none such, or is cut off; error() then says where and why.
    bool open();
    QString error() const { return m_error; }

    int channels() const { return m_channels; }
    /// Frames a second.
    int sampleRate() const { return m_sampleRate; }
    /// Bytes of samples, whole frames; more than 0.
    qint64 dataSize() const { return m_dataSize; }
    int durationMs() const;

    /// The next samples, little-endian, channels interleaved; the number of bytes, 0 at the end.
    qint64 read(char *data, qint64 maxSize);

private:
    bool readFormat();
    bool readDataHeader();
    bool findChunk(const char *id, quint32 *size);
    bool check(qint64 offset, const char *field, quint32 value, quint32 least, quint32 most);
    bool fail(const QString &error);

    QFile m_file;
    QString m_error;
    int m_channels = 0;
    int m_sampleRate = 0;
    qint64 m_dataSize = 0;
    qint64 m_bytesLeft = 0;
};

#endif
