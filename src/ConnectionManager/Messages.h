#ifndef MESSAGES_H
#define MESSAGES_H

#include <QString>

/// Where the lines of Qt's message channel go.
///
/// Debug lines are the plug-in's trace: they go to the trace file, or nowhere.  Warnings go to
/// standard error.  A fatal message that comes from a missing display ends the process with one
/// line and exit status 2.
namespace Messages {

/// Exit status of a start that could not be made.
constexpr int CannotStart = 2;

/// Takes the channel over.  To be called before the QApplication is made.
void install();

/// The QApplication exists, and so does its display.
void displayFound();

/// Writes debug lines to the file from now on, line by line; "-" is standard error.  The result is
/// empty, or one line that says why the file cannot be written; where that shows only later the
/// line goes to standard error, and the trace is over.
QString traceTo(const QString &file);

/// One line on standard error, with the program's name in front.
void complain(const QString &line);

} // namespace Messages

#endif
