// The real host with the real plug-in and libraries, as a person starts it.
#include <QDir>
#include <QFile>
#include <QImage>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>

namespace {

const QString Source = STK_SOURCE_DIR;

struct Run {
    int status;
    QStringList errors; // lines of standard error
};

QByteArray read(const QString &path)
{
    QFile file(path);
    file.open(QIODevice::ReadOnly);
    return file.readAll();
}

} // namespace

class EndToEnd : public QObject {
    Q_OBJECT

private slots:
    void complainsInOneLine_data()
    {
        QTest::addColumn<QStringList>("arguments");
        QTest::addColumn<QString>("error"); // a regular expression for the one line
        QTest::addColumn<int>("status");
        const auto row = [this](const char *line, const QString &error, int status = 2) {
            QStringList arguments = QString(line).split(' ', Qt::SkipEmptyParts);
            arguments.replaceInStrings("DIR", m_folder.path());
            QTest::newRow(line) << arguments << error << status;
        };
        write("bad.json", R"([{"open":1}])");
        write("broken.json", R"({"menu": 5})");
        write("card.json", R"({"menu": {"title": "T", "items": [{"text": "a"}]}})");
        write("quit.json", R"([{"wait":50},{"quit":true}])");
        write("notes.json",
              R"-([{"language": "en"}, {"expectNote": "no smart-card daemon is running (pcscd)"},
            {"language": "de"}, {"expectNote": "Es läuft kein Smartcard-Dienst (pcscd)"}])-");
        write("absent.json", R"([{"expectNote": "/absent: there is no such device"}])");
        row("--cart x", "Unknown option 'cart'\\.");
        row("--card", "Missing value after '--card'\\.");
        row("--card=", "option --card needs a CARD");
        row("--card pcsc:", "option --card pcsc: needs the start of a reader's name");
        row("--card at:", "option --card at: needs a device, as in at:/dev/ttyUSB2");
        row("--version demo.json", "unexpected argument \"demo.json\"");
        row("", "there is no display, and so nothing to do: expected --walkthrough .*");
        row("--card pcsc", "there is no display, and so nothing to do: expected .*");
        row("--card mbim:", "there is no display, and so nothing to do: expected .*");
        row("--card at:/absent --walkthrough DIR/absent.json", "/absent: there is no such device",
            0);
        row("--language tlh", "unknown language \"tlh\": expected one of en, .*");
        row("--card /absent.json", "/absent.json: no such card scenario");
        row("--walkthrough /absent", "/absent: expected a walkthrough, found no readable file: .*");
        row("--walkthrough DIR/bad.json", ".*: step 1: \"open\": expected true, found 1");
        row("--card pcsc --walkthrough DIR/notes.json", "no smart-card daemon is .*", 0);
        row("--card DIR/broken.json --walkthrough DIR/quit.json", "/.*/broken.json: .*");
        row("--card DIR/broken.json", "/.*/broken.json: .*");
        row("--screenshots /dev/null/x", "/dev/null/x: cannot make this folder for the pictures");
        const QString noFile = ": No such file or directory", full = ": No space left on device";
        row("--apdu-log /dev", "/dev: cannot write the capture: Is a directory");
        row("--apdu-log /absent/x", "/absent/x: cannot write the capture" + noFile);
        row("--trace /absent/x", "/absent/x: cannot write the trace" + noFile);
        row("--transcript /absent/x", "/absent/x: cannot write the transcript" + noFile);
        row("--card DIR/card.json --walkthrough DIR/quit.json --trace /dev/full",
            "/dev/full: cannot write the trace" + full, 0);
        row("--card DIR/card.json --walkthrough DIR/quit.json --transcript /dev/full",
            "/dev/full: cannot write the transcript" + full, 0);

        write("text/STKPlugin/libSTKPlugin.so", QByteArray("no library\n").repeated(1000));
        const QString cannot = "cannot load the SIM toolkit plug-in .*/STKPlugin/libSTKPlugin.so: ";
        const QString otherQt = cannot + "it was built with Qt %1, this application runs with .*";
        row("--plugins /absent", cannot + "no such file");
        row("--plugins DIR/text", cannot + ".*(invalid ELF header|not a valid).*");
        row("--plugins " STK_TEST_PLUGINS "/NewerQt",
            otherQt.arg(QT_STRINGIFY(QT_VERSION_MAJOR) "\\.99\\.0"));
        row("--plugins " STK_TEST_PLUGINS "/OlderQt", otherQt.arg("4\\.8\\.7"));
        row("--plugins " STK_TEST_PLUGINS "/NoVerification",
            cannot + "it has no verification data of a plug-in");
        row("--plugins " STK_TEST_PLUGINS "/NoInterfaces",
            cannot + "it is no user-interface plug-in of this application");
    }

    void complainsInOneLine()
    {
        QFETCH(QStringList, arguments);
        QFETCH(QString, error);
        const Run result = run(arguments);
        QTEST(result.status, "status");
        const QRegularExpression whole("^ConnectionManager: " + error + '$'); // no line break fits
        QVERIFY2(whole.match(result.errors.join('\n')).hasMatch(),
                 qPrintable(result.errors.join(" | ")));
    }

    void needsDisplay()
    {
        const Run result = run({}, "xcb");
        QCOMPARE(result.status, 2);
        QCOMPARE(result.errors,
                 QStringList("ConnectionManager: no display: could not connect to display :4711"));
        QCOMPARE(run({"--help"}, "xcb").status, 0);
    }

    void plays_data()
    {
        QTest::addColumn<QString>("errors");
        QTest::newRow("by-itself") << "";
        QTest::newRow("demo") << "";
        QTest::newRow("every-command")
            << "OpenUrl: refused \"tel:+800100200\": only http and https are opened";
    }

    void plays()
    {
        const QString scenario = Source + "/cards/" + QTest::currentDataTag();
        const QString pictures = m_folder.filePath("new/") + QTest::currentDataTag();
        const QString transcript = m_folder.filePath("transcript"),
                      trace = m_folder.filePath("trace");
        QStringList arguments{"--card",        scenario + ".json",
                              "--walkthrough", scenario + ".walkthrough.json",
                              "--screenshots", pictures,
                              "--transcript",  transcript,
                              "--trace",       trace,
                              "--language",    "en"};
        const Run result = run(arguments);
        QVERIFY2(result.status == 0, qPrintable(result.errors.join(" | ")));
        // Where there is no audio device, tones are not heard; that is no fault.
        static const QRegularExpression sound("^(Cannot play |PulseAudioService: |ALSA lib )");
        QStringList seen;
        for (const QString &line : result.errors)
            seen << (line.contains(sound) ? QStringList() : QStringList(line));
        QTEST(seen.join('\n'), "errors");

        const QStringList names = QDir(pictures).entryList({"*.png"});
        QCOMPARE(names.size(), read(scenario + ".walkthrough.json").count("{\"screenshot\":"));
        for (const QString &picture : names)
            QVERIFY2(QImage(pictures + '/' + picture).width() >= 700, qPrintable(picture));
        const QList<QByteArray> lines = read(transcript).trimmed().split('\n');
        QVERIFY(lines.size() > 10);
        for (const QByteArray &line : lines)
            QVERIFY2(!QJsonDocument::fromJson(line).object().isEmpty(), line);
        QVERIFY(read(trace).contains("STKPlugin: UnSDKRegisterEvent exit\nStart of "
                                     "../../src/STKPlugin/STKPlugin: OnDestroy: "));
    }

    void endsWalkthrough_data();
    void endsWalkthrough();

private:
    Run run(const QStringList &arguments, const QString &platform = "offscreen")
    {
        QProcess process;
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert("QT_QPA_PLATFORM", platform);
        environment.insert("DISPLAY", ":4711");
        environment.insert("XDG_RUNTIME_DIR", m_folder.path());
        environment.insert("PCSCLITE_CSOCK_NAME", m_folder.filePath("no-daemon"));
        // The host unloads the plug-in, so that a leak checker could no longer name what the
        // plug-in keeps on purpose; the plug-in's own tests check for leaks.
        environment.insert("ASAN_OPTIONS", environment.value("ASAN_OPTIONS") + ":detect_leaks=0");
        process.setProcessEnvironment(environment);
        process.start(STK_BIN_DIR "/ConnectionManager", arguments);
        if (!process.waitForFinished(200000) || process.exitStatus() != QProcess::NormalExit)
            return {-1, {process.errorString(), process.readAllStandardError()}};
        const QString errors = QString::fromUtf8(process.readAllStandardError());
        return {process.exitCode(), errors.split('\n', Qt::SkipEmptyParts)};
    }

    QString write(const QString &name, const QByteArray &text)
    {
        const QString path = m_folder.filePath(name);
        QDir().mkpath(QFileInfo(path).path());
        QFile file(path);
        if (file.open(QIODevice::WriteOnly))
            file.write(text);
        return path;
    }

    QTemporaryDir m_folder;
};

void EndToEnd::endsWalkthrough_data()
{
    QTest::addColumn<QString>("steps");
    QTest::addColumn<QString>("error"); // of the last step; empty when all of them succeed
    const auto row = [](const QString &steps, const char *step, const char *value,
                        const QString &error) {
        QTest::newRow(step + QByteArray(value))
            << QString("%1{\"%2\":%3,\"within\":50}").arg(steps, step, value)
            << QString("(%1): expected ").arg(step) + error;
    };
    const QString open = R"({"open":true},{"expectMenu":{"title":"T","back":false}},)";
    row(open, "expectMenu", R"({"title":"X"})", R"({"title":"X"}, seen {"title":"T"})");
    row(open, "select", "\"x\"", "a row \"x\" to select, seen [\"a\",\"b\"]");
    row(open, "back", "true", "an enabled Back button, seen the button is disabled");
    row(open, "expectBusy", "true", "a wait cursor, seen no wait cursor");
    row(open, "expectClosed", "true", "no SIM toolkit window, seen one titled \"T\"");
    row("", "key", "\"Up\"", "a window of the SIM toolkit for the key, seen none");
    const QString removed = R"({"modem":"removed"},{"wait":300},)";
    row(removed, "open", "true", "a card with a menu, seen the SIM toolkit button is disabled");

    const QString box =
        R"({"send":{"command":"displayText","text":"x"}},{"expectMessage":{"text":"x"}},)";
    row(open, "expectMessage", R"({"text":"x"})", R"({"text":"x"}, seen no message box on top)");
    row(box, "expectMessage", R"({"buttons":["OK"]})",
        R"({"buttons":["OK"]}, seen {"buttons":["Cancel","OK"]})");
    row(box, "expectMessage", "false",
        R"(no message box, seen {"buttons":["Cancel","OK"],"text":"x"})");
    row(box, "expectCountdown", "3", "a message box that counts 3, seen no countdown");
    row(box, "press", "\"Yes\"", "an enabled Yes button, seen no such button in the window on top");
    row(box, "type", "\"1\"", "an input window to type in, seen none on top");
    row(open, "closeBox", "true", "a message box or input window to close, seen none on top");
    const QString input =
        R"({"send":{"command":"getInput","text":"p"}},{"expectInput":{"ok":false}},)";
    const QString shown = R"({"hidden":%1,"prompt":"p"})";
    row(input, "expectInput", qPrintable(shown.arg("true")),
        shown.arg("true") + ", seen " + shown.arg("false"));
    row(input, "press", "\"OK\"", "an enabled OK button, seen the button is disabled");

    const QString send = R"({"send":{"command":%1}},{"expectResponse":{"value":%2}},)";
    row(open + send.arg(R"("playTone","tone":16)", "1"), "expectTone", "8", "tone 8, seen tone_16");
    const QString browser = send.arg(R"("launchBrowser","url":"http://a.example/")", "1");
    row(browser, "expectUrl", "\"http://b.example/\"",
        "the address http://b.example/, seen http://a.example/");
    row(browser, "expectUrl", "false", "no address for the browser, seen http://a.example/");
    row(browser, "expectResponse", R"({"value":1})", R"({"value":1}, seen none)");
    row(R"({"send":{"command":"setUpCall"}},{"expectResponse":{"event":"command"}},{"wait":200},)",
        "expectResponse", "false",
        R"(no answer to the card, seen {"by":"MOVA_STKSrv_SendNoDataResponse","command":"SET UP CALL",)"
        R"("event":"response","id":2,"result":"notSupported","value":4})");

    // The end of the application while the toolkit is in the middle of something.
    const QString closed = R"({"close":true},{"expectClosed":true},)";
    for (const QString &steps :
         {QString(), open, open + R"({"select":"a"},{"expectBusy":true},)",
          open + R"({"modem":"removed"},)", open + closed,
          open + closed + open + R"({"escape":true},{"expectClosed":true},)"})
        QTest::newRow(qPrintable(steps)) << steps + R"({"quit":true})" << QString();
}

void EndToEnd::endsWalkthrough()
{
    QFETCH(QString, steps);
    QFETCH(QString, error);
    const QString card = write("card.json", R"({"menu": {"title": "T", "items": [
        {"id": 1, "text": "a", "do": [{"silence": true}]}, {"id": 2, "text": "b", "do": []}]}})");
    const QString ready = error.isEmpty() ? "" : R"({"expectResponse":{"command":"SET UP MENU"}},)";
    const QString walkthrough = write("walkthrough.json", ('[' + ready + steps + ']').toUtf8());
    const Run result = run({"--card", card, "--walkthrough", walkthrough, "--language", "en"});
    QCOMPARE(result.status, error.isEmpty() ? 0 : 1);
    const QRegularExpression whole(
        '^' + QRegularExpression::escape("ConnectionManager: " + walkthrough + ": step ") +
        "\\d+ " + QRegularExpression::escape(error) + '$');
    const QString line = result.errors.isEmpty() ? QString() : result.errors.last();
    QVERIFY2(error.isEmpty() ? line.isEmpty() : whole.match(line).hasMatch(), qPrintable(line));
}

QTEST_GUILESS_MAIN(EndToEnd)
#include "EndToEnd.moc"
