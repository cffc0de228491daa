// What a sound refuses, where there is no sound server.

#include <QDeadlineTimer>
#include <QTemporaryDir>
#include <QtTest>

#include "platform/ClipSound.h"

class TestClipSound : public QObject {
    Q_OBJECT

private slots:
    void initTestCase()
    {
        qputenv("PULSE_SERVER", "unix:" + QFile::encodeName(m_folder.filePath("server")));
        qputenv("ALSA_CONFIG_PATH", "/dev/null");
    }

    void refuses()
    {
        // A file of the build's own, some bytes of it replaced.
        QFile original(TONES "/tone_4");
        QVERIFY(original.open(QIODevice::ReadOnly));
        const QByteArray tone = original.readAll();
        const auto with = [&](int at, const char *bytes, int count = 1) {
            return QByteArray(tone).replace(at, count, bytes, count);
        };
        const QByteArray others("JUNK\0\0\0\0LIST\3\0\0\0abc\0", 20);
        const QString noDevice = "no audio device for channels: 1, Hz: 8000";
        const std::pair<QByteArray, QString> rows[] = {
            {tone, noDevice},
            {QByteArray(tone).insert(12, others), noDevice},
            {"RIFF is what it says", "byte 0: RIFF and WAVE expected"},
            {tone.left(36), "byte 36: chunk \"data\" expected, end of the file found"},
            {tone.left(144), "byte 36: a chunk of 3200 bytes expected, 100 found"},
            {with(40, "\xFF\xFF\xFF\xFF", 4),
             "byte 36: a chunk of 4294967295 bytes expected, 3200 found"},
            {with(40, "\0\0\0\0", 4),
             "byte 40: size of the samples: 2 to 4294967295 expected, 0 found"},
            {with(16, "\2"), "byte 16: size of the format: 16 to 4096 expected, 2 found"},
            {with(20, "\3"), "byte 20: audio format (1: PCM): 1 expected, 3 found"},
            {with(22, "\0"), "byte 22: number of channels: 1 to 2 expected, 0 found"},
            {with(24, "\0\0\0\0", 4), "byte 24: sample rate: 8000 to 192000 expected, 0 found"},
        };
        for (const auto &[bytes, reason] : rows) {
            QFile file(m_folder.filePath("sound"));
            QVERIFY(file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size());
            file.close();
            expectRefused(file.fileName(), reason);
        }
        expectRefused(m_folder.path(), "a regular file expected");
        expectRefused(m_folder.filePath("none"), "a regular file expected");
    }

private:
    void expectRefused(const QString &file, const QString &reason)
    {
        ClipSound sound(file);
        QTest::ignoreMessage(QtWarningMsg, qPrintable("Cannot play " + file + ": " + reason));
        const QDeadlineTimer patience(2000);
        QVERIFY2(!sound.Play(), qPrintable(reason));
        QVERIFY2(!patience.hasExpired(), "the caller was kept waiting");
        QVERIFY(!sound.IsPlaying());
    }

    QTemporaryDir m_folder;
};

QTEST_GUILESS_MAIN(TestClipSound)
#include "TestClipSound.moc"
