#include "Transcript.h"

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
        return QString("%1: cannot write the transcript: %2").arg(fileName, m_file.errorString());
    return {};
}

void Transcript::add(const CardHost::TranscriptEntry &entry)
{
    const std::lock_guard lock(m_mutex);
    if (m_file.isOpen()) {
        m_file.write(QByteArray::fromStdString(entry.json) + '\n');
        m_file.flush();
    }
    if (m_pending.isEmpty())
        QMetaObject::invokeMethod(this, "deliver", Qt::QueuedConnection);
    m_pending << entry;
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
