#include "TerminalLog.h"

#include <algorithm>

#include <QFileInfo>
#include <QJsonDocument>

namespace {

template <class Item, class Fits> bool takeUpTo(QList<Item> &items, Fits fits)
{
    const auto found = std::find_if(items.begin(), items.end(), fits);
    if (found == items.end())
        return false;
    items.erase(items.begin(), found + 1);
    return true;
}

bool hasFields(const QJsonObject &entry, const QJsonObject &fields)
{
    const QStringList names = fields.keys();
    return std::all_of(names.begin(), names.end(), [&](const QString &name) {
        return entry.contains(name) && entry.value(name) == fields.value(name);
    });
}

} // namespace

void TerminalLog::addEntries(const QList<CardHost::TranscriptEntry> &entries)
{
    for (const CardHost::TranscriptEntry &entry : entries) {
        QJsonObject object =
            QJsonDocument::fromJson(QByteArray::fromStdString(entry.json)).object();
        object.remove("time");
        m_entries << object;
    }
}

void TerminalLog::addUrl(const QUrl &url)
{
    m_urls << url.toString();
}

void TerminalLog::addSound(const QString &fileName)
{
    m_sounds << QFileInfo(fileName).fileName();
}

bool TerminalLog::takeEntry(QJsonObject fields)
{
    if (!fields.contains("event"))
        fields["event"] = "response";
    return takeUpTo(m_entries, [&](const QJsonObject &entry) { return hasFields(entry, fields); });
}

bool TerminalLog::takeUrl(const QString &address)
{
    const QString wanted = QUrl(address).toString();
    return takeUpTo(m_urls, [&](const QString &url) { return url == wanted; });
}

bool TerminalLog::takeTone(int number)
{
    const QString wanted = "tone_" + QString::number(number);
    return takeUpTo(m_sounds, [&](const QString &file) { return file == wanted; });
}

QStringList TerminalLog::answers() const
{
    QStringList all;
    for (const QJsonObject &entry : m_entries) {
        const QString event = entry["event"].toString();
        if (event == "response" || event == "refused")
            all << QJsonDocument(entry).toJson(QJsonDocument::Compact);
    }
    return all;
}
