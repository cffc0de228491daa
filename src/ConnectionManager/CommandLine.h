#ifndef COMMANDLINE_H
#define COMMANDLINE_H

#include <optional>

#include <QString>
#include <QStringList>

#include "CardHost.h"

/// What the user asked for on the command line; an empty text was not given.
struct CommandLine {
    QString card; ///< the file of a simulated card
    /// What the name of the card's reader begins with; empty for the first with a card.
    std::optional<QString> reader;
    std::optional<CardHost::Modem> modem; ///< its kind, and its device; none for the first
    QString language;
    QString plugins;
    QString walkthrough;
    QString screenshots;
    QString transcript;
    QString apduLog;
    QString trace;
    QString atDialect;
    bool listReaders = false;
    bool listModems = false;

    /// One line that says what is wrong; the other members then mean nothing.
    QString error;
    /// What --help or --version prints; nothing else is to be done then.
    QString information;

    /// Reads the arguments, the program's name first.  Needs a QCoreApplication.
    static CommandLine parse(const QStringList &arguments);
};

#endif
