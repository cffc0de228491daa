#include "Messages.h"

#include <cstdio>
#include <cstdlib>
#include <mutex>

#include <QFile>
#include <QStringList>

namespace {

// Threads of the plug-in and of the modem service write as well.
std::mutex channel;
QFile *trace = nullptr;
// What Qt says while it looks for a display: the first line names the reason of a failure.
bool lookingForDisplay = true;
QStringList startWarnings;
const QString ProgramName = "ConnectionManager: ";

[[noreturn]] void endForMissingDisplay()
{
    const QString reason = startWarnings.value(0, "no window system was found");
    std::fprintf(stderr, "ConnectionManager: no display: %s\n", qPrintable(reason));
    std::fflush(stderr);
    std::_Exit(Messages::CannotStart);
}

void writeError(const QString &line)
{
    std::fprintf(stderr, "%s\n", line.toUtf8().constData());
    std::fflush(stderr);
}

QString traceProblem(const QString &file, const QFile &out)
{
    return QString("%1: cannot write the trace: %2").arg(file, out.errorString());
}

void writeTrace(const QString &line)
{
    if (!trace)
        return;
    trace->write(line.toUtf8() + '\n');
    if (trace->flush())
        return;
    writeError(ProgramName + traceProblem(trace->fileName(), *trace));
    trace = nullptr;
}

// The offscreen platform says what a window manager would do for windows.
bool isNoise(const QString &line)
{
    return line.startsWith("This plugin does not support ");
}

void handle(QtMsgType type, const QMessageLogContext &, const QString &line)
{
    const std::lock_guard lock(channel);
    if (type == QtDebugMsg)
        writeTrace(line);
    else if (isNoise(line))
        return;
    else if (!lookingForDisplay)
        writeError(line);
    else if (type == QtFatalMsg)
        endForMissingDisplay();
    else
        startWarnings << line.simplified();
}

} // namespace

void Messages::install()
{
    qInstallMessageHandler(handle);
}

void Messages::displayFound()
{
    const std::lock_guard lock(channel);
    lookingForDisplay = false;
    for (const QString &line : qAsConst(startWarnings))
        writeError(line);
    startWarnings.clear();
}

QString Messages::traceTo(const QString &file)
{
    static QFile out;
    bool open = false;
    if (file == "-") {
        open = out.open(stderr, QIODevice::WriteOnly);
    } else {
        out.setFileName(file);
        open = out.open(QIODevice::WriteOnly | QIODevice::Truncate);
    }
    if (!open)
        return traceProblem(file, out);
    const std::lock_guard lock(channel);
    trace = &out;
    return {};
}

void Messages::complain(const QString &line)
{
    const std::lock_guard lock(channel);
    writeError(ProgramName + line);
}
