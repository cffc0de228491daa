#include "WavFile.h"

#include <QFileInfo>
#include <QtEndian>

namespace {

const quint32 bytesPerSample = 2;

template <typename Number> Number littleEndian(const QByteArray &bytes, int offset)
{
    return qFromLittleEndian<Number>(reinterpret_cast<const uchar *>(bytes.constData()) + offset);
}

} // namespace

WavFile::WavFile(const QString &fileName)
    : m_file(fileName)
{
}

int WavFile::durationMs() const
{
    return int(m_dataSize * 1000 / (qint64(m_sampleRate) * m_channels * bytesPerSample));
}

bool WavFile::open()
{
    // Opening a pipe would wait for its writer.
    if (!QFileInfo(m_file).isFile())
        return fail(QString::fromLatin1("a regular file expected"));
    if (!m_file.open(QIODevice::ReadOnly))
        return fail(m_file.errorString());
    const QByteArray riff = m_file.read(12);
    if (!riff.startsWith("RIFF") || riff.mid(8) != "WAVE")
        return fail(QString::fromLatin1("byte 0: RIFF and WAVE expected"));
    return readFormat() && readDataHeader();
}

qint64 WavFile::read(char *data, qint64 maxSize)
{
    const qint64 got = qMax(m_file.read(data, qMin(maxSize, m_bytesLeft)), qint64(0));
    m_bytesLeft -= got;
    return got;
}

bool WavFile::readFormat()
{
    quint32 size = 0;
    if (!findChunk("fmt ", &size))
        return false;
    const qint64 start = m_file.pos();
    if (!check(start - 4, "size of the format", size, 16, 4096))
        return false;
    const QByteArray format = m_file.read(size);
    if (format.size() < 16)
        return fail(m_file.errorString());
    m_channels = littleEndian<quint16>(format, 2);
    const quint32 sampleRate = littleEndian<quint32>(format, 4);
    m_sampleRate = int(sampleRate);
    const quint32 frame = quint32(m_channels) * bytesPerSample;
    return check(start, "audio format (1: PCM)", littleEndian<quint16>(format, 0), 1, 1) &&
        check(start + 2, "number of channels", quint32(m_channels), 1, 2) &&
        check(start + 4, "sample rate", sampleRate, 8000, 192000) &&
        check(start + 12, "bytes in a frame", littleEndian<quint16>(format, 12), frame, frame) &&
        check(start + 14, "bits in a sample", littleEndian<quint16>(format, 14), 16, 16);
}

bool WavFile::readDataHeader()
{
    quint32 size = 0;
    if (!findChunk("data", &size))
        return false;
    const quint32 frame = quint32(m_channels) * bytesPerSample;
    if (!check(m_file.pos() - 4, "size of the samples", size, frame, 0xFFFFFFFFu))
        return false;
    m_dataSize = size / frame * frame;
    m_bytesLeft = m_dataSize;
    return true;
}

/* Leaves the file at the chunk's first byte.  Chunks of other kinds may stand before it. */
bool WavFile::findChunk(const char *id, quint32 *size)
{
    forever
    {
        const qint64 start = m_file.pos();
        const QByteArray header = m_file.read(8);
        if (header.size() < 8)
            return fail(QString::fromLatin1("byte %1: chunk \"%2\" expected, end of the file found")
                            .arg(start)
                            .arg(QLatin1String(id)));
        *size = littleEndian<quint32>(header, 4);
        const qint64 left = m_file.size() - m_file.pos();
        if (*size > left)
            return fail(QString::fromLatin1("byte %1: a chunk of %2 bytes expected, %3 found")
                            .arg(start)
                            .arg(*size)
                            .arg(left));
        if (header.startsWith(id))
            return true;
        // A chunk of odd size is followed by one byte of padding.
        m_file.seek(m_file.pos() + *size + *size % 2);
    }
}

bool WavFile::check(qint64 offset, const char *field, quint32 value, quint32 least, quint32 most)
{
    if (value >= least && value <= most)
        return true;
    const QString expected = least == most ? QString::number(least)
                                           : QString::fromLatin1("%1 to %2").arg(least).arg(most);
    return fail(QString::fromLatin1("byte %1: %2: %3 expected, %4 found")
                    .arg(offset)
                    .arg(QLatin1String(field))
                    .arg(expected)
                    .arg(value));
}

bool WavFile::fail(const QString &error)
{
    m_error = error;
    return false;
}
