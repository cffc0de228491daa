#include <QLibrary>
#include <QPluginLoader>
#include <QPointer>
#include <QProcess>
#include <QtTest>

/* The library as a host's loader sees it. */
class TestExports : public QObject
{
    Q_OBJECT

private slots:
    void onlyTheEntryPoints()
    {
        QProcess nm;
        nm.start(NM, {"-D", "--defined-only", PLUGIN_FILE});
        QVERIFY(nm.waitForFinished());
        QStringList names;
        for (const QByteArray &line : nm.readAllStandardOutput().split('\n')) {
            const QList<QByteArray> fields = line.split(' ');
            if (fields.size() == 3 && QByteArray("TtWwVvi").contains(fields[1]))
                names << fields[2];
        }
        names.sort();
        QCOMPARE(names, QStringList({"qt_plugin_instance", "qt_plugin_query_metadata", "qt_plugin_query_verification_data"}));
    }

    void verificationData()
    {
        QLibrary library(PLUGIN_FILE);
        const auto query = reinterpret_cast<const char *(*)()>(library.resolve("qt_plugin_query_verification_data"));
        QVERIFY2(query, qPrintable(library.errorString()));
        const QStringList lines = QString::fromLatin1(query()).split('\n');
        QCOMPARE(lines.size(), 4);
        QCOMPARE(lines[0], QString("pattern=QT_PLUGIN_VERIFICATION_DATA"));
        QCOMPARE(lines[1], QString("version=%1").arg(QT_VERSION_STR));
        QVERIFY(QRegularExpression("^debug=(true|false)$").match(lines[2]).hasMatch());
        QVERIFY(QRegularExpression("^buildkey=\\S+ \\S+ (g\\+\\+|clang)-\\d+ full-config$").match(lines[3]).hasMatch());
    }

    void oneLiveRootObject()
    {
        QLibrary library(PLUGIN_FILE);
        const auto instance = reinterpret_cast<QObject *(*)()>(library.resolve("qt_plugin_instance"));
        QVERIFY(instance);
        QPointer<QObject> root = instance();
        QVERIFY(root);
        QCOMPARE(root->metaObject()->className(), "STKPlugin");
        QCOMPARE(instance(), root.data());
        delete root;
        QVERIFY(instance());
        delete instance();
    }
};

QTEST_MAIN(TestExports)
#include "TestExports.moc"
