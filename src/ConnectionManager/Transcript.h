#ifndef TRANSCRIPT_H
#define TRANSCRIPT_H

#include <mutex>

#include <QFile>
#include <QList>
#include <QObject>

#include "CardHost.h"

/// Listens to what passes between card and terminal.  The entries come from the modem service's
/// threads; they are written to the file at once and handed to the GUI thread in bundles.
class Transcript : public QObject {
    Q_OBJECT

public:
    Transcript();
    ~Transcript() override;

    /// Writes every later entry to the file too, one JSON object a line, flushed line by line.
    /// The result is empty, or one line that says why the file cannot be written; where that shows
    /// only later the line goes to standard error, and the file is closed.
    QString writeTo(const QString &fileName);

signals:
    /// In the order of the events.  Emitted on the GUI thread.
    void entriesAdded(const QList<CardHost::TranscriptEntry> &entries);

private:
    void add(const CardHost::TranscriptEntry &entry);
    void write(const CardHost::TranscriptEntry &entry);
    QString problem() const;
    // Called by its name: the thread sanitizer cannot see that Qt's queue orders a functor's
    // memory.
    Q_INVOKABLE void deliver();

    std::mutex m_mutex;
    QList<CardHost::TranscriptEntry> m_pending;
    QFile m_file;
    int m_listener = 0;
};

#endif
