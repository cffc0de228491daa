#include "WalkthroughPlayer.h"

#include <QApplication>
#include <QDir>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QKeySequence>
#include <QPointer>
#include <QPushButton>
#include <QRegularExpression>
#include <QTableWidget>
#include <QThread>
#include <QTimer>

#include "CardHost.h"
#include "MainWindow.h"
#include "Messages.h"
#include "PinDialog.h"
#include "Screenshot.h"
#include "ToolkitButton.h"
#include "ToolkitWindows.h"
#include "UrlBar.h"

using namespace ToolkitWindows;

namespace {

constexpr int StepFailed = 1;

QStringList rowTexts(const QTableWidget *table)
{
    QStringList texts;
    for (int row = 0; row < table->rowCount(); ++row)
        texts << (table->item(row, 0) ? table->item(row, 0)->text() : QString());
    return texts;
}

QString json(const QJsonObject &object)
{
    return QJsonDocument(object).toJson(QJsonDocument::Compact);
}

QString listed(const QStringList &texts)
{
    return QJsonDocument(QJsonArray::fromStringList(texts)).toJson(QJsonDocument::Compact);
}

// The expected fields as they are seen; empty objects tell of nothing seen.
QJsonObject sameFields(const QJsonObject &seen, const QJsonObject &expected)
{
    QJsonObject fields;
    for (const QString &name : expected.keys())
        fields[name] = seen[name];
    return fields;
}

QString latest(const QStringList &texts)
{
    constexpr int Shown = 3;
    return texts.isEmpty() ? QString("none") : texts.mid(texts.size() - Shown).join(", ");
}

QAbstractButton *pinButton(const PinDialog &dialog, const QJsonValue &meaning)
{
    if (meaning == QJsonValue("OK"))
        return dialog.okButton();
    return meaning == QJsonValue("Cancel") ? dialog.cancelButton() : nullptr;
}

} // namespace

WalkthroughPlayer::WalkthroughPlayer(const Walkthrough &walkthrough, MainWindow &window,
                                     const QString &screenshots)
    : m_walkthrough(walkthrough)
    , m_window(window)
    , m_screenshots(screenshots)
{
}

WalkthroughPlayer::Play WalkthroughPlayer::playerOf(const QString &name)
{
    static const QHash<QString, Play> players = {
        {"open", &WalkthroughPlayer::open},
        {"expectMenu", &WalkthroughPlayer::expectMenu},
        {"select", &WalkthroughPlayer::select},
        {"back", &WalkthroughPlayer::back},
        {"close", &WalkthroughPlayer::close},
        {"escape", &WalkthroughPlayer::key},
        {"key", &WalkthroughPlayer::key},
        {"expectBusy", &WalkthroughPlayer::expectBusy},
        {"expectClosed", &WalkthroughPlayer::expectClosed},
        {"expectMessage", &WalkthroughPlayer::expectMessage},
        {"expectCountdown", &WalkthroughPlayer::expectCountdown},
        {"press", &WalkthroughPlayer::press},
        {"expectInput", &WalkthroughPlayer::expectInput},
        {"type", &WalkthroughPlayer::type},
        {"erase", &WalkthroughPlayer::erase},
        {"closeBox", &WalkthroughPlayer::closeBox},
        {"expectPin", &WalkthroughPlayer::expectPin},
        {"confirmPin", &WalkthroughPlayer::confirmPin},
        {"enterPin", &WalkthroughPlayer::enterPin},
        {"expectTone", &WalkthroughPlayer::expectTone},
        {"expectUrl", &WalkthroughPlayer::expectUrl},
        {"expectNote", &WalkthroughPlayer::expectNote},
        {"answerUrl", &WalkthroughPlayer::answerUrl},
        {"expectResponse", &WalkthroughPlayer::expectResponse},
        {"modem", &WalkthroughPlayer::modem},
        {"timeout", &WalkthroughPlayer::timeOut},
        {"endSession", &WalkthroughPlayer::endSession},
        {"send", &WalkthroughPlayer::send},
        {"language", &WalkthroughPlayer::language},
        {"wait", &WalkthroughPlayer::wait},
        {"screenshot", &WalkthroughPlayer::screenshot},
        {"quit", &WalkthroughPlayer::quit},
    };
    return players.value(name);
}

void WalkthroughPlayer::start()
{
    m_sinceStep.start();
    scheduleNext();
}

QString WalkthroughPlayer::place() const
{
    const Walkthrough::Step &step = m_walkthrough.steps().at(m_index);
    return QString("%1: step %2 (%3)")
        .arg(m_walkthrough.fileName())
        .arg(step.number)
        .arg(step.name);
}

void WalkthroughPlayer::scheduleNext()
{
    QTimer::singleShot(Interval, this, &WalkthroughPlayer::playNext);
}

void WalkthroughPlayer::playNext()
{
    if (m_over)
        return;
    if (m_attempt != NoAttempt) {
        // The events of a step are still being handled.  In an event loop of its own that is the
        // window that they opened, and the next step is for it.
        if (QThread::currentThread()->loopLevel() <= m_attempt)
            return scheduleNext();
        m_attempt = NoAttempt;
        ++m_index;
        m_sinceStep.restart();
    }
    if (m_index == m_walkthrough.steps().size())
        return finish(0);
    scheduleNext();
    attempt(m_walkthrough.steps()[m_index]);
}

void WalkthroughPlayer::attempt(const Walkthrough::Step &step)
{
    const size_t index = m_index;
    m_attempt = QThread::currentThread()->loopLevel();
    const Outcome outcome = (this->*playerOf(step.name))(step);
    if (m_over || m_index != index)
        return;
    m_attempt = NoAttempt;
    if (outcome.kind == Outcome::Done) {
        ++m_index;
        m_sinceStep.restart();
    } else if (outcome.kind == Outcome::Failed || m_sinceStep.elapsed() >= step.within) {
        fail(outcome);
    }
}

void WalkthroughPlayer::finish(int status)
{
    m_over = true;
    QCoreApplication::exit(status);
}

void WalkthroughPlayer::fail(const Outcome &outcome)
{
    Messages::complain(
        QString("%1: expected %2, seen %3").arg(place(), outcome.expected, outcome.seen));
    finish(StepFailed);
}

WalkthroughPlayer::Outcome WalkthroughPlayer::open(const Walkthrough::Step &)
{
    ToolkitButton *button = m_window.toolkitButton();
    if (!button->isEnabled())
        return {Outcome::NotYet, "a card with a menu", "the SIM toolkit button is disabled"};
    clickAt(button, button->rect().center());
    return {Outcome::Done, {}, {}};
}

WalkthroughPlayer::Outcome WalkthroughPlayer::expectMenu(const Walkthrough::Step &step)
{
    const QJsonObject expected = step.value.toObject();
    const QTableWidget *table = menuTable();
    if (!table)
        return {Outcome::NotYet, json(expected), "no SIM toolkit window"};
    const auto *backButton = table->window()->findChild<QPushButton *>("STKPlugin_PushBtnBack");
    const QJsonObject all = {{"title", table->window()->windowTitle()},
                             {"items", QJsonArray::fromStringList(rowTexts(table))},
                             {"back", backButton && backButton->isEnabled()}};
    const QJsonObject seen = sameFields(all, expected);
    if (seen == expected)
        return {Outcome::Done, {}, {}};
    return {Outcome::NotYet, json(expected), json(seen)};
}

WalkthroughPlayer::Outcome WalkthroughPlayer::select(const Walkthrough::Step &step)
{
    const QString wanted = step.value.toString();
    const QString expected = QString("a row \"%1\" to select").arg(wanted);
    const QPointer<QTableWidget> table = menuTable();
    if (!table)
        return {Outcome::NotYet, expected, "no SIM toolkit window"};
    if (isWaiting())
        return {Outcome::NotYet, expected, "a list that waits for the card"};
    const QStringList rows = rowTexts(table);
    QTableWidgetItem *item = table->item(rows.indexOf(wanted), 0);
    if (!item)
        return {Outcome::NotYet, expected, listed(rows)};

    table->scrollToItem(item);
    const QPoint place = table->visualItemRect(item).center();
    const QPoint inTable = table->viewport()->mapTo(table, place);
    clickAt(table, inTable);
    // The end of a wait may be a moment away although its cursor is gone: the list ignores the
    // mouse until then.
    if (!table || table->currentItem() != item)
        return {Outcome::NotYet, expected, "a list that ignores the mouse"};
    if (step.by == Walkthrough::SelectBy::DoubleClick)
        doubleClickAt(table, inTable);
    else if (step.by == Walkthrough::SelectBy::Return)
        pressKey(table, Qt::Key_Return);
    else
        return clickButton("STKPlugin_PushBtnSelect", expected);
    return {Outcome::Done, {}, {}};
}

WalkthroughPlayer::Outcome WalkthroughPlayer::back(const Walkthrough::Step &)
{
    return clickButton("STKPlugin_PushBtnBack", "an enabled Back button");
}

WalkthroughPlayer::Outcome WalkthroughPlayer::close(const Walkthrough::Step &)
{
    return clickButton("STKPlugin_PushBtnClose", "an enabled Close button");
}

WalkthroughPlayer::Outcome WalkthroughPlayer::clickButton(const QString &objectName,
                                                          const QString &words)
{
    const QWidget *window = toolkit();
    if (!window)
        return {Outcome::NotYet, words, "no SIM toolkit window"};
    if (isWaiting())
        return {Outcome::NotYet, words, "a window that waits for the card"};
    auto *button = window->findChild<QPushButton *>(objectName);
    if (!button || !button->isEnabled())
        return {Outcome::NotYet, words, "the button is disabled"};
    clickAt(button, button->rect().center());
    return {Outcome::Done, {}, {}};
}

WalkthroughPlayer::Outcome WalkthroughPlayer::key(const Walkthrough::Step &step)
{
    QWidget *window = top();
    if (!window)
        return {Outcome::NotYet, "a window of the SIM toolkit for the key", "none"};
    const bool escape = step.name == "escape";
    pressKey(window,
             escape ? QKeySequence(Qt::Key_Escape)
                    : QKeySequence(step.value.toString(), QKeySequence::PortableText));
    return {Outcome::Done, {}, {}};
}

WalkthroughPlayer::Outcome WalkthroughPlayer::expectBusy(const Walkthrough::Step &step)
{
    const auto words = [](bool busy) {
        return busy ? QString("a wait cursor") : QString("no wait cursor");
    };
    if (isWaiting() == step.value.toBool())
        return {Outcome::Done, {}, {}};
    return {Outcome::NotYet, words(step.value.toBool()), words(isWaiting())};
}

WalkthroughPlayer::Outcome WalkthroughPlayer::expectClosed(const Walkthrough::Step &)
{
    const QWidget *window = toolkit();
    if (!window)
        return {Outcome::Done, {}, {}};
    return {Outcome::NotYet, "no SIM toolkit window",
            QString("one titled \"%1\"").arg(window->windowTitle())};
}

WalkthroughPlayer::Outcome WalkthroughPlayer::expectMessage(const Walkthrough::Step &step)
{
    const QMessageBox *box = messageBox();
    if (step.value == QJsonValue(false)) {
        if (!box)
            return {Outcome::Done, {}, {}};
        return {Outcome::NotYet, "no message box", json(describe(*box))};
    }
    QJsonObject expected = step.value.toObject();
    if (expected.contains("buttons")) {
        QStringList texts = expected["buttons"].toVariant().toStringList();
        texts.sort();
        expected["buttons"] = QJsonArray::fromStringList(texts);
    }
    if (!box)
        return {Outcome::NotYet, json(expected), "no message box on top"};
    const QJsonObject seen = sameFields(describe(*box), expected);
    if (seen == expected)
        return {Outcome::Done, {}, {}};
    return {Outcome::NotYet, json(expected), json(seen)};
}

WalkthroughPlayer::Outcome WalkthroughPlayer::expectCountdown(const Walkthrough::Step &step)
{
    const QMessageBox *box = messageBox();
    const int seen = box ? countdown(*box) : -1;
    if (seen == step.value.toInt())
        return {Outcome::Done, {}, {}};
    return {Outcome::NotYet, QString("a message box that counts %1").arg(step.value.toInt()),
            !box           ? QString("no message box on top")
                : seen < 0 ? QString("no countdown")
                           : QString::number(seen)};
}

WalkthroughPlayer::Outcome WalkthroughPlayer::press(const Walkthrough::Step &step)
{
    const QString expected = QString("an enabled %1 button").arg(step.value.toString());
    QAbstractButton *wanted = m_window.pinDialog() ? pinButton(*m_window.pinDialog(), step.value)
                                                   : button(step.value.toString());
    if (!wanted)
        return {Outcome::NotYet, expected, "no such button in the window on top"};
    if (!wanted->isEnabled())
        return {Outcome::NotYet, expected, "the button is disabled"};
    clickAt(wanted, wanted->rect().center());
    return {Outcome::Done, {}, {}};
}

WalkthroughPlayer::Outcome WalkthroughPlayer::expectInput(const Walkthrough::Step &step)
{
    const QJsonObject all = describeInput();
    const QJsonObject expected = step.value.toObject();
    const QString seen = all.isEmpty() ? QString("no input window on top")
                                       : json(expected.isEmpty() ? all : sameFields(all, expected));
    const QString wanted = expected.isEmpty() ? QString("no input window") : json(expected);
    const bool holds = expected.isEmpty() ? all.isEmpty() : sameFields(all, expected) == expected;
    return holds ? Outcome{Outcome::Done, {}, {}} : Outcome{Outcome::NotYet, wanted, seen};
}

WalkthroughPlayer::Outcome WalkthroughPlayer::type(const Walkthrough::Step &step)
{
    QLineEdit *line = inputLine();
    if (!line)
        return {Outcome::NotYet, "an input window to type in", "none on top"};
    typeText(line, step.value.toString());
    return {Outcome::Done, {}, {}};
}

WalkthroughPlayer::Outcome WalkthroughPlayer::erase(const Walkthrough::Step &)
{
    QLineEdit *line = inputLine();
    if (!line)
        return {Outcome::NotYet, "an input window to erase in", "none on top"};
    pressKey(line, QKeySequence::SelectAll);
    pressKey(line, Qt::Key_Backspace);
    return {Outcome::Done, {}, {}};
}

WalkthroughPlayer::Outcome WalkthroughPlayer::closeBox(const Walkthrough::Step &)
{
    if (!messageBox() && !inputWindow())
        return {Outcome::NotYet, "a message box or input window to close", "none on top"};
    closeByTitleBar(top());
    return {Outcome::Done, {}, {}};
}

WalkthroughPlayer::Outcome WalkthroughPlayer::expectPin(const Walkthrough::Step &step)
{
    const PinDialog *dialog = m_window.pinDialog();
    if (!step.value.isObject())
        return {dialog ? Outcome::NotYet : Outcome::Done, "no PIN dialog", "one"};
    const QJsonObject expected = step.value.toObject();
    if (!dialog)
        return {Outcome::NotYet, json(expected), "no PIN dialog"};
    const CardHost::PinRequest &request = dialog->request();
    const QJsonObject seen = sameFields({{"card", QString::fromStdString(request.card)},
                                         {"tries", request.triesLeft},
                                         {"wrong", request.wrong},
                                         {"ok", dialog->okButton()->isEnabled()}},
                                        expected);
    return {seen == expected ? Outcome::Done : Outcome::NotYet, json(expected), json(seen)};
}

WalkthroughPlayer::Outcome WalkthroughPlayer::confirmPin(const Walkthrough::Step &)
{
    const PinDialog *dialog = m_window.pinDialog();
    QCheckBox *box = dialog ? dialog->confirmation() : nullptr;
    if (!box)
        return {Outcome::NotYet, "a PIN dialog that warns of the last try", "none"};
    clickAt(box, QPoint(box->height() / 2, box->height() / 2));
    return {Outcome::Done, {}, {}};
}

// No message of this step shows what is entered.
WalkthroughPlayer::Outcome WalkthroughPlayer::enterPin(const Walkthrough::Step &step)
{
    const PinDialog *dialog = m_window.pinDialog();
    if (!dialog)
        return {Outcome::NotYet, "a PIN dialog to enter the PIN in", "none"};
    typeText(dialog->field(), step.value.toString());
    if (!dialog->okButton()->isEnabled())
        return {Outcome::Failed, "an enabled OK button",
                "it is disabled; a last try needs confirmPin"};
    clickAt(dialog->okButton(), dialog->okButton()->rect().center());
    return {Outcome::Done, {}, {}};
}

WalkthroughPlayer::Outcome WalkthroughPlayer::expectTone(const Walkthrough::Step &step)
{
    if (m_log.takeTone(step.value.toInt()))
        return {Outcome::Done, {}, {}};
    return {Outcome::NotYet, QString("tone %1").arg(step.value.toInt()), latest(m_log.sounds())};
}

WalkthroughPlayer::Outcome WalkthroughPlayer::expectUrl(const Walkthrough::Step &step)
{
    const QString seen = latest(m_log.urls());
    if (!step.value.isString()) {
        if (m_log.urls().isEmpty())
            return {Outcome::Done, {}, {}};
        return {Outcome::Failed, "no address for the browser", seen};
    }
    if (m_log.takeUrl(step.value.toString()))
        return {Outcome::Done, {}, {}};
    return {Outcome::NotYet, "the address " + step.value.toString(), seen};
}

// Marks of a direction of writing are not seen.
WalkthroughPlayer::Outcome WalkthroughPlayer::expectNote(const Walkthrough::Step &step)
{
    static const QRegularExpression marks("[\\x{200f}\\x{2066}-\\x{2069}]");
    const QString seen = m_window.note().remove(marks), expected = step.value.toString();
    return {seen == expected ? Outcome::Done : Outcome::NotYet, json({{"note", expected}}),
            json({{"note", seen}})};
}

WalkthroughPlayer::Outcome WalkthroughPlayer::answerUrl(const Walkthrough::Step &step)
{
    const UrlBar *bar = m_window.urlBar();
    const QString expected = "a question about an address to answer";
    if (!bar->isVisible())
        return {Outcome::NotYet, expected, "none"};
    QPushButton *button = step.value == QJsonValue("open") ? bar->openButton()
        : step.value == QJsonValue("always")               ? bar->alwaysButton()
                                                           : bar->declineButton();
    if (!button->isEnabled())
        return {Outcome::NotYet, expected, "the button is disabled"};
    clickAt(button, button->rect().center());
    return {Outcome::Done, {}, {}};
}

WalkthroughPlayer::Outcome WalkthroughPlayer::expectResponse(const Walkthrough::Step &step)
{
    const QString seen = latest(m_log.answers());
    if (!step.value.isObject()) {
        if (m_log.answers().isEmpty())
            return {Outcome::Done, {}, {}};
        return {Outcome::Failed, "no answer to the card", seen};
    }
    const QJsonObject expected = step.value.toObject();
    if (m_log.takeEntry(expected))
        return {Outcome::Done, {}, {}};
    return {Outcome::NotYet, json(expected), seen};
}

WalkthroughPlayer::Outcome WalkthroughPlayer::modem(const Walkthrough::Step &step)
{
    if (step.value.toString() == "removed")
        CardHost::removeModem();
    else
        CardHost::insertModem();
    return {Outcome::Done, {}, {}};
}

WalkthroughPlayer::Outcome WalkthroughPlayer::timeOut(const Walkthrough::Step &)
{
    CardHost::timeOutSession();
    return {Outcome::Done, {}, {}};
}

WalkthroughPlayer::Outcome WalkthroughPlayer::endSession(const Walkthrough::Step &)
{
    CardHost::endSession();
    return {Outcome::Done, {}, {}};
}

WalkthroughPlayer::Outcome WalkthroughPlayer::send(const Walkthrough::Step &step)
{
    const std::string error = CardHost::sendCommand(json(step.value.toObject()).toStdString());
    if (error.empty())
        return {Outcome::Done, {}, {}};
    return {Outcome::Failed, "a command that can be sent", QString::fromStdString(error)};
}

WalkthroughPlayer::Outcome WalkthroughPlayer::language(const Walkthrough::Step &step)
{
    m_window.setLanguage(step.value.toString());
    return {Outcome::Done, {}, {}};
}

WalkthroughPlayer::Outcome WalkthroughPlayer::wait(const Walkthrough::Step &step)
{
    const int length = step.value.toInt();
    if (m_sinceStep.elapsed() >= length)
        return {Outcome::Done, {}, {}};
    return {Outcome::NotYet, QString("%1 ms to pass").arg(length), "less"};
}

WalkthroughPlayer::Outcome WalkthroughPlayer::screenshot(const Walkthrough::Step &step)
{
    if (m_screenshots.isEmpty())
        return {Outcome::Done, {}, {}};
    const QString file = QDir(m_screenshots).filePath(step.value.toString() + ".png");
    const QString error = saveScreenshot(file);
    if (error.isEmpty())
        return {Outcome::Done, {}, {}};
    return {Outcome::Failed, "a picture", error};
}

WalkthroughPlayer::Outcome WalkthroughPlayer::quit(const Walkthrough::Step &)
{
    finish(0);
    return {Outcome::Done, {}, {}};
}
