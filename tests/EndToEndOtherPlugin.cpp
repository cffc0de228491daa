// Plug-ins that Qt loads and the host must not take.
#include <QObject>

#if defined(OTHER_PLUGIN_NewerQt)
#define OTHER_QT_VERSION QT_STRINGIFY(QT_VERSION_MAJOR) ".99.0"
#elif defined(OTHER_PLUGIN_OlderQt)
#define OTHER_QT_VERSION "4.8.7"
#else
#define OTHER_QT_VERSION QT_VERSION_STR
#endif

class OtherPlugin : public QObject {
    Q_OBJECT
    Q_PLUGIN_METADATA(IID "test.OtherPlugin")
};

#if !defined(OTHER_PLUGIN_NoVerification)
extern "C" Q_DECL_EXPORT const char *qt_plugin_query_verification_data()
{
    return "pattern=QT_PLUGIN_VERIFICATION_DATA\nversion=" OTHER_QT_VERSION
           "\ndebug=false\nbuildkey=test";
}
#endif

#include "EndToEndOtherPlugin.moc"
