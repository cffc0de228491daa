// The tones through a real sound server of the test's own, whose sink is a null sink that is
// recorded.

#include <memory>

#include <QDir>
#include <QProcess>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QtTest>

#include "platform/ClipSound.h"

namespace {

/* A program that ends with the test. */
class Program : public QProcess {
public:
    ~Program() override { end(); }
    void end()
    {
        terminate();
        if (state() != NotRunning && !waitForFinished(5000))
            kill();
        waitForFinished();
    }
};

bool isSilent(const QByteArray &samples)
{
    return samples.count('\0') == samples.size();
}

} // namespace

class SoundEndToEnd : public QObject {
    Q_OBJECT

private slots:
    void initTestCase();
    void playsTones_data();
    void playsTones();
    void survivesTheServer();

private:
    int events(const char *kind);
    bool hears(const QByteArray &samples);

    QTemporaryDir m_folder;
    Program m_server;
    Program m_silence;
    Program m_subscriber;
    Program m_recorder;
    QByteArray m_events;
    QByteArray m_recorded;
};

void SoundEndToEnd::initTestCase()
{
    const QString socket = m_folder.filePath("native");
    for (const char *variable : {"HOME", "XDG_RUNTIME_DIR", "PULSE_RUNTIME_PATH"})
        qputenv(variable, QFile::encodeName(m_folder.path()));
    qputenv("PULSE_SERVER", "unix:" + QFile::encodeName(socket));
    qputenv("ALSA_CONFIG_PATH", "/dev/null");

    // With the format of the files, so that the samples stay as they are.
    m_server.start("pulseaudio",
                   {"-n", "--daemonize=no", "--use-pid-file=no", "--exit-idle-time=-1",
                    "--disable-shm=yes", "-L", "module-null-sink rate=48000 channels=1", "-L",
                    "module-native-protocol-unix auth-anonymous=1 socket=" + socket});
    if (!m_server.waitForStarted() || !QTest::qWaitFor([&] { return QFile::exists(socket); }))
        QSKIP(qPrintable("No sound server runs here: " + m_server.errorString() +
                         QString::fromLocal8Bit(m_server.readAllStandardError())));

    // Without a stream that wants it quick the null sink works in steps of two seconds.
    const QStringList format = {"--raw", "--latency-msec=10", "--format=s16le", "--rate=48000",
                                "--channels=1"};
    m_silence.start("pacat", format + QStringList("/dev/zero"));
    m_recorder.start("parec", format + QStringList("--device=null.monitor"));
    QTRY_VERIFY(m_recorder.bytesAvailable() > 0);
    m_subscriber.start("pactl", {"subscribe"});
    // Every call of pactl is an event; the first to be told shows that the subscription stands.
    QTRY_VERIFY(QProcess::execute("pactl", {"set-default-sink", "null"}) == 0 &&
                m_subscriber.bytesAvailable() > 0);
}

/* How many streams of sound became "new" or were "remove"d since the last call of a test. */
int SoundEndToEnd::events(const char *kind)
{
    m_events += m_subscriber.readAllStandardOutput();
    return m_events.count(QByteArray("'") + kind + "' on sink-input");
}

bool SoundEndToEnd::hears(const QByteArray &samples)
{
    m_recorded += m_recorder.readAllStandardOutput();
    return m_recorded.contains(samples);
}

void SoundEndToEnd::playsTones_data()
{
    QTest::addColumn<QString>("file");
    const QStringList names = QDir(TONES).entryList({"tone_*"});
    QVERIFY(names.contains("tone_8"));
    for (const QString &name : names)
        QTest::newRow(qPrintable(name)) << TONES "/" + name;
}

void SoundEndToEnd::playsTones()
{
    QFETCH(QString, file);
    QFile tone(file);
    QVERIFY(tone.open(QIODevice::ReadOnly));
    const bool toItsEnd = tone.size() < 48000 * 2;
    // The monitor of a null sink may miss the first milliseconds.
    const QByteArray excerpt = tone.readAll().mid(44 + 2400 * 2, 4800 * 2);
    m_events.clear();
    m_recorded.clear();

    std::unique_ptr<ClipSound> sound = std::make_unique<ClipSound>(file);
    int finished = 0;
    bool playing = true;
    connect(sound.get(), &ClipSound::finished, this, [&] {
        ++finished;
        playing = sound->IsPlaying();
        sound.reset(); // as its owners do
    });
    QVERIFY(sound->Play());
    QVERIFY(sound->IsPlaying());
    QTRY_COMPARE(events("new"), 1);
    QTRY_VERIFY(hears(excerpt));
    if (toItsEnd) {
        QTRY_VERIFY(finished == 1 && !playing);
    } else {
        QVERIFY(sound->IsPlaying());
        sound->Stop();
        QVERIFY(!sound->IsPlaying());
    }
    QTRY_COMPARE(events("remove"), 1);
    // Each piece is looked at once, so this is no QTRY_VERIFY.
    QVERIFY(QTest::qWaitFor([this] {
        return m_recorder.bytesAvailable() > 4800 && isSilent(m_recorder.readAllStandardOutput());
    }));
    QCOMPARE(finished, toItsEnd ? 1 : 0);
    QCOMPARE(events("new"), 1);
}

/* Runs last. */
void SoundEndToEnd::survivesTheServer()
{
    ClipSound sound(TONES "/tone_1");
    QSignalSpy finished(&sound, SIGNAL(finished()));
    QVERIFY(sound.Play());
    QTRY_VERIFY(events("new") > 0);
    m_server.end();
    QTRY_VERIFY(!sound.IsPlaying());
    QTest::ignoreMessage(QtWarningMsg,
                         QRegularExpression("^Cannot play .*/tone_1: .*audio device"));
    QVERIFY(!sound.Play());
    QVERIFY(!sound.IsPlaying());
    QCOMPARE(finished.count(), 0);
}

QTEST_GUILESS_MAIN(SoundEndToEnd)
#include "SoundEndToEnd.moc"
