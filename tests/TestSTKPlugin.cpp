#include "PluginTest.h"

#include "STKPlugin.h"

#define FILE_NAME "../../src/STKPlugin/STKPlugin"

class TestSTKPlugin : public PluginTest {
    Q_OBJECT

    static QStringList starts(const QString &functions)
    {
        return functions.split(' ').replaceInStrings(QRegularExpression("(.+)"),
                                                     "Start of " FILE_NAME ": \\1: TIME: ");
    }

private slots:
    void castsByName()
    {
        STKPlugin plugin;
        QObject *const object = &plugin;
        void *const ui = static_cast<IUIPlugin *>(&plugin);
        void *const base = static_cast<IBasePlugin *>(static_cast<IUIPlugin *>(&plugin));
        void *const notify = static_cast<INotify *>(&plugin);
        const QString own("com.velora.linkassistant.plugin.");
        const std::pair<QString, void *> casts[] = {
            {"STKPlugin", &plugin},   {"QObject", object},         {"IUIPlugin", ui},
            {"INotify", notify},      {own + "IBasePlugin", base}, {own + "IUIPlugin", ui},
            {own + "INotify", notify}};
        for (const auto &cast : casts)
            QCOMPARE(object->qt_metacast(qPrintable(cast.first)), cast.second);
        for (const char *name : {"IBasePlugin", "IBaseInterface", "IDestroyEvent", "stkplugin", ""})
            QVERIFY2(!object->qt_metacast(name), name);
        QVERIFY(!object->qt_metacast(nullptr));
        QVERIFY(qobject_cast<IUIPlugin *>(object) && qobject_cast<INotify *>(object));
        QVERIFY(qobject_cast<IBasePlugin *>(object));
        QCOMPARE(object->metaObject()->methodCount(), QObject::staticMetaObject.methodCount());
        QCOMPARE(object->metaObject()->propertyCount(), QObject::staticMetaObject.propertyCount());
    }

    /* The host calls through the table: each slot must hold the operation that it expects there. */
    void theTableOfTheInterface()
    {
        STKPlugin plugin;
        takeTrace();
        IUIPlugin *const ui = &plugin;
        using Operation = int (*)(void *);
        Operation *entry =
            *reinterpret_cast<Operation **>(ui) + 2; // behind the pair of destructors
        // "-" takes arguments or returns an object; what is returned stands behind the name.
        for (const QString &name : QString("Release GetLastError=0 Init=1 GetPluginType=0 - "
                                           "GetVersion=257 - IsAllowRelease=0 - - DoModal=0 Hide - "
                                           "IsReady=0")
                                       .split(' ')) {
            if (name != "-") {
                const int returned = (*entry)(ui);
                QCOMPARE(takeTrace(), starts(name.section('=', 0, 0)));
                if (name.contains('='))
                    QCOMPARE(returned & (name[0] == 'G' ? -1 : 0xFF), name.section('=', 1).toInt());
            }
            ++entry;
        }
    }

    void whatTheTableTestCannotCall()
    {
        STKPlugin plugin;
        takeTrace();
        QRect area;
        QObject *object = this;
        QVERIFY(plugin.ChangeLang("de") && !plugin.ChangeLang(""));
        QVERIFY(!plugin.QueryInterface(3, &object) && object == this);
        QCOMPARE(plugin.GetCLSID(), QString("BB06C1A5-D060-413d-9F40-0226F2BEE443"));
        QCOMPARE(plugin.GetPluginName(), QString("STKPlugin"));
        plugin.FitSize(area);
        plugin.OnDestroy();
        QCOMPARE(takeTrace(),
                 starts("ChangeLang ChangeLang GetCLSID GetPluginName FitSize OnDestroy"));
    }

    void theWindowThroughThePlugin()
    {
        auto *plugin = new STKPlugin;
        QRect area;
        QVERIFY(plugin->ShowWindow(nullptr, area));
        ui.language = "fr:";
        for (unsigned int code : {0x3FFu, 0x401u, 0u, 0x400u}) {
            QCOMPARE(plugin->Notify(code, 77, 88), 0);
            QCOMPARE(button("Close")->text(),
                     QString(code == 0x400 ? "fr:" : "") + "STKPlugin:IDS_STK_BTN_CLOSE");
        }
        modem.takeCalls();
        takeTrace();
        plugin->UnSDKRegisterEvent();
        QCOMPARE(calls(), QString("UnRegisterCallBack(same) UnRegisterDevMgrCallback(same)"));
        const QStringList trace = takeTrace();
        QCOMPARE(trace.first(), QString(FILE_NAME ": UnSDKRegisterEvent called"));
        QCOMPARE(trace.last(), QString(FILE_NAME ": UnSDKRegisterEvent exit"));
        QVERIFY(trace.contains("../../src/STKPlugin/STKDialog: unSDKRegisterEvent called"));
        delete plugin;
        QCOMPARE(takeTrace().filter(" of " FILE_NAME ": ~STKPlugin: TIME: ").size(), 2);
        STKPlugin again;
        QCOMPARE(calls(), QString("RegisterCallBack() RegisterDevMgrCallback()"));
    }
};

QTEST_MAIN(TestSTKPlugin)
#include "TestSTKPlugin.moc"
