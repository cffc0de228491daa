#ifndef TERMINALLOG_H
#define TERMINALLOG_H

#include <QJsonObject>
#include <QList>
#include <QStringList>
#include <QUrl>

#include "CardHost.h"

/// What the terminal did that no step of a walkthrough has expected yet: entries of the transcript,
/// addresses for the browser, sound files.  What is taken out is gone, with all that came before
/// it.
class TerminalLog {
public:
    void addEntries(const QList<CardHost::TranscriptEntry> &entries);
    void addUrl(const QUrl &url);
    void addSound(const QString &fileName);

    /// Whether an entry has all these fields.  Without "event" a response is looked for.
    bool takeEntry(QJsonObject fields);
    bool takeUrl(const QString &address);
    bool takeTone(int number);

    /// The answers to the card, for people and in order: responses, and answers that were refused.
    QStringList answers() const;
    const QStringList &urls() const { return m_urls; }
    /// Names of the files, without their folder.
    const QStringList &sounds() const { return m_sounds; }

private:
    QList<QJsonObject> m_entries;
    QStringList m_urls;
    QStringList m_sounds;
};

#endif
