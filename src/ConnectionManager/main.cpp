#include <cstdio>

#include <QApplication>
#include <QDir>

#include "CommandLine.h"
#include "HostUi.h"
#include "Languages.h"
#include "MainWindow.h"
#include "Messages.h"
#include "ModemIcon.h"
#include "ModemMenu.h"
#include "PluginHost.h"
#include "ServiceEvents.h"
#include "Transcript.h"
#include "WalkthroughPlayer.h"
#include "platform/CommonUtils.h"

namespace {

CommandLine readCommandLine(int argc, char *argv[])
{
    const QCoreApplication application(argc, argv);
    return CommandLine::parse(QCoreApplication::arguments());
}

bool hasScreen()
{
    const QString platform = QGuiApplication::platformName();
    return platform != "offscreen" && platform != "minimal";
}

// Somebody who could close a message box is there.
bool isWatched(const CommandLine &line)
{
    return line.walkthrough.isEmpty() && hasScreen();
}

// Without a desktop to ask, Qt's font is larger than any desktop's.
void useDesktopFontSize()
{
    QFont font = QApplication::font();
    font.setPointSize(9);
    QApplication::setFont(font);
}

// What is heard of a card without anybody at the windows.
bool isListening(const CommandLine &line)
{
    return !line.transcript.isEmpty() || !line.apduLog.isEmpty() || !line.trace.isEmpty();
}

const char *readerState(CardHost::Reader::State state)
{
    switch (state) {
    case CardHost::Reader::State::Card:
        return "card";
    case CardHost::Reader::State::Mute:
        return "no answer";
    case CardHost::Reader::State::InUse:
        return "in use";
    case CardHost::Reader::State::Empty:
        break;
    }
    return "empty";
}

int printReaders()
{
    const CardHost::ReaderList list = CardHost::listReaders();
    if (list.readers.empty()) {
        Messages::complain(list.problem ? QString::fromStdString(list.problem->text)
                                        : "no smart-card reader is connected");
        return 1;
    }
    for (const CardHost::Reader &reader : list.readers)
        std::printf("%s: %s\n", reader.name.c_str(), readerState(reader.state));
    return 0;
}

std::string modemState(const CardHost::Modem &modem)
{
    switch (modem.state) {
    case CardHost::Modem::State::InUse:
        return modem.user.empty() ? "in use" : "in use by " + modem.user;
    case CardHost::Modem::State::Denied:
        return "no permission";
    case CardHost::Modem::State::Free:
        break;
    }
    return "free";
}

int printModems()
{
    const std::vector<CardHost::Modem> modems = CardHost::listModems();
    if (modems.empty())
        Messages::complain("no modem is connected");
    for (const CardHost::Modem &modem : modems) {
        const std::string name = modem.name.empty() ? "" : modem.name + "  ";
        std::printf("%s  %s%s\n", qPrintable(ModemMenu::addressOf(modem)), name.c_str(),
                    modemState(modem).c_str());
    }
    return modems.empty() ? 1 : 0;
}

int cannotStart(const CommandLine &line, const QString &reason)
{
    Messages::complain(reason);
    if (isWatched(line)) {
        CommonUtils::ShowMessage(QMessageBox::Critical, nullptr, Languages::text("IDS_CM_TITLE"),
                                 reason, "IDS_OK", {}, {}, true, Qt::WindowCloseButtonHint, nullptr,
                                 {}, true);
    }
    return Messages::CannotStart;
}

QString openFiles(const CommandLine &line, Transcript &transcript, Walkthrough &walkthrough)
{
    if (!line.trace.isEmpty()) {
        const QString error = Messages::traceTo(line.trace);
        if (!error.isEmpty())
            return error;
    }
    if (!line.transcript.isEmpty()) {
        const QString error = transcript.writeTo(line.transcript);
        if (!error.isEmpty())
            return error;
    }
    if (!line.apduLog.isEmpty()) {
        const std::string name = QFile::encodeName(line.apduLog).toStdString();
        const std::string error = CardHost::captureApdus(name);
        if (!error.empty())
            return QString::fromStdString(error);
    }
    if (!line.atDialect.isEmpty()) {
        const std::string name = QFile::encodeName(line.atDialect).toStdString();
        const std::string error = CardHost::setAtDialect(name);
        if (!error.empty())
            return QString::fromStdString(error);
    }
    if (!line.screenshots.isEmpty() && !QDir().mkpath(line.screenshots))
        return line.screenshots + ": cannot make this folder for the pictures";
    return line.walkthrough.isEmpty() ? QString() : walkthrough.load(line.walkthrough);
}

QString pluginsFolder(const CommandLine &line)
{
    const QString folder = line.plugins.isEmpty()
        ? QCoreApplication::applicationDirPath() + "/../plugins"
        : line.plugins;
    return QDir::cleanPath(QDir(folder).absolutePath());
}

void noteAddresses(MainWindow &window)
{
    HostUi::setUrlOpener([&window](const QUrl &url) {
        window.askUrl(url);
        return true;
    });
    HostUi::setUrlRefusalListener([&window](const QString &address, HostUi::UrlRefusal reason) {
        window.noteRefusedUrl(address, reason);
    });
}

// A walkthrough's card may ask for addresses: they are noted, no browser is started.
void noteForWalkthrough(MainWindow &window, Transcript &transcript, WalkthroughPlayer &player)
{
    TerminalLog &log = player.log();
    HostUi::setUrlOpener([&window, &log](const QUrl &url) {
        log.addUrl(url);
        window.askUrl(url);
        return true;
    });
    window.setBrowser([](const QUrl &) { return true; });
    HostUi::setSoundListener([&log](const QString &fileName) { log.addSound(fileName); });
    QObject::connect(
        &transcript, &Transcript::entriesAdded, &player,
        [&log](const QList<CardHost::TranscriptEntry> &entries) { log.addEntries(entries); });
}

void stopNoting()
{
    HostUi::setUrlOpener({});
    HostUi::setUrlRefusalListener({});
    HostUi::setSoundListener({});
}

int play(const Walkthrough &walkthrough, MainWindow &window, Transcript &transcript,
         const QString &screenshots)
{
    WalkthroughPlayer player(walkthrough, window, screenshots);
    noteForWalkthrough(window, transcript, player);
    player.start();
    const int status = QApplication::exec();
    stopNoting();
    if (player.isOver())
        return status;
    Messages::complain(player.place() + ": expected the window to stay open, seen its end");
    return 1;
}

// Puts the card in; empty, or why nothing can come of this start.  What is wrong in a reader or
// with a modem is told later.
QString begin(const CommandLine &line, MainWindow &window)
{
    const QString cardError = line.card.isEmpty() ? QString() : window.openCard(line.card);
    if (!cardError.isEmpty())
        return cardError;
    const bool isUsed = hasScreen() || !line.walkthrough.isEmpty();
    if (!isUsed && !isListening(line)) {
        return "there is no display, and so nothing to do: expected --walkthrough to use the "
               "windows, or --transcript, --apdu-log or --trace to listen";
    }
    if (!isUsed) {
        Messages::complain("there is no display: listening until the program is stopped");
        window.declinePins();
    }
    if (line.reader)
        window.openReader(*line.reader);
    if (line.modem)
        window.openModem(*line.modem);
    return {};
}

int runWindow(const CommandLine &line, PluginHost &plugin, Transcript &transcript,
              const Walkthrough &walkthrough)
{
    ServiceEvents events;
    MainWindow window(plugin, transcript, events);
    HostUi::setMainWindow(&window);
    noteAddresses(window);
    window.setLanguage(line.language.isEmpty() ? Languages::ofDesktop() : line.language);
    window.show();
    const QString error = begin(line, window);
    if (!error.isEmpty())
        Messages::complain(error);
    int status = Messages::CannotStart;
    // A person may open another card in the window; nothing else can.
    if (error.isEmpty() || isWatched(line)) {
        status = line.walkthrough.isEmpty()
            ? QApplication::exec()
            : play(walkthrough, window, transcript, line.screenshots);
    }
    window.hide();
    // The plug-in's windows belong to this one and its callbacks end first.
    plugin.unload();
    CardHost::closeCard();
    stopNoting();
    return status;
}

} // namespace

int main(int argc, char *argv[])
{
    QCoreApplication::setApplicationName("ConnectionManager");
    QCoreApplication::setApplicationVersion(APPLICATION_VERSION);
    const CommandLine line = readCommandLine(argc, argv);
    if (!line.information.isEmpty()) {
        std::fputs(qPrintable(line.information), stdout);
        return 0;
    }
    if (!line.error.isEmpty()) {
        Messages::complain(line.error);
        return Messages::CannotStart;
    }

    if (line.listReaders)
        return printReaders();

    if (line.listModems)
        return printModems();

    Messages::install();
#if QT_VERSION < 0x060000
    QApplication::setAttribute(Qt::AA_UseHighDpiPixmaps); // later ones always do
#endif
    const QApplication application(argc, argv);
    Messages::displayFound();
    if (!hasScreen())
        useDesktopFontSize();
    QApplication::setWindowIcon(ModemIcon::simCard());
    QApplication::setDesktopFileName("connection-manager");
    QApplication::setQuitOnLastWindowClosed(false);
    Languages::apply(line.language.isEmpty() ? Languages::ofDesktop() : line.language);

    Transcript transcript;
    Walkthrough walkthrough;
    const QString fileError = openFiles(line, transcript, walkthrough);
    if (!fileError.isEmpty())
        return cannotStart(line, fileError);
    PluginHost plugin;
    const QString folder = pluginsFolder(line);
    HostUi::setPluginLibraryPath(QFileInfo(folder).path());
    const QString pluginError = plugin.load(folder);
    if (!pluginError.isEmpty())
        return cannotStart(line, pluginError);
    return runWindow(line, plugin, transcript, walkthrough);
}
