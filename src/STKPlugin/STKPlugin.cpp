#include "STKPlugin.h"

#include <QtPlugin>

#include "STKDialog.h"
#include "TraceLog.h"

#define STK_TRACE_FILE "../../src/STKPlugin/STKPlugin"

namespace {

const unsigned int NOTIFY_LANGUAGE_CHANGED = 0x400;
const int PLUGIN_VERSION = 0x0101;

} // namespace

STKPlugin::STKPlugin()
{
    TRACE_START();
    m_pStkDialog = STKDialog::Instance();
    TRACE_END();
}

STKPlugin::~STKPlugin()
{
    TRACE_START();
    if (m_pStkDialog) {
        STKDialog::Destroy();
        m_pStkDialog = nullptr;
    }
    TRACE_END();
}

bool STKPlugin::ShowWindow(QWidget *pParent, QRect &area)
{
    TRACE_START();
    if (TRACE_IS_NULL(m_pStkDialog))
        return false;
    return m_pStkDialog->ShowStkDlg(pParent, area);
}

int STKPlugin::DoModal()
{
    TRACE_START();
    return 0;
}

void STKPlugin::Hide()
{
    TRACE_START();
}

void STKPlugin::FitSize(QRect &)
{
    TRACE_START();
}

bool STKPlugin::IsReady()
{
    TRACE_START();
    return false;
}

bool STKPlugin::Init()
{
    TRACE_START();
    return true;
}

/* The texts follow by Notify, once the host's own language has changed. */
bool STKPlugin::ChangeLang(const QString &strLang)
{
    TRACE_START();
    return !strLang.isEmpty();
}

int STKPlugin::GetPluginType()
{
    TRACE_START();
    return 0;
}

QString STKPlugin::GetCLSID()
{
    TRACE_START();
    return "BB06C1A5-D060-413d-9F40-0226F2BEE443";
}

int STKPlugin::GetVersion()
{
    TRACE_START();
    return PLUGIN_VERSION;
}

QString STKPlugin::GetPluginName()
{
    TRACE_START();
    return "STKPlugin";
}

bool STKPlugin::IsAllowRelease()
{
    TRACE_START();
    return false;
}

void STKPlugin::Release()
{
    TRACE_START();
}

int STKPlugin::GetLastError()
{
    TRACE_START();
    return 0;
}

void STKPlugin::OnDestroy()
{
    TRACE_START();
}

int STKPlugin::Notify(unsigned int uCode, unsigned int, unsigned int)
{
    TRACE_START();
    if (uCode == NOTIFY_LANGUAGE_CHANGED && m_pStkDialog)
        m_pStkDialog->SetStkUiText();
    return 0;
}

int STKPlugin::QueryInterface(int, QObject **)
{
    return 0;
}

void STKPlugin::UnSDKRegisterEvent()
{
    TRACE_FILE_FUNC("%s: %s called");
    if (STKDialog *pStkDialog = STKDialog::Instance())
        pStkDialog->unSDKRegisterEvent();
    TRACE_FILE_FUNC("%s: %s exit");
}

/* ---- The library's entry points ---- */

#if QT_VERSION < 0x050000

Q_EXPORT_PLUGIN2(STKPlugin, STKPlugin)

#else

// Qt keeps its own metadata; hosts of the older kind still ask for this text before they load.
#define STK_STRING_OF(x) #x
#define STK_STRING(x) STK_STRING_OF(x)
#if defined(__clang__)
#define STK_COMPILER "clang-" STK_STRING(__clang_major__)
#else
#define STK_COMPILER "g++-" STK_STRING(__GNUC__)
#endif
#if defined(QT_NO_DEBUG)
#define STK_DEBUG "false"
#else
#define STK_DEBUG "true"
#endif

extern "C" Q_DECL_EXPORT const char *qt_plugin_query_verification_data()
{
    return "pattern=QT_PLUGIN_VERIFICATION_DATA\n"
           "version=" QT_VERSION_STR "\n"
           "debug=" STK_DEBUG "\n"
           "buildkey=" STK_BUILD_PROCESSOR " " STK_BUILD_SYSTEM " " STK_COMPILER " full-config";
}

#endif
