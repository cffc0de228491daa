// The tones through a real sound server of the test's own, whose null sink is recorded.

#include <memory>

#include <QDir>
#include <QProcess>
#include <QTemporaryDir>
#include <QtTest>

#include "platform/ClipSound.h"

class SoundEndToEnd : public QObject {
    Q_OBJECT

    QTemporaryDir m_folder;
    QProcess m_server;
    QProcess m_silence;
    QProcess m_recorder;

private slots:
    void initTestCase()
    {
        const QString socket = m_folder.filePath("native");
        for (const char *variable : {"HOME", "XDG_RUNTIME_DIR", "PULSE_RUNTIME_PATH"})
            qputenv(variable, QFile::encodeName(m_folder.path()));
        qputenv("PULSE_SERVER", "unix:" + QFile::encodeName(socket));
        qputenv("ALSA_CONFIG_PATH", "/dev/null");
        // With the format of the files, so that the samples stay as they are.
        m_server.start("pulseaudio",
                       {"-n", "--daemonize=no", "--use-pid-file=no", "--exit-idle-time=-1",
                        "--disable-shm=yes", "-L", "module-null-sink rate=8000 channels=1", "-L",
                        "module-native-protocol-unix auth-anonymous=1 socket=" + socket});
        if (!m_server.waitForStarted() || !QTest::qWaitFor([&] { return QFile::exists(socket); }))
            QSKIP(qPrintable("No sound server runs here: " + m_server.errorString() +
                             QString::fromLocal8Bit(m_server.readAllStandardError())));
        const QStringList format = {"--raw", "--latency-msec=10", "--format=s16le", "--rate=8000",
                                    "--channels=1"};
        // Without a stream that is in a hurry the null sink works in steps of two seconds.
        m_silence.start("pacat", format + QStringList("/dev/zero"));
        m_recorder.start("parec", format + QStringList("--device=null.monitor"));
        QTRY_VERIFY(m_recorder.bytesAvailable() > 0);
    }

    void playsTones_data()
    {
        QTest::addColumn<QString>("file");
        const QStringList names = QDir(TONES).entryList({"tone_*"});
        QVERIFY(names.contains("tone_8"));
        for (const QString &name : names)
            QTest::newRow(qPrintable(name)) << TONES "/" + name;
    }

    void playsTones()
    {
        QFETCH(QString, file);
        QFile tone(file);
        QVERIFY(tone.open(QIODevice::ReadOnly));
        const bool toItsEnd = tone.size() < 8000 * 2; // about a second
        int finished = 0;
        bool playing = true;
        std::unique_ptr<ClipSound> sound = std::make_unique<ClipSound>(file);
        connect(sound.get(), &ClipSound::finished, this, [&] {
            ++finished;
            playing = sound->IsPlaying();
            sound.reset(); // as its owners do
        });
        QVERIFY(sound->Play());
        QVERIFY(sound->IsPlaying());
        // The monitor of a null sink may miss the first milliseconds.
        const QByteArray samples = tone.readAll().mid(44 + 400 * 2, 800 * 2);
        QByteArray recorded;
        QTRY_VERIFY((recorded += m_recorder.readAllStandardOutput()).contains(samples));
        if (toItsEnd) {
            QTRY_VERIFY(finished == 1 && !playing);
        } else {
            sound->Stop();
            QVERIFY(!sound->IsPlaying());
        }
        QVERIFY(QTest::qWaitFor([this] {
            const QByteArray bytes =
                m_recorder.bytesAvailable() < 800 ? "" : m_recorder.readAllStandardOutput();
            return !bytes.isEmpty() && bytes.count('\0') == bytes.size();
        }));
        QCOMPARE(finished, toItsEnd ? 1 : 0);
    }

    /* Runs last. */
    void survivesTheServer()
    {
        ClipSound sound(TONES "/tone_1");
        connect(&sound, &ClipSound::finished, this, [] { QFAIL("This is not the sound's end."); });
        QVERIFY(sound.Play());
        m_server.terminate();
        QTRY_VERIFY(!sound.IsPlaying());
        QVERIFY(!sound.Play());
    }

    void cleanupTestCase()
    {
        for (QProcess *program : {&m_recorder, &m_silence, &m_server}) {
            program->kill();
            program->waitForFinished();
        }
    }
};

QTEST_GUILESS_MAIN(SoundEndToEnd)
#include "SoundEndToEnd.moc"
