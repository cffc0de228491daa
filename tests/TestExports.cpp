#include <QLibrary>
#include <QPointer>
#include <QProcess>
#include <QtTest>

/* The library as a host's loader sees it. */
class TestExports : public QObject {
    Q_OBJECT

private slots:
    void onlyTheEntryPoints()
    {
        QProcess nm;
        nm.start(NM, {"-D", "--defined-only", PLUGIN_FILE});
        QVERIFY(nm.waitForFinished());
        QStringList names;
        QRegularExpressionMatchIterator symbols =
            QRegularExpression("^\\S+ [TtWwVvi] (\\S+)$", QRegularExpression::MultilineOption)
                .globalMatch(nm.readAllStandardOutput());
        while (symbols.hasNext())
            names << symbols.next().captured(1);
        names.replaceInStrings("metadata_v2", "metadata"); // from Qt 6.3 on
        names.sort();
        QCOMPARE(
            names.join(" "),
            QString(
                "qt_plugin_instance qt_plugin_query_metadata qt_plugin_query_verification_data"));
    }

    void verificationDataAndOneLiveRootObject()
    {
        QLibrary library(PLUGIN_FILE);
        const auto query = reinterpret_cast<const char *(*)()>(
            library.resolve("qt_plugin_query_verification_data"));
        QVERIFY2(query, qPrintable(library.errorString()));
        const QRegularExpression expected(
            "^pattern=QT_PLUGIN_VERIFICATION_DATA\nversion=" QT_VERSION_STR "\n"
            "debug=(true|false)\nbuildkey=\\S+ \\S+ (g\\+\\+|clang)-\\d+ full-config\\z");
        QVERIFY2(expected.match(query()).hasMatch(), query());
        const auto instance =
            reinterpret_cast<QObject *(*)()>(library.resolve("qt_plugin_instance"));
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
