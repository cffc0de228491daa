#include "CommandLine.h"

#include <QCommandLineParser>
#include <QFileInfo>

#include "Languages.h"

namespace {

struct OptionRow {
    const char *name;
    const char *value;
    const char *description;
    QString CommandLine::*target;
};

const OptionRow Options[] = {
    {"card", "CARD",
     "Put a card into the modem: the simulated card of a scenario FILE, pcsc for the card in the "
     "first reader that has one, pcsc:READER for the card in the reader whose name begins so, "
     "at:DEVICE for the card in a modem with AT commands, mbim:DEVICE for one with MBIM, or mbim: "
     "for the first of these.",
     &CommandLine::card},
    {"at-dialect", "FILE",
     "The names of the toolkit's AT commands where a modem has its own: a JSON object like "
     "{\"+CUSATP\": \"^OWN\"}.",
     &CommandLine::atDialect},
    {"language", "LL", "Language of the user interface: en, de, fr, es, zh_CN or ar.",
     &CommandLine::language},
    {"plugins", "DIR", "Folder that holds STKPlugin/libSTKPlugin.so.", &CommandLine::plugins},
    {"walkthrough", "FILE", "Play these steps on the windows, then quit.",
     &CommandLine::walkthrough},
    {"screenshots", "DIR", "Where the pictures of a walkthrough go.", &CommandLine::screenshots},
    {"transcript", "FILE", "Write what passes between card and terminal, as JSON Lines.",
     &CommandLine::transcript},
    {"apdu-log", "FILE",
     "Write the commands to a card in a reader or a modem, and its answers, as pcap.",
     &CommandLine::apduLog},
    {"trace", "FILE", "Write the trace lines of the plug-in; - is standard error.",
     &CommandLine::trace},
};

const QString AnyReader = "pcsc";
const QString NamedReader = "pcsc:";

// A file whose name looks like a reader's is reached as ./pcsc.
void findReader(CommandLine *line)
{
    const bool isNamed = line->card.startsWith(NamedReader) && line->card != NamedReader;
    if (line->card != AnyReader && !isNamed)
        return;
    line->reader = line->card.mid(NamedReader.size());
    line->card.clear();
}

struct ModemPrefix {
    QString text;
    CardHost::Modem::Kind kind;
    bool needsDevice;
};
const ModemPrefix ModemPrefixes[] = {{"at:", CardHost::Modem::Kind::At, true},
                                     {"mbim:", CardHost::Modem::Kind::Mbim, false}};

// The same holds for a modem's.
void findModem(CommandLine *line)
{
    for (const ModemPrefix &prefix : ModemPrefixes) {
        if (!line->card.startsWith(prefix.text) ||
            (prefix.needsDevice && line->card == prefix.text))
            continue;
        line->modem.emplace();
        line->modem->kind = prefix.kind;
        line->modem->device = QFile::encodeName(line->card.mid(prefix.text.size())).toStdString();
        line->card.clear();
        return;
    }
}

QString firstError(const CommandLine &line)
{
    if (!line.language.isEmpty() && !Languages::isKnown(line.language)) {
        return QString("unknown language \"%1\": expected one of %2")
            .arg(line.language, Languages::codes().join(", "));
    }
    if (line.card == NamedReader)
        return QString("option --card %1 needs the start of a reader's name").arg(NamedReader);
    for (const ModemPrefix &prefix : ModemPrefixes) {
        if (line.card == prefix.text)
            return QString("option --card %1 needs a device, as in %1/dev/ttyUSB2")
                .arg(prefix.text);
    }
    if (!line.card.isEmpty() && !QFileInfo::exists(line.card))
        return line.card + ": no such card scenario";
    return {};
}

} // namespace

CommandLine CommandLine::parse(const QStringList &arguments)
{
    QCommandLineParser parser;
    parser.setApplicationDescription("The connection manager of a mobile broadband modem.");
    // The parser's own help option would also offer arguments of Qt, which are not read here.
    const QCommandLineOption help({"h", "help"}, "Show this help.");
    const QCommandLineOption version({"v", "version"}, "Show the version.");
    const QCommandLineOption readers("list-readers", "List the card readers with their state.");
    const QCommandLineOption modems("list-modems", "List the modems with their state.");
    parser.addOptions({help, version, readers, modems});
    for (const OptionRow &row : Options)
        parser.addOption({row.name, row.description, row.value});

    CommandLine line;
    if (!parser.parse(arguments)) {
        line.error = parser.errorText();
        return line;
    }
    if (parser.isSet(help)) {
        line.information = parser.helpText();
        return line;
    }
    if (!parser.positionalArguments().isEmpty()) {
        line.error =
            QString("unexpected argument \"%1\"").arg(parser.positionalArguments().first());
        return line;
    }
    for (const OptionRow &row : Options) {
        if (parser.isSet(row.name) && parser.value(row.name).isEmpty()) {
            line.error = QString("option --%1 needs a %2").arg(row.name, row.value);
            return line;
        }
        line.*row.target = parser.value(row.name);
    }
    line.listReaders = parser.isSet(readers);
    line.listModems = parser.isSet(modems);
    findReader(&line);
    findModem(&line);
    line.error = firstError(line);
    // Last, so that a script can have its arguments checked before it goes on.
    if (line.error.isEmpty() && parser.isSet(version))
        line.information = "ConnectionManager " + QCoreApplication::applicationVersion() + '\n';
    return line;
}
