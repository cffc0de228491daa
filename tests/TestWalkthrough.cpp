#include <QTemporaryDir>
#include <QTest>

#include "Walkthrough.h"

class TestWalkthrough : public QObject {
    Q_OBJECT

private slots:
    void readsEveryStep();
    void refusesBadFiles_data();
    void refusesBadFiles();
    void refusesMissingFile();

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
        {"language": "zh_CN"}, {"wait": 9000}, {"screenshot": "menu"}, {"quit": true}])"));
    QCOMPARE(error, QString());
    const auto &steps = walkthrough.steps();
    QCOMPARE(steps.size(), size_t(21));
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
    const QString steps =
        "open, expectMenu, select, back, close, escape, key, expectBusy, expectClosed, modem, "
        "timeout, endSession, send, language, wait, screenshot, quit";
    const QString menu =
        "an object with \"title\" (text), \"items\" (texts) or \"back\" (true or false)";
    const auto row = [](const char *name, const char *text, const QString &error) {
        QTest::newRow(name) << QByteArray(text) << error;
    };
    row("no JSON", "[{\"open\":true},\n  {\"back\" true}]",
        "line 2, column 12: expected JSON, found: missing name separator");
    row("empty", "", "line 1, column 1: expected JSON, found: illegal value");
    row("no array", "{\"open\":true}", "expected an array of steps, found an object");
    row("no object", "[{\"open\":true}, 5]",
        "step 2: expected an object with one of " + steps + ", found 5");
    row("unknown step", "[{\"opn\":true}]",
        "step 1: expected an object with one of " + steps + ", found {\"opn\":true}");
    row("two steps", "[{\"back\":true, \"open\":true}]",
        "step 1: expected no field \"open\" beside \"back\", found it");
    row("unknown field", "[{\"open\":true, \"fast\":1}]",
        "step 1: expected no field \"fast\" beside \"open\", found it");
    row("by without select", "[{\"open\":true, \"by\":\"button\"}]",
        "step 1: expected no field \"by\" beside \"open\", found it");
    row("within at a step that does not wait", "[{\"modem\":\"ready\", \"within\":5}]",
        "step 1: expected no field \"within\" beside \"modem\", found it");
    row("unknown way", "[{\"select\":\"a\", \"by\":\"mouse\"}]",
        "step 1: \"by\": expected \"button\", \"doubleClick\" or \"return\", found \"mouse\"");
    row("negative time", "[{\"open\":true, \"within\":-1}]",
        "step 1: \"within\": expected a whole number of milliseconds from 0 to 600000, found -1");
    row("fraction of a millisecond", "[{\"wait\":1.5}]",
        "step 1: \"wait\": expected a whole number of milliseconds from 0 to 600000, found 1.5");
    row("endless", "[{\"wait\":1e300}]",
        "step 1: \"wait\": expected a whole number of milliseconds from 0 to 600000, found 1e+300");
    row("not true", "[{\"back\":false}]", "step 1: \"back\": expected true, found false");
    row("text for a flag", "[{\"expectBusy\":\"yes\"}]",
        "step 1: \"expectBusy\": expected true or false, found \"yes\"");
    row("empty text", "[{\"select\":\"\"}]",
        "step 1: \"select\": expected a text that is not empty, found \"\"");
    row("empty menu", "[{\"expectMenu\":{}}]",
        "step 1: \"expectMenu\": expected " + menu + ", found {}");
    row("menu with a number", "[{\"expectMenu\":{\"items\":[\"a\",1]}}]",
        "step 1: \"expectMenu\": expected " + menu + ", found {\"items\":[\"a\",1]}");
    row("menu with an unknown field", "[{\"expectMenu\":{\"titel\":\"a\"}}]",
        "step 1: \"expectMenu\": expected " + menu + ", found {\"titel\":\"a\"}");
    row("unknown key", "[{\"key\":\"Sideways\"}]",
        "step 1: \"key\": expected the name of one key, such as \"Down\" or \"Ctrl+A\", found "
        "\"Sideways\"");
    row("two keys", "[{\"key\":\"Up, Down\"}]",
        "step 1: \"key\": expected the name of one key, such as \"Down\" or \"Ctrl+A\", found "
        "\"Up, Down\"");
    row("modem", "[{\"modem\":\"broken\"}]",
        "step 1: \"modem\": expected \"removed\" or \"ready\", found \"broken\"");
    row("command", "[{\"send\":\"displayText\"}]",
        "step 1: \"send\": expected a proactive command as in a card scenario, found "
        "\"displayText\"");
    row("language", "[{\"language\":\"xx\"}]",
        "step 1: \"language\": expected a language: en, de, fr, es, zh_CN, ar, found \"xx\"");
    row("picture outside the folder", "[{\"screenshot\":\"../x\"}]",
        "step 1: \"screenshot\": expected a file name without folder, found \"../x\"");
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

QTEST_GUILESS_MAIN(TestWalkthrough)
#include "TestWalkthrough.moc"
