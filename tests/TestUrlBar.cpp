#include <QTest>

#include "UrlBar.h"
#include "UrlRequests.h"

class TestUrlBar : public QObject {
    Q_OBJECT

private slots:
    void namesTheHost()
    {
        const struct {
            QString address, shown; // in the line of the host
            QString next; // the second address, after Always
            bool asks; // about the second one
        } rows[] = {
            {"http://bank.example@evil.example/", "evil.example", "http://EVIL.example:80/x",
             false},
            {"http://bank.example/", "bank.example", "http://bank.example@evil.example/", true},
            {"https://a.example/", "a.example", "http://a.example/", true},
            {"http://a.example:81/", "a.example", "http://a.example/", true},
            {"http://bücher.example/", "xn--bcher-kva.example", "http://bucher.example/", true},
        };
        for (const auto &[address, shown, next, asks] : rows) {
            QList<QUrl> opened;
            UrlRequests requests([&](const QUrl &url) { opened << url; });
            UrlBar bar(requests, QBoxLayout::TopToBottom, nullptr);
            bar.resize(300, 200);
            requests.ask(QUrl("http://other.example/"));
            requests.ask(QUrl(address + QString(900, 'p') + "<b>"));
            const auto *host = bar.findChild<QLabel *>("ConnectionManager_UrlHost");
            const auto *line = bar.findChild<QLabel *>("ConnectionManager_UrlAddress");
            QCOMPARE(host->text().mid(1).chopped(1), shown); // between isolating marks
            QVERIFY(line->text().startsWith(QChar(0x2066) + address.left(7)) &&
                    line->width() <= 300);
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
    }
};

QTEST_MAIN(TestUrlBar)
#include "TestUrlBar.moc"
