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

} // namespace

class EndToEnd : public QObject {
    Q_OBJECT

private slots:
    void refusesToStart_data();
    void refusesToStart();
    void needsDisplay();
    void brokenCardKeepsRunning();
    void plays_data();
    void plays();
    void failedStep_data();
    void failedStep();
    void closesInEveryState_data();
    void closesInEveryState();

private:
    Run run(const QStringList &arguments, const QString &platform = "offscreen");
    QString write(const QString &name, const QByteArray &text);
    QList<QByteArray> linesOf(const QString &name);

    QTemporaryDir m_folder;
};

Run EndToEnd::run(const QStringList &arguments, const QString &platform)
{
    QProcess process;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert("QT_QPA_PLATFORM", platform);
    environment.insert("DISPLAY", ":4711");
    environment.insert("XDG_RUNTIME_DIR", m_folder.path());
    // The host unloads the plug-in, so that a leak checker could no longer name what the plug-in
    // keeps on purpose; the plug-in's own tests check for leaks.
    environment.insert("ASAN_OPTIONS", environment.value("ASAN_OPTIONS") + ":detect_leaks=0");
    process.setProcessEnvironment(environment);
    process.start(STK_BIN_DIR "/ConnectionManager", arguments);
    if (!process.waitForFinished(200000) || process.exitStatus() != QProcess::NormalExit)
        return {-1, {process.errorString(), process.readAllStandardError()}};
    const QString errors = QString::fromUtf8(process.readAllStandardError());
    return {process.exitCode(), errors.split('\n', Qt::SkipEmptyParts)};
}

QString EndToEnd::write(const QString &name, const QByteArray &text)
{
    const QString path = m_folder.filePath(name);
    QDir().mkpath(QFileInfo(path).path());
    QFile file(path);
    if (file.open(QIODevice::WriteOnly))
        file.write(text);
    return path;
}

QList<QByteArray> EndToEnd::linesOf(const QString &name)
{
    QFile file(m_folder.filePath(name));
    file.open(QIODevice::ReadOnly);
    QList<QByteArray> lines = file.readAll().split('\n');
    lines.removeLast();
    return lines;
}

void EndToEnd::refusesToStart_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QString>("error"); // a regular expression for the one line
    const auto row = [](const char *name, const QStringList &arguments, const QString &error) {
        QTest::newRow(name) << arguments << error;
    };
    const auto foreign = [this](const QString &folder) { return m_folder.filePath(folder); };
    write("text/STKPlugin/libSTKPlugin.so", QByteArray("no library\n").repeated(1000));

    row("unknown option", {"--cart", "x"}, "Unknown option 'cart'\\.");
    row("option without value", {"--card"}, "Missing value after '--card'\\.");
    row("empty value", {"--card="}, "option --card needs a FILE");
    row("unexpected argument", {"demo.json"}, "unexpected argument \"demo.json\"");
    row("unknown language", {"--language", "tlh"},
        "unknown language \"tlh\": expected one of en, de, fr, es, zh_CN, ar");
    row("missing card", {"--card", "/absent.json"}, "/absent.json: no such card scenario");
    row("missing walkthrough", {"--walkthrough", "/absent.json"},
        "/absent.json: expected a walkthrough, found no readable file: .*");
    row("bad walkthrough", {"--walkthrough", write("bad.json", "[{\"open\":1}]")},
        ".*/bad.json: step 1: \"open\": expected true, found 1");
    row("trace", {"--trace", "/absent/x"},
        "/absent/x: cannot write the trace: No such file or directory");
    row("transcript", {"--transcript", "/absent/x"},
        "/absent/x: cannot write the transcript: No such file or directory");
    row("screenshots", {"--screenshots", "/dev/null/x"},
        "/dev/null/x: cannot make this folder for the pictures");

    const QString plugin = "cannot load the SIM toolkit plug-in .*/STKPlugin/libSTKPlugin.so: ";
    row("no plug-in", {"--plugins", "/absent"}, plugin + "no such file");
    row("text as plug-in", {"--plugins", foreign("text")},
        plugin + ".*(invalid ELF header|not a valid).*");
    row("newer Qt", {"--plugins", STK_TEST_PLUGINS "/NewerQt"},
        plugin + "it was built with Qt 5\\.99\\.0, this application runs with Qt .*");
    row("older Qt", {"--plugins", STK_TEST_PLUGINS "/OlderQt"},
        plugin + "it was built with Qt 4\\.8\\.7, this application runs with Qt .*");
    row("no verification data", {"--plugins", STK_TEST_PLUGINS "/NoVerification"},
        plugin + "it has no verification data of a plug-in");
    row("other plug-in", {"--plugins", STK_TEST_PLUGINS "/NoInterfaces"},
        plugin + "it is no user-interface plug-in of this application");
}

void EndToEnd::refusesToStart()
{
    QFETCH(QStringList, arguments);
    QFETCH(QString, error);
    const Run result = run(arguments);
    QCOMPARE(result.status, 2);
    QVERIFY2(result.errors.size() == 1, qPrintable(result.errors.join(" | ")));
    const QRegularExpression whole("^ConnectionManager: " + error + '$');
    QVERIFY2(whole.match(result.errors.first()).hasMatch(), qPrintable(result.errors.first()));
}

void EndToEnd::needsDisplay()
{
    const Run result = run({}, "xcb");
    QCOMPARE(result.status, 2);
    QCOMPARE(result.errors,
             QStringList("ConnectionManager: no display: could not connect to display :4711"));
    QCOMPARE(run({"--help"}, "xcb").status, 0);
}

void EndToEnd::brokenCardKeepsRunning()
{
    const QString card = write("broken.json", "{\"menu\": 5}");
    const Run result = run(
        {"--card", card, "--walkthrough", write("quit.json", "[{\"wait\":50},{\"quit\":true}]")});
    QCOMPARE(result.status, 0);
    QVERIFY2(result.errors.size() == 1, qPrintable(result.errors.join(" | ")));
    QVERIFY2(result.errors.first().startsWith("ConnectionManager: " + card + ": "),
             qPrintable(result.errors.first()));
}

void EndToEnd::plays_data()
{
    QTest::addColumn<QStringList>("errors");
    QTest::newRow("demo") << QStringList();
    QTest::newRow("every-command")
        << QStringList("OpenUrl: refused \"tel:+800100200\": only http and https are opened");
}

void EndToEnd::plays()
{
    QFETCH(QStringList, errors);
    const QString name = QTest::currentDataTag();
    const QString walkthrough = Source + "/cards/" + name + ".walkthrough.json";
    const QString pictures = m_folder.filePath("new/" + name);
    const Run result =
        run({"--card", Source + "/cards/" + name + ".json", "--walkthrough", walkthrough,
             "--screenshots", pictures, "--transcript", m_folder.filePath("transcript"), "--trace",
             m_folder.filePath("trace"), "--language", "en"});
    QVERIFY2(result.status == 0, qPrintable(result.errors.join(" | ")));
    // Where there is no audio device, tones are not heard; that is no fault.
    static const QRegularExpression sound("^(Cannot play |PulseAudioService: |ALSA lib )");
    QStringList seen = result.errors;
    for (const QString &line : result.errors.filter(sound))
        seen.removeAll(line);
    QCOMPARE(seen, errors);

    QFile steps(walkthrough);
    QVERIFY(steps.open(QIODevice::ReadOnly));
    const QStringList names = QDir(pictures).entryList({"*.png"});
    QCOMPARE(names.size(), steps.readAll().count("{\"screenshot\":"));
    for (const QString &picture : names)
        QVERIFY2(QImage(pictures + '/' + picture).width() >= 700, qPrintable(picture));
    const QList<QByteArray> transcript = linesOf("transcript");
    QVERIFY(transcript.size() > 10);
    for (const QByteArray &line : transcript)
        QVERIFY2(!QJsonDocument::fromJson(line).object().isEmpty(), line);
    QVERIFY(linesOf("trace").contains("../../src/STKPlugin/STKPlugin: UnSDKRegisterEvent exit"));
}

void EndToEnd::failedStep_data()
{
    QTest::addColumn<QString>("steps"); // before the one that fails
    QTest::addColumn<QString>("failing");
    QTest::addColumn<QString>("error");
    const auto row = [](const QString &steps, const char *step, const char *value,
                        const QString &error) {
        QTest::newRow(step + QByteArray(value))
            << steps << QString("{\"%1\":%2,\"within\":50}").arg(step, value)
            << QString("(%1): expected ").arg(step) + error;
    };
    const QString open = R"({"open":true},{"expectMenu":{"back":false}},)";
    row(open, "expectMenu", R"({"title":"X"})", R"({"title":"X"}, seen {"title":"T"})");
    row(open, "select", "\"x\"", "a row \"x\" to select, seen [\"a\",\"b\"]");
    row(open, "back", "true", "an enabled Back button, seen the button is disabled");
    row(open, "expectBusy", "true", "a wait cursor, seen no wait cursor");
    row(open, "expectClosed", "true", "no SIM toolkit window, seen one titled \"T\"");
    row("", "key", "\"Up\"", "a window of the SIM toolkit for the key, seen none");
    row(R"({"modem":"removed"},{"wait":300},)", "open", "true",
        "a modem with a toolkit, seen the SIM toolkit button is disabled");

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
    const QString input =
        R"({"send":{"command":"getInput","text":"p"}},{"expectInput":{"ok":false}},)";
    row(input, "expectInput", R"({"hidden":true,"prompt":"p"})",
        R"({"hidden":true,"prompt":"p"}, seen {"hidden":false,"prompt":"p"})");
    row(input, "press", "\"OK\"", "an enabled OK button, seen the button is disabled");
    row(open, "closeBox", "true", "a message box or input window to close, seen none on top");
    row(open + R"({"send":{"command":"playTone","tone":16}},{"expectResponse":{"value":1}},)",
        "expectTone", "8", "tone 8, seen tone_16");
    const QString browser = R"({"send":{"command":"launchBrowser","url":"http://a.example/"}},)"
                            R"({"expectResponse":{"value":1}},)";
    row(browser, "expectUrl", "\"http://b.example/\"",
        "the address http://b.example/, seen http://a.example/");
    row(browser, "expectUrl", "false", "no address for the browser, seen http://a.example/");
    row(browser, "expectResponse", R"({"value":1})", R"({"value":1}, seen none)");
    row(R"({"send":{"command":"setUpCall"}},{"expectResponse":{"event":"command"}},{"wait":200},)",
        "expectResponse", "false",
        "no answer to the card, seen "
        R"({"by":"MOVA_STKSrv_SendNoDataResponse","command":"SET UP CALL","event":"response","id":2,)"
        R"("result":"notSupported","value":4})");
}

void EndToEnd::failedStep()
{
    QFETCH(QString, steps);
    QFETCH(QString, failing);
    QFETCH(QString, error);
    const QString card = write("card.json", R"({"menu": {"title": "T", "items": [
        {"id": 1, "text": "a", "do": []}, {"id": 2, "text": "b", "do": []}]}})");
    const QString ready = R"({"expectResponse":{"command":"SET UP MENU"}},)";
    const QString walkthrough =
        write("failing.json", ('[' + ready + steps + failing + ']').toUtf8());
    const Run result = run({"--card", card, "--walkthrough", walkthrough, "--language", "en"});
    QCOMPARE(result.status, 1);
    const QString line = result.errors.last();
    QVERIFY2(line.startsWith("ConnectionManager: " + walkthrough + ": step "), qPrintable(line));
    QVERIFY2(line.endsWith(' ' + error), qPrintable(line));
}

// The end of the application while the toolkit is in the middle of something.
void EndToEnd::closesInEveryState_data()
{
    QTest::addColumn<QByteArray>("steps");
    const QByteArray open = "[{\"open\":true},{\"expectMenu\":{\"title\":\"T\"}},";
    QTest::newRow("no window") << QByteArray("[{\"quit\":true}]");
    QTest::newRow("menu") << open + "{\"quit\":true}]";
    QTest::newRow("waiting") << open + "{\"select\":\"a\"},{\"expectBusy\":true},{\"quit\":true}]";
    QTest::newRow("closed") << open +
            "{\"close\":true},{\"expectClosed\":true},{\"open\":true},"
            "{\"expectMenu\":{\"title\":\"T\"}},{\"escape\":true},{\"expectClosed\":true}]";
    QTest::newRow("modem removed") << open + "{\"modem\":\"removed\"},{\"quit\":true}]";
}

void EndToEnd::closesInEveryState()
{
    QFETCH(QByteArray, steps);
    const QString card = write("silent.json", R"({"menu": {"title": "T", "items": [
        {"id": 1, "text": "a", "do": [{"silence": true}]}]}})");
    const Run result = run({"--card", card, "--walkthrough", write("w.json", steps)});
    QCOMPARE(result.errors, QStringList());
    QCOMPARE(result.status, 0);
}

QTEST_GUILESS_MAIN(EndToEnd)
#include "EndToEnd.moc"
