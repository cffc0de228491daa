// What a sound refuses, where there is no sound server.

#include <QDeadlineTimer>
#include <QTemporaryDir>
#include <QtTest>

#include "platform/ClipSound.h"

class TestClipSound : public QObject {
    Q_OBJECT

private slots:
    void refuses_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<QByteArray>("bytes");
        QTest::addColumn<QString>("reason");
        const auto row = [](const char *title, const QByteArray &bytes, const char *reason) {
            QTest::newRow(title) << "sound" << bytes << QString(reason);
        };
        // A file of the build's own, some bytes of it replaced.
        QFile file(TONES "/tone_4");
        QVERIFY(file.open(QIODevice::ReadOnly));
        const QByteArray tone = file.readAll();
        const auto with = [&](int at, const char *bytes, int count = 1) {
            return QByteArray(tone).replace(at, count, bytes, count);
        };
        const QByteArray others("JUNK\0\0\0\0LIST\3\0\0\0abc\0", 20);
        const char noDevice[] = "no audio device for channels: 1, Hz: 48000";
        row("good", tone, noDevice);
        row("other chunks first", QByteArray(tone).insert(12, others), noDevice);
        row("text", "RIFF is what it says", "byte 0: RIFF and WAVE expected");
        row("no samples", tone.left(36), "byte 36: chunk \"data\" expected, end of the file found");
        row("cut off", tone.left(1044), "byte 36: a chunk of 19200 bytes expected, 1000 found");
        row("endless", with(40, "\xFF\xFF\xFF\xFF", 4),
            "byte 36: a chunk of 4294967295 bytes expected, 19200 found");
        row("zero samples", with(40, "\0\0\0\0", 4),
            "byte 40: size of the samples: 2 to 4294967295 expected, 0 found");
        row("short format", with(16, "\2"),
            "byte 16: size of the format: 16 to 4096 expected, 2 found");
        row("floats", with(20, "\3"), "byte 20: audio format (1: PCM): 1 expected, 3 found");
        row("no channel", with(22, "\0"), "byte 22: number of channels: 1 to 2 expected, 0 found");
        row("rate", with(24, "\0\0\0\0", 4),
            "byte 24: sample rate: 8000 to 192000 expected, 0 found");
        QTest::newRow("folder") << "." << QByteArray() << "a regular file expected";
        QTest::newRow("nothing") << "none" << QByteArray() << "a regular file expected";
    }

    void refuses()
    {
        QFETCH(QString, name);
        QFETCH(QByteArray, bytes);
        QFETCH(QString, reason);
        QTemporaryDir folder;
        qputenv("PULSE_SERVER", "unix:" + QFile::encodeName(folder.filePath("server")));
        qputenv("ALSA_CONFIG_PATH", "/dev/null");
        QFile file(folder.filePath(name));
        if (!bytes.isEmpty())
            QVERIFY(file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size());
        file.close();

        ClipSound sound(file.fileName());
        QTest::ignoreMessage(QtWarningMsg,
                             qPrintable("Cannot play " + file.fileName() + ": " + reason));
        const QDeadlineTimer patience(2000);
        QVERIFY(!sound.Play());
        QVERIFY2(!patience.hasExpired(), "the caller was kept waiting");
        QVERIFY(!sound.IsPlaying());
    }
};

QTEST_GUILESS_MAIN(TestClipSound)
#include "TestClipSound.moc"
