#include "Walkthrough.h"

#include <algorithm>
#include <cmath>
#include <initializer_list>
#include <limits>

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QKeySequence>
#include <QRegularExpression>

#include "Languages.h"

namespace {

constexpr int DefaultWithin = 5000; // ms
constexpr int LongestWait = 10 * 60000; // ms

/// What a value has to be: the words for a message, and the check.
struct ValueRule {
    QString expected;
    bool (*accepts)(const QJsonValue &);
    bool isSecret = false; ///< a message does not show what was found
};

struct StepRule {
    const char *name;
    ValueRule value;
    bool waits; ///< takes "within"
};

bool isText(const QJsonValue &value)
{
    return value.isString() && !value.toString().isEmpty();
}

bool isMilliseconds(const QJsonValue &value)
{
    const double number = value.toDouble(-1);
    return number >= 0 && number <= LongestWait && number == int(number);
}

bool isTexts(const QJsonValue &value)
{
    const QJsonArray array = value.toArray();
    return value.isArray() &&
        std::all_of(array.begin(), array.end(), [](const QJsonValue &v) { return v.isString(); });
}

bool isAnyText(const QJsonValue &value)
{
    return value.isString();
}

bool isBool(const QJsonValue &value)
{
    return value.isBool();
}

bool isFalse(const QJsonValue &value)
{
    return value == QJsonValue(false);
}

bool isNumber(const QJsonValue &value)
{
    constexpr double Highest = std::numeric_limits<int>::max();
    const double number = value.toDouble(0.5);
    return std::abs(number) <= Highest && number == int(number);
}

bool isNaturalNumber(const QJsonValue &value)
{
    return isNumber(value) && value.toInt() >= 0;
}

struct FieldRule {
    const char *name;
    bool (*accepts)(const QJsonValue &);
};

// An object with some of these fields and no others.
bool isObjectOf(const QJsonValue &value, std::initializer_list<FieldRule> rules)
{
    const QJsonObject object = value.toObject();
    for (auto field = object.begin(); field != object.end(); ++field) {
        const bool right = std::any_of(rules.begin(), rules.end(), [&](const FieldRule &rule) {
            return field.key() == rule.name && rule.accepts(*field);
        });
        if (!right)
            return false;
    }
    return !object.isEmpty();
}

bool isMenu(const QJsonValue &value)
{
    return isObjectOf(value, {{"title", isAnyText}, {"items", isTexts}, {"back", isBool}});
}

bool isMessage(const QJsonValue &value)
{
    return isFalse(value) || isObjectOf(value, {{"text", isAnyText}, {"buttons", isTexts}});
}

bool isInput(const QJsonValue &value)
{
    return isFalse(value) ||
        isObjectOf(value,
                   {{"prompt", isAnyText},
                    {"text", isAnyText},
                    {"hidden", isBool},
                    {"ok", isBool},
                    {"maxLength", isNumber}});
}

bool isPinRequest(const QJsonValue &value)
{
    return isFalse(value) ||
        isObjectOf(value,
                   {{"card", isAnyText},
                    {"tries", isNaturalNumber},
                    {"wrong", isBool},
                    {"ok", isBool}});
}

bool isPin(const QJsonValue &value)
{
    static const QRegularExpression digits("\\A[0-9]{4,8}\\z");
    return digits.match(value.toString()).hasMatch();
}

bool isEntry(const QJsonValue &value)
{
    return isFalse(value) ||
        isObjectOf(value,
                   {{"event", isAnyText},
                    {"command", isAnyText},
                    {"id", isNumber},
                    {"by", isAnyText},
                    {"result", isAnyText},
                    {"accepted", isBool},
                    {"text", isAnyText},
                    {"item", isNumber},
                    {"itemText", isAnyText},
                    {"value", isNumber},
                    {"call", isAnyText},
                    {"status", isNumber},
                    {"reason", isAnyText},
                    {"problem", isBool},
                    {"response", isAnyText},
                    {"title", isAnyText},
                    {"state", isAnyText}});
}

const ValueRule True = {"true", [](const QJsonValue &value) { return value == QJsonValue(true); }};
const ValueRule Bool = {"true or false", isBool};
const ValueRule Text = {"a text that is not empty", isText};
const ValueRule Milliseconds = {
    QString("a whole number of milliseconds from 0 to %1").arg(LongestWait), isMilliseconds};
const ValueRule Menu = {
    "an object with \"title\" (text), \"items\" (texts) or \"back\" (true or false)", isMenu};
const ValueRule Message = {"an object with \"text\" (text) or \"buttons\" (texts), or false",
                           isMessage};
const ValueRule Input = {"an object with \"prompt\", \"text\" (texts), \"hidden\", \"ok\" (true or "
                         "false) or \"maxLength\" (number), or false",
                         isInput};
const ValueRule PinRequest = {"an object with \"card\" (text), \"tries\" (number), \"wrong\" or "
                              "\"ok\" (true or false), or false",
                              isPinRequest};
const ValueRule Pin = {"a text of four to eight digits", isPin, true};
const ValueRule Entry = {"an object of fields of a transcript's entry, or false", isEntry};
const ValueRule Number = {"a whole number from 0", isNaturalNumber};
const ValueRule Address = {"an address, or false",
                           [](const QJsonValue &value) { return isText(value) || isFalse(value); }};
const ValueRule UrlAnswer = {
    "\"open\", \"always\" or \"notNow\"", [](const QJsonValue &value) {
        return QStringList{"open", "always", "notNow"}.contains(value.toString());
    }};
const ValueRule Button = {
    "\"OK\", \"Cancel\", \"Yes\" or \"No\"", [](const QJsonValue &value) {
        return QStringList{"OK", "Cancel", "Yes", "No"}.contains(value.toString());
    }};
const ValueRule Key = {
    "the name of one key, such as \"Down\" or \"Ctrl+A\"", [](const QJsonValue &value) {
        const QKeySequence keys(value.toString(), QKeySequence::PortableText);
        return keys.count() == 1 && !keys.toString().isEmpty(); // which an unknown key has not
    }};
const ValueRule ModemState = {"\"removed\" or \"ready\"", [](const QJsonValue &value) {
                                  return value == QJsonValue("removed") ||
                                      value == QJsonValue("ready");
                              }};
const ValueRule Command = {
    "a proactive command as in a card scenario",
    [](const QJsonValue &value) { return value.isObject() && !value.toObject().isEmpty(); }};
const ValueRule Language = {
    "a language: " + Languages::codes().join(", "),
    [](const QJsonValue &value) { return Languages::isKnown(value.toString()); }};
const ValueRule PictureName = {"a file name without folder", [](const QJsonValue &value) {
                                   return isText(value) && !value.toString().contains('/');
                               }};

const StepRule Rules[] = {
    {"open", True, true},
    {"expectMenu", Menu, true},
    {"select", Text, true},
    {"back", True, true},
    {"close", True, true},
    {"escape", True, true},
    {"key", Key, true},
    {"expectBusy", Bool, true},
    {"expectClosed", True, true},
    {"expectMessage", Message, true},
    {"expectCountdown", Number, true},
    {"press", Button, true},
    {"expectInput", Input, true},
    {"type", Text, true},
    {"erase", True, true},
    {"closeBox", True, true},
    {"expectPin", PinRequest, true},
    {"confirmPin", True, true},
    {"enterPin", Pin, true},
    {"expectTone", Number, true},
    {"expectUrl", Address, true},
    {"expectNote", Text, true},
    {"answerUrl", UrlAnswer, true},
    {"expectResponse", Entry, true},
    {"modem", ModemState, false},
    {"timeout", True, false},
    {"endSession", True, false},
    {"send", Command, false},
    {"language", Language, false},
    {"wait", Milliseconds, false},
    {"screenshot", PictureName, false},
    {"quit", True, false},
};

struct SelectName {
    const char *name;
    Walkthrough::SelectBy by;
};

const SelectName SelectNames[] = {
    {"button", Walkthrough::SelectBy::Button},
    {"doubleClick", Walkthrough::SelectBy::DoubleClick},
    {"return", Walkthrough::SelectBy::Return},
};

const StepRule *ruleOf(const QString &name)
{
    for (const StepRule &rule : Rules) {
        if (name == rule.name)
            return &rule;
    }
    return nullptr;
}

QString stepNames()
{
    QStringList names;
    for (const StepRule &rule : Rules)
        names << rule.name;
    return names.join(", ");
}

// The value as it stands in a message: JSON, on one line, not longer than a line.
QString shown(const QJsonValue &value)
{
    const QString json = QJsonDocument(QJsonArray{value}).toJson(QJsonDocument::Compact);
    const QString text = json.mid(1, json.size() - 2);
    return text.size() > 120 ? text.left(117) + "..." : text;
}

QString mismatch(const QString &expected, const QJsonValue &found)
{
    return QString("expected %1, found %2").arg(expected, shown(found));
}

QString placeOf(const QByteArray &text, int offset)
{
    const QByteArray before = text.left(offset);
    return QString("line %1, column %2")
        .arg(before.count('\n') + 1)
        .arg(offset - before.lastIndexOf('\n'));
}

QString readBy(const QJsonValue &value, Walkthrough::SelectBy *by)
{
    for (const SelectName &row : SelectNames) {
        if (value == QJsonValue(row.name)) {
            *by = row.by;
            return {};
        }
    }
    return "\"by\": " + mismatch("\"button\", \"doubleClick\" or \"return\"", value);
}

QString readField(const QString &name, const QJsonValue &value, const StepRule &rule,
                  Walkthrough::Step *step)
{
    if (name == rule.name) {
        step->value = value;
        if (rule.value.accepts(value))
            return {};
        const QJsonValue found = rule.value.isSecret ? QJsonValue("***") : value;
        return '"' + name + "\": " + mismatch(rule.value.expected, found);
    }
    if (name == "by" && step->name == "select")
        return readBy(value, &step->by);
    if (name == "within" && rule.waits) {
        step->within = value.toInt();
        return isMilliseconds(value) ? QString()
                                     : "\"within\": " + mismatch(Milliseconds.expected, value);
    }
    return QString("expected no field \"%1\" beside \"%2\", found it").arg(name, rule.name);
}

} // namespace

QString Walkthrough::load(const QString &fileName)
{
    m_fileName = fileName;
    m_steps.clear();
    QFile file(fileName);
    if (!file.open(QIODevice::ReadOnly))
        return QString("%1: expected a walkthrough, found no readable file: %2")
            .arg(fileName, file.errorString());
    const QByteArray text = file.readAll();
    QJsonParseError error;
    const QJsonDocument document = QJsonDocument::fromJson(text, &error);
    if (error.error != QJsonParseError::NoError) {
        return QString("%1: %2: expected JSON, found: %3")
            .arg(fileName, placeOf(text, error.offset), error.errorString());
    }
    if (!document.isArray())
        return QString("%1: expected an array of steps, found an object").arg(fileName);
    for (const QJsonValue &value : document.array()) {
        const QString wrong = addStep(value);
        if (wrong.isEmpty())
            continue;
        const size_t number = m_steps.size() + 1;
        m_steps.clear();
        return QString("%1: step %2: %3").arg(fileName).arg(number).arg(wrong);
    }
    return {};
}

QString Walkthrough::addStep(const QJsonValue &value)
{
    const QJsonObject object = value.toObject();
    const StepRule *rule = nullptr;
    for (const QString &name : object.keys())
        rule = rule ? rule : ruleOf(name);
    if (!rule)
        return mismatch("an object with one of " + stepNames(), value);

    Step step;
    step.number = int(m_steps.size()) + 1;
    step.name = rule->name;
    step.within = DefaultWithin;
    for (auto field = object.begin(); field != object.end(); ++field) {
        const QString wrong = readField(field.key(), *field, *rule, &step);
        if (!wrong.isEmpty())
            return wrong;
    }
    // Nothing but its own length ends a wait.
    if (step.name == "wait")
        step.within = LongestWait;
    m_steps.push_back(step);
    return {};
}
