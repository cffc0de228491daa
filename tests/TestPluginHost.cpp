#include <QTest>

#include "PluginHost.h"

class TestPluginHost : public QObject
{
    Q_OBJECT

private slots:
    void verification_data();
    void verification();
};

void TestPluginHost::verification_data()
{
    QTest::addColumn<QByteArray>("data");
    QTest::addColumn<QString>("error");
    const QByteArray pattern = "pattern=QT_PLUGIN_VERIFICATION_DATA\n";
    const QByteArray rest = "\ndebug=false\nbuildkey=linux x86_64 gcc";

    QTest::newRow("same version") << pattern + "version=5.15.8" + rest << "";
    QTest::newRow("older") << pattern + "version=5.4.2" + rest << "";
    QTest::newRow("no data") << QByteArray() << "it has no verification data of a plug-in";
    QTest::newRow("other text") << QByteArray("hello")
                                << "its verification data are not those of a plug-in";
    QTest::newRow("no version") << pattern + "debug=false"
                                << "its verification data name no version of Qt (found \"debug=false\")";
    QTest::newRow("pattern alone") << pattern.chopped(1)
                                   << "its verification data name no version of Qt (found \"\")";
    const QString wrong = "it was built with Qt %1, this application runs with Qt 5.15.8";
    QTest::newRow("newer patch") << pattern + "version=5.15.9" + rest << wrong.arg("5.15.9");
    QTest::newRow("older major") << pattern + "version=4.6.2" + rest << wrong.arg("4.6.2");
    QTest::newRow("newer major") << pattern + "version=6.0.0" + rest << wrong.arg("6.0.0");
}

void TestPluginHost::verification()
{
    QFETCH(QByteArray, data);
    QTEST(verificationError(data.isNull() ? nullptr : data.constData(), "5.15.8"), "error");
}

QTEST_GUILESS_MAIN(TestPluginHost)
#include "TestPluginHost.moc"
