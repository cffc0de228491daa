#include <QTest>

#include "UrlBar.h"
#include "UrlRequests.h"

class TestUrlBar : public QObject {
    Q_OBJECT

private slots:
    void namesTheHost_data()
    {
        QTest::addColumn<QString>("address");
        QTest::addColumn<QString>("shown"); // in the line of the host
        QTest::addColumn<QString>("next"); // the second address, after Always
        QTest::addColumn<bool>("asks"); // about the second one
        const auto row = [](const char *address, const char *shown, const char *next, bool asks) {
            QTest::newRow(address) << address << shown << next << asks;
        };
        row("http://bank.example@evil.example/", "evil.example", "http://EVIL.example:80/x", false);
        row("http://bank.example/", "bank.example", "http://bank.example@evil.example/", true);
        row("https://a.example/", "a.example", "http://a.example/", true);
        row("http://a.example:81/", "a.example", "http://a.example/", true);
        row("http://bücher.example/", "xn--bcher-kva.example", "http://bucher.example/", true);
    }

    void namesTheHost()
    {
        QFETCH(QString, address);
        QFETCH(QString, next);
        QFETCH(bool, asks);
        QList<QUrl> opened;
        UrlRequests requests([&](const QUrl &url) { opened << url; });
        UrlBar bar(requests, QBoxLayout::TopToBottom, nullptr);
        bar.resize(300, 200);
        requests.ask(QUrl("http://other.example/"));
        requests.ask(QUrl(address + QString(900, 'p') + "<b>"));
        const auto *host = bar.findChild<QLabel *>("ConnectionManager_UrlHost");
        const auto *line = bar.findChild<QLabel *>("ConnectionManager_UrlAddress");
        QTEST(host->text().mid(1).chopped(1), "shown"); // between isolating marks
        QVERIFY(line->text().startsWith(QChar(0x2066) + address.left(7)) && line->width() <= 300);
        QVERIFY(line->text().endsWith("p%3Cb%3E" + QString(QChar(0x2069))));
        QTest::mouseClick(bar.alwaysButton(), Qt::LeftButton);
        QVERIFY2(opened.isEmpty(), "a click that was meant for what stood there before");
        QTRY_VERIFY(bar.alwaysButton()->isEnabled());
        QTest::mouseClick(bar.alwaysButton(), Qt::LeftButton);
        QCOMPARE(opened.size(), 1);
        QVERIFY(opened[0].path().endsWith("<b>") && !bar.isVisible());
        requests.ask(QUrl(next));
        QCOMPARE(opened.size(), asks ? 1 : 2);
        requests.decline();
        requests.open();
        QCOMPARE(opened.size(), asks ? 1 : 2);
    }
};

QTEST_MAIN(TestUrlBar)
#include "TestUrlBar.moc"
