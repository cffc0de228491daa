// A host for the SIM toolkit plug-in, as small as it goes: a window with a button, a choice of
// languages and, where others have a modem, a card of three items that is part of the program.
#include <algorithm>
#include <cstdio>
#include <mutex>
#include <string>

#include <QApplication>
#include <QComboBox>
#include <QFileInfo>
#include <QLibrary>
#include <QLoggingCategory>
#include <QPluginLoader>
#include <QPushButton>
#include <QThread>
#include <QTimer>
#include <QVBoxLayout>

#include "HostUi.h"
#include "host/INotify.h"
#include "host/IUIPlugin.h"
#include "platform/ModemService.h"

// ---- The service: what the plug-in calls in place of a modem; 0 is success ----

namespace {

struct Command {
    _MOVA_EN_STKTYPE type;
    std::u16string text;
};

const Command EndOfSession = {MOVA_STKTYPE_END_SESSION, u""};

const struct {
    const char16_t *name;
    Command command; // what the card sends when the item is chosen
} Items[] = {
    {u"Say hello", {MOVA_STKTYPE_DISPLAY_TEXT, u"Hello from the card."}},
    {u"Introduce yourself", {MOVA_STKTYPE_GET_INPUT, u"What is your name?"}},
    {u"Nothing, thank you", EndOfSession},
};

QThread cardThread; // on which the plug-in is called back
QObject card; // lives there
MOVA_STKCallback callback;
std::mutex mutex; // for the command in progress:
int16_t commandId;
std::u16string commandText;

// A text that is too long for its array is cut: it always ends with a zero.
template <size_t units> int32_t put(const std::u16string &text, uint16_t (&to)[units])
{
    *std::copy_n(text.begin(), std::min(text.size(), units - 1), to) = 0;
    return 0;
}

template <size_t units> int32_t putCommandText(int16_t id, uint16_t (&to)[units])
{
    std::lock_guard<std::mutex> lock(mutex);
    return id == commandId ? put(commandText, to) : -1;
}

// Tells the plug-in what the card sends next.
int32_t send(const Command &command)
{
    // Not at once: the call that leads to a command has to return before the command comes.
    QTimer::singleShot(100, &card, [command] {
        std::unique_lock<std::mutex> lock(mutex);
        commandText = command.text;
        MOVA_STKNotifyData data = {command.type, ++commandId, 0};
        lock.unlock();
        callback(0, &data);
    });
    return 0;
}

// The first answer of a command ends it; there is no other.
int32_t answer(int16_t id, const Command &next)
{
    std::unique_lock<std::mutex> lock(mutex);
    if (id != commandId)
        return -1;
    ++commandId;
    lock.unlock();
    return send(next);
}

} // namespace

int32_t MOVA_STK_RegisterCallBack(MOVA_STKCallback pfnCallback)
{
    callback = pfnCallback;
    card.moveToThread(&cardThread);
    cardThread.start();
    return 0;
}

int32_t MOVA_STK_UnRegisterCallBack(MOVA_STKCallback)
{
    cardThread.quit();
    return cardThread.wait() ? 0 : -1; // from here on nothing is called back
}

int32_t MOVA_STKSrv_GetMainMenu(MOVA_STKMenuInfo *pMenu)
{
    pMenu->pItems = new MOVA_STKMenuItem[std::size(Items)];
    for (const auto &item : Items) {
        MOVA_STKMenuItem &row = pMenu->pItems[pMenu->sItemCount++];
        row.sItemId = pMenu->sItemCount; // from 1 on: 0 stands for no item
        put(item.name, row.szItemText);
    }
    return put(u"The card's menu", pMenu->szTitle);
}

int32_t MOVA_STKSrv_ReleaseMenus(MOVA_STKMenuInfo *pMenu)
{
    delete[] pMenu->pItems;
    return 0;
}

int32_t MOVA_STKSrv_SelectMenuItem(int16_t, int16_t sItemId)
{
    const bool isKnown = sItemId >= 1 && sItemId <= int16_t(std::size(Items));
    return isKnown ? send(Items[sItemId - 1].command) : -1;
}

int32_t MOVA_STKSrv_GetPromptText(int16_t sCmdId, MOVA_STKPromptTextInfo *pInfo)
{
    pInfo->nClearMode = 1; // it stays until the user clears it
    return putCommandText(sCmdId, pInfo->szText);
}

int32_t MOVA_STKSrv_GetInputRequest(int16_t sCmdId, MOVA_STKInputInfo *pInfo)
{
    pInfo->bEcho = 1;
    pInfo->sMinLen = 1;
    pInfo->sMaxLen = 20;
    return putCommandText(sCmdId, pInfo->szText);
}

int32_t MOVA_STKSrv_AnswerInput(int16_t sCmdId, int32_t bAccepted, const uint16_t *szText)
{
    if (!bAccepted)
        return answer(sCmdId, EndOfSession);
    const std::u16string name(szText, std::find(szText, szText + MOVA_TEXT_UNITS, 0));
    return answer(sCmdId, {MOVA_STKTYPE_DISPLAY_TEXT, u"Nice to meet you, " + name + u"."});
}

int32_t MOVA_STKSrv_SendNoDataResponse(int16_t sCmdId, _STK_UI_EN_STKTYPE,
                                       _STK_UI_EN_TERMINALRESPONSE)
{
    return answer(sCmdId, EndOfSession); // a text was read, or refused
}

// What the plug-in wants to be there, and this card has no use for.
// clang-format off
int32_t MOVA_DevSrv_RegisterDevMgrCallback(MOVA_DevMgrCallback) { return 0; }
int32_t MOVA_DevSrv_UnRegisterDevMgrCallback(MOVA_DevMgrCallback) { return 0; }
int32_t MOVA_STKSrv_GetSubMenu(int16_t, MOVA_STKSubMenuInfo *) { return -1; }
int32_t MOVA_STKSrv_ReleaseSubMenus(MOVA_STKSubMenuInfo *) { return -1; }
int32_t MOVA_STKSrv_SelectSubMenuItem(int16_t, int32_t, int16_t) { return -1; }
int32_t MOVA_STKSrv_GetIdleModePrompt(int16_t, MOVA_STKIdleModeTextInfo *) { return -1; }
int32_t MOVA_STKSrv_GetPlayTone(int16_t, MOVA_STKPlayToneInfo *) { return -1; }
int32_t MOVA_STKSrv_GetLaunchBrowser(int16_t, MOVA_STKLaunchBrowserInfo *) { return -1; }
int32_t MOVA_STKSrv_GetInKeyRequest(int16_t, MOVA_STKInKeyInfo *) { return -1; }
int32_t MOVA_STKSrv_GetRefreshInfo(int16_t, MOVA_STKRefreshInfo *) { return -1; }
int32_t MOVA_STKSrv_AnswerInKey(int16_t, int32_t, const uint16_t *) { return -1; }
// clang-format on

// ---- The host ----

namespace {

constexpr unsigned LanguageChanged = 0x400;

int fail(const QString &reason)
{
    std::fprintf(stderr, "minimal-host: %s\n", qPrintable(reason));
    return 1;
}

// Why the file is no plug-in for this program, found out before anything of it is called; or empty.
QString verificationError(QLibrary &&library)
{
    library.setLoadHints(QLibrary::ResolveAllSymbolsHint); // what the service lacks shows now
    if (!library.load())
        return library.errorString();
    const auto data =
        reinterpret_cast<const char *(*)()>(library.resolve("qt_plugin_query_verification_data"));
    const QString wanted("pattern=QT_PLUGIN_VERIFICATION_DATA\nversion=%1.");
    const bool isFit = data && QString(data()).startsWith(wanted.arg(QT_VERSION_MAJOR));
    library.unload();
    return isFit ? QString() : library.fileName() + ": this is no plug-in for Qt " QT_VERSION_STR;
}

int run(IUIPlugin *ui, INotify *notify)
{
    QWidget window;
    window.setWindowTitle("Minimal host");
    window.resize(460, 560);
    QPushButton toolkit("SIM toolkit");
    QComboBox language;
    QVBoxLayout layout(&window);
    layout.addWidget(&toolkit);
    layout.addWidget(&language);
    layout.addStretch();
    QObject::connect(&toolkit, &QPushButton::clicked, [&] {
        QRect area = window.rect();
        ui->ShowWindow(&window, area);
    });
    QObject::connect(&language, &QComboBox::currentTextChanged, [&](const QString &code) {
        HostUi::setLanguage(TRANSLATIONS, code);
        ui->ChangeLang(code);
        notify->Notify(LanguageChanged, 0, 0);
    });
    language.addItems({"en", "de", "fr"});
    HostUi::setMainWindow(&window);
    window.show();
    return QApplication::exec();
}

} // namespace

int main(int argc, char *argv[])
{
    const QApplication application(argc, argv);
    QLoggingCategory::setFilterRules("default.debug=false"); // the plug-in's trace
    HostUi::setPluginLibraryPath(QFileInfo(PLUGIN).path() + "/../..");

    const QString error = verificationError(QLibrary(PLUGIN));
    if (!error.isEmpty())
        return fail(error);
    QPluginLoader loader(PLUGIN);
    QObject *const root = loader.instance();
    IUIPlugin *const ui = qobject_cast<IUIPlugin *>(root);
    INotify *const notify = qobject_cast<INotify *>(root);
    if (!ui || !notify)
        return fail(root ? PLUGIN ": this is no user-interface plug-in" : loader.errorString());
    const int status = ui->Init() ? run(ui, notify) : fail(PLUGIN ": it cannot start");

    // The end, in this order: the windows have gone with the host's, now the callbacks, the root
    // object, the code.
    ui->UnSDKRegisterEvent();
    ui->OnDestroy();
    delete root;
    loader.unload();
    return status;
}
