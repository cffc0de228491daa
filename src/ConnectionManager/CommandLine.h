#ifndef COMMANDLINE_H
#define COMMANDLINE_H

#include <QString>
#include <QStringList>

/// What the user asked for on the command line; an empty text was not given.
struct CommandLine {
    QString card;
    QString language;
    QString plugins;
    QString walkthrough;
    QString screenshots;
    QString transcript;
    QString trace;

    /// One line that says what is wrong; the other members then mean nothing.
    QString error;
    /// What --help or --version prints; nothing else is to be done then.
    QString information;

    /// Reads the arguments, the program's name first.  Needs a QCoreApplication.
    static CommandLine parse(const QStringList &arguments);
};

#endif
