#ifndef URLREQUESTS_H
#define URLREQUESTS_H

#include <functional>

#include <QObject>
#include <QSet>
#include <QUrl>

/// The addresses that a card wants opened: each waits until a person says what becomes of it.  A
/// later one takes the place of the one that waits.
class UrlRequests : public QObject {
    Q_OBJECT

public:
    using Opener = std::function<void(const QUrl &)>;

    /// The opener gets the addresses that a person allowed.
    explicit UrlRequests(Opener opener);

    void ask(const QUrl &url);
    /// Empty while nothing waits.
    const QUrl &waiting() const { return m_waiting; }

    void open();
    /// From now on addresses of the same scheme, host and port are opened without a question.
    void openAlways();
    void decline();

signals:
    void changed();

private:
    static QString site(const QUrl &url);

    const Opener m_opener;
    QUrl m_waiting;
    QSet<QString> m_allowed;
};

#endif
