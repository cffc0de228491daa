#include "Transcript.h"

#include "Messages.h"

Transcript::Transcript()
{
    m_listener = CardHost::addTranscriptListener(
        [this](const CardHost::TranscriptEntry &entry) { add(entry); });
}

Transcript::~Transcript()
{
    CardHost::removeTranscriptListener(m_listener);
}

QString Transcript::writeTo(const QString &fileName)
{
    const std::lock_guard lock(m_mutex);
    m_file.setFileName(fileName);
    if (!m_file.open(QIODevice::WriteOnly | QIODevice::Truncate))
        return problem();
    return {};
}

void Transcript::add(const CardHost::TranscriptEntry &entry)
{
    const std::lock_guard lock(m_mutex);
    write(entry);
    if (m_pending.isEmpty())
        QMetaObject::invokeMethod(this, "deliver", Qt::QueuedConnection);
    m_pending << entry;
}

void Transcript::write(const CardHost::TranscriptEntry &entry)
{
    if (!m_file.isOpen())
        return;
    m_file.write(QByteArray::fromStdString(entry.json) + '\n');
    if (m_file.flush())
        return;
    Messages::complain(problem());
    m_file.close();
}

QString Transcript::problem() const
{
    return QString("%1: cannot write the transcript: %2")
        .arg(m_file.fileName(), m_file.errorString());
}

void Transcript::deliver()
{
    QList<CardHost::TranscriptEntry> entries;
    {
        const std::lock_guard lock(m_mutex);
        entries.swap(m_pending);
    }
    emit entriesAdded(entries);
}
