#include <QJsonDocument>
#include <QJsonObject>
#include <QTemporaryDir>
#include <QTest>

#include "CardCommands.h"
#include "CardHost.h"
#include "Walkthrough.h"

class TestWalkthrough : public QObject {
    Q_OBJECT

private slots:
    void readsEveryStep();
    void refusesBadFiles_data();
    void refusesBadFiles();
    void refusesMissingFile();
    void everyCommandCanBeSent();

private:
    QString write(const QByteArray &text);

    QTemporaryDir m_folder;
};

QString TestWalkthrough::write(const QByteArray &text)
{
    const QString name = m_folder.filePath("w.json");
    QFile file(name);
    if (file.open(QIODevice::WriteOnly))
        file.write(text);
    return name;
}

void TestWalkthrough::readsEveryStep()
{
    Walkthrough walkthrough;
    const QString error = walkthrough.load(write(R"([
        {"open": true}, {"expectMenu": {"title": "T", "items": ["a"], "back": false}, "within": 70},
        {"select": "a"}, {"select": "a", "by": "doubleClick"}, {"by": "return", "select": "a"},
        {"back": true}, {"close": true}, {"escape": true}, {"key": "Down"}, {"key": "Ctrl+Home"},
        {"expectBusy": false}, {"expectClosed": true}, {"modem": "removed"}, {"modem": "ready"},
        {"timeout": true}, {"endSession": true}, {"send": {"command": "setUpCall"}},
        {"language": "zh_CN"}, {"wait": 9000}, {"screenshot": "menu"}, {"quit": true},
        {"expectMessage": {"text": "", "buttons": ["OK"]}}, {"expectMessage": false},
        {"expectCountdown": 3}, {"press": "No"}, {"type": "12"}, {"erase": true}, {"closeBox": true},
        {"expectInput": {"prompt": "", "text": "", "hidden": true, "ok": false, "maxLength": 4}},
        {"expectInput": false}, {"expectTone": 8}, {"expectUrl": "http://a"}, {"expectUrl": false},
        {"expectResponse": {"event": "refused", "status": -4}}, {"expectResponse": false}])"));
    QCOMPARE(error, QString());
    const auto &steps = walkthrough.steps();
    QCOMPARE(steps.size(), size_t(35));
    QCOMPARE(steps[0].within, 5000);
    QCOMPARE(steps[1].within, 70);
    QCOMPARE(steps[1].number, 2);
    QVERIFY(steps[2].by == Walkthrough::SelectBy::Button);
    QVERIFY(steps[3].by == Walkthrough::SelectBy::DoubleClick);
    QVERIFY(steps[4].by == Walkthrough::SelectBy::Return);
    QCOMPARE(steps[4].name, QString("select"));
    QCOMPARE(steps[4].value.toString(), QString("a"));
    QVERIFY2(steps[18].within >= 9000, "a wait must not run out before its own end");
}

void TestWalkthrough::refusesBadFiles_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<QString>("error");
    const auto row = [](const char *text, const QString &error) {
        QTest::newRow(*text ? text : "empty") << QByteArray(text) << error;
    };
    const auto wrong = [](const char *field, const char *found, const QString &expected,
                          const QByteArray &beside = "") {
        const QByteArray text = QByteArray("[{") + beside + '"' + field + "\":" + found + "}]";
        QTest::newRow(text) << text
                            << QString("step 1: \"%1\": expected %2, found %3")
                                   .arg(field, expected, QString::fromUtf8(found));
    };
    const QString oneStep =
        "expected an object with one of open, expectMenu, select, back, close, escape, key, "
        "expectBusy, expectClosed, expectMessage, expectCountdown, press, expectInput, type, "
        "erase, "
        "closeBox, expectTone, expectUrl, expectResponse, modem, timeout, endSession, send, "
        "language, wait, screenshot, quit, found ";
    row("[{\"open\":true},\n  {\"back\" true}]",
        "line 2, column 12: expected JSON, found: missing name separator");
    row("", "line 1, column 1: expected JSON, found: illegal value");
    row("{\"open\":true}", "expected an array of steps, found an object");
    row("[{\"open\":true}, 5]", "step 2: " + oneStep + "5");
    row("[{\"opn\":true}]", "step 1: " + oneStep + "{\"opn\":true}");
    row("[{\"back\":true, \"open\":true}]",
        "step 1: expected no field \"open\" beside \"back\", found it");
    row("[{\"open\":true, \"by\":\"button\"}]",
        "step 1: expected no field \"by\" beside \"open\", found it");
    row("[{\"modem\":\"ready\", \"within\":5}]",
        "step 1: expected no field \"within\" beside \"modem\", found it");

    const QString time = "a whole number of milliseconds from 0 to 600000";
    wrong("by", "\"mouse\"", "\"button\", \"doubleClick\" or \"return\"", "\"select\":\"a\",");
    wrong("within", "-1", time, "\"open\":true,");
    wrong("wait", "1.5", time);
    wrong("wait", "1e+300", time);
    wrong("back", "false", "true");
    wrong("expectBusy", "\"yes\"", "true or false");
    wrong("select", "\"\"", "a text that is not empty");
    const QString menu =
        "an object with \"title\" (text), \"items\" (texts) or \"back\" (true or false)";
    for (const char *found : {"{}", "{\"items\":[\"a\",1]}", "{\"titel\":\"a\"}"})
        wrong("expectMenu", found, menu);
    const QString key = "the name of one key, such as \"Down\" or \"Ctrl+A\"";
    wrong("key", "\"Sideways\"", key);
    wrong("key", "\"Up, Down\"", key);
    wrong("modem", "\"broken\"", "\"removed\" or \"ready\"");
    wrong("send", "\"displayText\"", "a proactive command as in a card scenario");
    wrong("language", "\"xx\"", "a language: en, de, fr, es, zh_CN, ar");
    wrong("screenshot", "\"../x\"", "a file name without folder");
    wrong("press", "\"Abort\"", "\"OK\", \"Cancel\", \"Yes\" or \"No\"");
    const QString message = "an object with \"text\" (text) or \"buttons\" (texts), or false";
    for (const char *found : {"true", "{}", "{\"buttons\":\"OK\"}"})
        wrong("expectMessage", found, message);
    wrong("expectInput", "{\"maxLength\":\"4\"}",
          "an object with \"prompt\", \"text\" (texts), \"hidden\", \"ok\" (true or false) or "
          "\"maxLength\" (number), or false");
    for (const char *found : {"{\"valu\":1}", "{\"value\":1.5}", "{\"accepted\":1}"})
        wrong("expectResponse", found, "an object of fields of a transcript's entry, or false");
    wrong("expectTone", "-8", "a whole number from 0");
    wrong("expectUrl", "true", "an address, or false");
}

void TestWalkthrough::refusesBadFiles()
{
    QFETCH(QByteArray, text);
    QFETCH(QString, error);
    const QString name = write(text);
    Walkthrough walkthrough;
    QCOMPARE(walkthrough.load(name), name + ": " + error);
    QVERIFY(walkthrough.steps().empty());
}

void TestWalkthrough::refusesMissingFile()
{
    Walkthrough walkthrough;
    const QString name = m_folder.filePath("absent.json");
    QCOMPARE(walkthrough.load(name),
             name + ": expected a walkthrough, found no readable file: No such file or directory");
}

// What the menu offers must be what a card can send.
void TestWalkthrough::everyCommandCanBeSent()
{
    const QString card = write(R"({"menu": {"title": "T", "items": [{"text": "a"}]}})");
    QCOMPARE(CardHost::openScenario(QFile::encodeName(card).toStdString()), std::string());
    QSet<QString> names;
    for (const CardCommand &command : cardCommands()) {
        QCOMPARE(CardHost::sendCommand(command.json), std::string());
        names << QJsonDocument::fromJson(command.json).object()["command"].toString();
    }
    CardHost::closeCard();
    QCOMPARE(names.size(), 13);
}

QTEST_GUILESS_MAIN(TestWalkthrough)
#include "TestWalkthrough.moc"
