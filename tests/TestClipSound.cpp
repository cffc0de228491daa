// What a sound refuses, where there is no sound server.

#include <QElapsedTimer>
#include <QFile>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QtTest>

#include "platform/ClipSound.h"

namespace {

/* A file of the build's own, some bytes of it replaced. */
QByteArray tone(int at = 0, const QByteArray &bytes = {})
{
    QFile file(QStringLiteral(TONES "/tone_4"));
    file.open(QIODevice::ReadOnly);
    return file.readAll().replace(at, bytes.size(), bytes);
}

} // namespace

class TestClipSound : public QObject {
    Q_OBJECT

private slots:
    void initTestCase();
    void refuses_data();
    void refuses();

private:
    QTemporaryDir m_folder;
};

void TestClipSound::initTestCase()
{
    qputenv("PULSE_SERVER", "unix:" + QFile::encodeName(m_folder.filePath(QStringLiteral("none"))));
    qputenv("ALSA_CONFIG_PATH", "/dev/null");
}

void TestClipSound::refuses_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QString>("reason");
    const auto row = [](const char *name, const QByteArray &bytes, const char *reason) {
        QTest::newRow(name) << bytes << QString::fromLatin1(reason);
    };
    // Each of these gets past the file and fails for want of a device.
    row("no device", tone(), "no audio device for channels: 1, Hz: 48000");
    row("other chunks first",
        tone()
            .insert(36, QByteArray("LIST\3\0\0\0abc\0", 12))
            .insert(12, QByteArray("JUNK\0\0\0\0", 8)),
        "no audio device for channels: 1, Hz: 48000");
    row("half a frame at the end", tone(40, QByteArray("\3\0\0\0", 4)),
        "no audio device for channels: 1, Hz: 48000");

    row("empty", QByteArray(), "byte 0: RIFF and WAVE expected");
    row("text", "RIFF is what it says", "byte 0: RIFF and WAVE expected");
    row("only the name", tone().left(12),
        "byte 12: chunk \"fmt \" expected, end of the file found");
    row("format cut off", tone().left(30), "byte 12: a chunk of 16 bytes expected, 10 found");
    row("no samples", tone().left(36), "byte 36: chunk \"data\" expected, end of the file found");
    row("samples cut off", tone().left(1044),
        "byte 36: a chunk of 19200 bytes expected, 1000 found");
    row("endless samples", tone(40, "\xFF\xFF\xFF\xFF"),
        "byte 36: a chunk of 4294967295 bytes expected, 19200 found");
    row("zero samples", tone(40, QByteArray(4, '\0')),
        "byte 40: size of the samples: 2 to 4294967295 expected, 0 found");
    row("short format", tone(16, QByteArray("\2\0\0\0", 4)),
        "byte 16: size of the format: 16 to 4096 expected, 2 found");
    row("floating point", tone(20, "\3"), "byte 20: audio format (1: PCM): 1 expected, 3 found");
    row("no channel", tone(22, QByteArray(1, '\0')),
        "byte 22: number of channels: 1 to 2 expected, 0 found");
    row("six channels", tone(22, "\6"), "byte 22: number of channels: 1 to 2 expected, 6 found");
    row("no rate", tone(24, QByteArray(4, '\0')),
        "byte 24: sample rate: 8000 to 192000 expected, 0 found");
    row("high rate", tone(24, "\xFF\xFF\xFF\xFF"),
        "byte 24: sample rate: 8000 to 192000 expected, 4294967295 found");
    row("uneven frame", tone(32, "\3"), "byte 32: bytes in a frame: 2 expected, 3 found");
    row("8 bits", tone(34, "\10"), "byte 34: bits in a sample: 16 expected, 8 found");

    row("folder", "folder", "a regular file expected");
    row("nothing there", "none", "a regular file expected");
}

void TestClipSound::refuses()
{
    QFETCH(QByteArray, bytes);
    QFETCH(QString, reason);
    const QString name = m_folder.filePath(QStringLiteral("sound"));
    QFile file(name);
    if (bytes == "folder") {
        QVERIFY(QDir().mkpath(name));
    } else if (bytes != "none") {
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write(bytes);
        file.close();
    }

    ClipSound sound(name);
    QSignalSpy finished(&sound, SIGNAL(finished()));
    QTest::ignoreMessage(QtWarningMsg, qPrintable("Cannot play " + name + ": " + reason));
    QElapsedTimer clock;
    clock.start();
    QVERIFY(!sound.Play());
    QVERIFY2(clock.elapsed() < 2000, "the caller was kept waiting");
    QVERIFY(!sound.IsPlaying());
    sound.Stop();
    QCOMPARE(finished.count(), 0);
    QVERIFY(bytes == "folder" ? QDir().rmdir(name) : bytes == "none" || file.remove());
}

QTEST_GUILESS_MAIN(TestClipSound)
#include "TestClipSound.moc"
