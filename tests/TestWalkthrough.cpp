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
    void readsFields();
    void refusesBadFiles_data();

    void refusesBadFiles()
    {
        QFETCH(QByteArray, text);
        QFETCH(QString, error);
        const QString name = write(text);
        Walkthrough walkthrough;
        const QString found = walkthrough.load(name), whole = name + ": " + error;
        QVERIFY2(found.startsWith(whole.section("…", 0, 0)) &&
                     found.endsWith(whole.section("…", 1)),
                 qPrintable(found));
        QVERIFY(walkthrough.steps().empty());
    }

    void everyCommandCanBeSent();

private:
    QString write(const QByteArray &text)
    {
        const QString name = m_folder.filePath("w.json");
        QFile file(name);
        if (file.open(QIODevice::WriteOnly))
            file.write(text);
        return name;
    }

    QTemporaryDir m_folder;
};

// The walkthroughs of the cards have the other steps.
void TestWalkthrough::readsFields()
{
    Walkthrough walkthrough;
    const QString error = walkthrough.load(write(R"([{"wait": 9000}, {"open": true, "within": 70},
        {"select": "a"}, {"by": "doubleClick", "select": "a"}, {"select": "a", "by": "return"}])"));
    QCOMPARE(error, QString());
    const auto &steps = walkthrough.steps();
    QCOMPARE(steps.size(), size_t(5));
    QVERIFY2(steps[0].within >= 9000, "a wait must not run out before its own end");
    QCOMPARE(steps[1].within, 70);
    QCOMPARE(steps[1].number, 2);
    QCOMPARE(steps[2].within, 5000);
    QVERIFY(steps[2].by == Walkthrough::SelectBy::Button);
    QVERIFY(steps[3].by == Walkthrough::SelectBy::DoubleClick);
    QVERIFY(steps[4].by == Walkthrough::SelectBy::Return);
    QCOMPARE(steps[4].name + steps[4].value.toString(), QString("selecta"));
}

void TestWalkthrough::refusesBadFiles_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<QString>("error");
    const auto row = [](const QByteArray &text, const QString &error) {
        QTest::newRow(text.isEmpty() ? "empty" : text.constData()) << text << error;
    };
    const auto wrong =
        [](const char *field, const QByteArrayList &values, const QString &expected,
           const QByteArray &beside = "") {
            for (const QByteArray &found : values) {
                const QByteArray text = "[{" + beside + '"' + field + "\":" + found + "}]";
                QTest::newRow(text)
                    << text
                    << QString("step 1: \"%1\": expected %2, found ").arg(field, expected) + found;
            }
        };
    row("[{\"open\":true},\n  {\"back\" true}]",
        "line 2, column 12: expected JSON, found: missing name separator");
    row("", "line 1, column 1: expected JSON, found: illegal value");
    row(R"({"open":true})", "expected an array of steps, found an object");
    row(R"([{"open":true}, 5])", "step 2: expected an object with one of open, …, quit, found 5");
    row(R"([{"opn":true}])",
        R"(step 1: expected an object with one of open, …, quit, found {"opn":true})");
    row(R"([{"back":true, "open":true}])",
        R"(step 1: expected no field "open" beside "back", found it)");
    row(R"([{"open":true, "by":"button"}])",
        R"(step 1: expected no field "by" beside "open", found it)");
    row(R"([{"modem":"ready", "within":5}])",
        R"(step 1: expected no field "within" beside "modem", found it)");

    const QString time = "a whole number of milliseconds from 0 to 600000";
    wrong("by", {"\"mouse\""}, R"("button", "doubleClick" or "return")", R"("select":"a",)");
    wrong("within", {"-1"}, time, R"("open":true,)");
    wrong("wait", {"1.5", "1e+300"}, time);
    wrong("back", {"false"}, "true");
    wrong("expectBusy", {"\"yes\""}, "true or false");
    wrong("select", {"\"\""}, "a text that is not empty");
    wrong("expectMenu", {"{}", R"({"items":["a",1]})", R"({"titel":"a"})"},
          R"(an object with "title" (text), "items" (texts) or "back" (true or false))");
    wrong("key", {"\"Sideways\"", "\"Up, Down\""},
          R"(the name of one key, such as "Down" or "Ctrl+A")");
    wrong("modem", {"\"broken\""}, R"("removed" or "ready")");
    wrong("send", {"\"displayText\""}, "a proactive command as in a card scenario");
    wrong("language", {"\"xx\""}, "a language: en, de, fr, es, zh_CN, ar");
    wrong("screenshot", {"\"../x\""}, "a file name without folder");
    wrong("press", {"\"Abort\""}, R"("OK", "Cancel", "Yes" or "No")");
    wrong("expectMessage", {"true", "{}", R"({"buttons":"OK"})"},
          R"(an object with "text" (text) or "buttons" (texts), or false)");
    wrong(
        "expectInput", {R"({"maxLength":"4"})"},
        R"(an object with "prompt", "text" (texts), "hidden", "ok" (true or false) or "maxLength" (number), or false)");
    wrong("expectResponse", {R"({"valu":1})", R"({"value":1.5})", R"({"accepted":1})"},
          "an object of fields of a transcript's entry, or false");
    wrong(
        "expectPin", {"true", R"({"tries":"3"})"},
        R"(an object with "card" (text), "tries" (number), "wrong" or "ok" (true or false), or false)");
    for (const char *pin : {"\"123\"", "\"123456789\"", "\"12a4\"", "1234"})
        row("[{\"enterPin\":" + QByteArray(pin) + "}]",
            R"(step 1: "enterPin": expected a text of four to eight digits, found "***")");
    wrong("expectTone", {"-8"}, "a whole number from 0");
    wrong("expectUrl", {"true"}, "an address, or false");
    wrong("answerUrl", {"\"never\""}, R"("open", "always" or "notNow")");
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
