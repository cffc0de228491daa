#include "PluginTest.h"

#include "STKPlugin.h"

#define FILE_NAME "../../src/STKPlugin/STKPlugin"

class TestSTKPlugin : public PluginTest
{
    Q_OBJECT

private slots:
    void castsByName()
    {
        STKPlugin plugin;
        QObject *const object = &plugin;
        void *const ui = static_cast<IUIPlugin *>(&plugin);
        void *const base = static_cast<IBasePlugin *>(static_cast<IUIPlugin *>(&plugin));
        void *const notify = static_cast<INotify *>(&plugin);
        QCOMPARE(object->qt_metacast(nullptr), static_cast<void *>(nullptr));
        QCOMPARE(object->qt_metacast("STKPlugin"), static_cast<void *>(&plugin));
        QCOMPARE(object->qt_metacast("IUIPlugin"), ui);
        QCOMPARE(object->qt_metacast("INotify"), notify);
        QCOMPARE(object->qt_metacast("com.velora.linkassistant.plugin.IBasePlugin"), base);
        QCOMPARE(object->qt_metacast("com.velora.linkassistant.plugin.IUIPlugin"), ui);
        QCOMPARE(object->qt_metacast("com.velora.linkassistant.plugin.INotify"), notify);
        QCOMPARE(object->qt_metacast("QObject"), static_cast<void *>(object));
        for (const char *name : {"IBasePlugin", "IBaseInterface", "IDestroyEvent", "stkplugin", ""})
            QVERIFY2(!object->qt_metacast(name), name);
        QVERIFY(qobject_cast<IUIPlugin *>(object) && qobject_cast<INotify *>(object) && qobject_cast<IBasePlugin *>(object));
        QCOMPARE(object->metaObject()->methodCount(), QObject::staticMetaObject.methodCount());
        QCOMPARE(object->metaObject()->propertyCount(), QObject::staticMetaObject.propertyCount());
    }

    /* The host calls through the table: each slot must hold the operation that it expects there. */
    void theTableOfTheInterface()
    {
        STKPlugin plugin;
        takeTrace();
        IUIPlugin *const ui = &plugin;
        const char *names[] = {"Release", "GetLastError", "Init", "GetPluginType", nullptr, "GetVersion", nullptr,
                               "IsAllowRelease", "QueryInterface", nullptr, "DoModal", "Hide", nullptr, "IsReady"};
        using Operation = int (*)(void *);
        Operation *const table = *reinterpret_cast<Operation **>(ui);
        for (size_t i = 0; i < sizeof names / sizeof *names; ++i) {
            if (!names[i] || !strcmp(names[i], "QueryInterface"))
                continue; // takes arguments or returns an object
            table[2 + i](ui); // behind the pair of destructors
            QCOMPARE(takeTrace(), QStringList(QString("Start of " FILE_NAME ": %1: TIME: ").arg(names[i])));
        }
    }

    void constants()
    {
        STKPlugin plugin;
        takeTrace();
        QRect area;
        QObject *object = this;
        QCOMPARE(plugin.DoModal(), 0);
        QCOMPARE(plugin.IsReady(), false);
        QCOMPARE(plugin.Init(), true);
        QCOMPARE(plugin.ChangeLang("de"), true);
        QCOMPARE(plugin.ChangeLang(""), false);
        QCOMPARE(plugin.GetPluginType(), 0);
        QCOMPARE(plugin.GetCLSID(), QString("BB06C1A5-D060-413d-9F40-0226F2BEE443"));
        QCOMPARE(plugin.GetVersion(), 257);
        QCOMPARE(plugin.GetPluginName(), QString("STKPlugin"));
        QCOMPARE(plugin.IsAllowRelease(), false);
        QCOMPARE(plugin.GetLastError(), 0);
        plugin.Hide();
        plugin.FitSize(area);
        plugin.Release();
        plugin.OnDestroy();
        QStringList expected;
        for (const char *name : {"DoModal", "IsReady", "Init", "ChangeLang", "ChangeLang", "GetPluginType", "GetCLSID",
                                 "GetVersion", "GetPluginName", "IsAllowRelease", "GetLastError", "Hide", "FitSize",
                                 "Release", "OnDestroy"})
            expected << QString("Start of " FILE_NAME ": %1: TIME: ").arg(name);
        QCOMPARE(takeTrace(), expected);
        QCOMPARE(plugin.QueryInterface(3, &object), 0);
        QCOMPARE(object, this);
        QCOMPARE(takeTrace(), QStringList());
    }

    void theWindowThroughThePlugin()
    {
        putMainMenu();
        auto *plugin = new STKPlugin;
        QRect area;
        QVERIFY(plugin->ShowWindow(nullptr, area));
        ui.language = "fr:";
        for (unsigned int code : {0x3FFu, 0x401u, 0u}) {
            QCOMPARE(plugin->Notify(code, 1, 2), 0);
            QCOMPARE(button("Close")->text(), QString("STKPlugin:IDS_STK_BTN_CLOSE"));
        }
        QCOMPARE(plugin->Notify(0x400, 77, 88), 0);
        QCOMPARE(button("Close")->text(), QString("fr:STKPlugin:IDS_STK_BTN_CLOSE"));
        modem.takeCalls();
        takeTrace();
        plugin->UnSDKRegisterEvent();
        QCOMPARE(modem.takeCalls(), QStringList({"UnRegisterCallBack(same)", "UnRegisterDevMgrCallback(same)"}));
        const QStringList trace = takeTrace();
        QCOMPARE(trace.first(), QString(FILE_NAME ": UnSDKRegisterEvent called"));
        QCOMPARE(trace.last(), QString(FILE_NAME ": UnSDKRegisterEvent exit"));
        QVERIFY(trace.contains("../../src/STKPlugin/STKDialog: unSDKRegisterEvent called"));
        delete plugin;
        const QStringList end = traceOf("~STKPlugin");
        QCOMPARE(end, QStringList({"Start of " FILE_NAME ": ~STKPlugin: TIME: ", "End of " FILE_NAME ": ~STKPlugin: TIME: "}));
        STKPlugin again;
        QCOMPARE(modem.takeCalls(), QStringList({"RegisterCallBack()", "RegisterDevMgrCallback()"}));
    }
};

QTEST_MAIN(TestSTKPlugin)
#include "TestSTKPlugin.moc"
