#include "UrlRequests.h"

#include <utility>

UrlRequests::UrlRequests(Opener opener)
    : m_opener(std::move(opener))
{
}

void UrlRequests::ask(const QUrl &url)
{
    if (m_allowed.contains(site(url)))
        return m_opener(url);
    m_waiting = url;
    emit changed();
}

void UrlRequests::open()
{
    const QUrl url = std::exchange(m_waiting, {});
    if (!url.isEmpty())
        m_opener(url);
    emit changed();
}

void UrlRequests::openAlways()
{
    if (!m_waiting.isEmpty())
        m_allowed << site(m_waiting);
    open();
}

void UrlRequests::decline()
{
    m_waiting.clear();
    emit changed();
}

// What stands before the host's name could look like another host's.
QString UrlRequests::site(const QUrl &url)
{
    return url.scheme() + "://" + url.host(QUrl::FullyEncoded) + ':' +
        QString::number(url.port(url.scheme() == "https" ? 443 : 80));
}
