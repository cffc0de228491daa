#ifndef STKLOGIC_H
#define STKLOGIC_H

#include <atomic>

#include <QList>
#include <QObject>
#include <QString>

#include "platform/ModemService.h"

/* One item of a menu of the card. */
struct StkItemClass {
    int nItemId; /* its identifier on the card */
    QString strItemText;
};

/* A menu of the card, its items in the card's order.  Whoever owns the record owns the list, which
 * must exist before a menu is fetched into it. */
struct StkMenuItems {
    QString strTitle;
    QList<StkItemClass> *itemList = nullptr;
};

struct MOVAPlayToneRequest {
    int nTone;
    int nDuration; /* seconds */
    QString strText;
};

struct MOVALaunchBrowser {
    int nLaunchMode; /* 0, 2 or 3 */
    QString strUrl;
};

/* Get Inkey or Get Input.  What a request does not carry keeps the value that its owner put there.
 */
struct StkInKeyRequest {
    QString strText;
    int nInputType;
    int bOption;
    int nDuration; /* Get Inkey only */
    int bEcho; /* this and the rest: Get Input only */
    int nMinLen;
    int nMaxLen;
    QString strDefaultText;
};

/* The one object that talks to the modem service.
 *
 * It turns each notification of the card into one signal, keeps the identifier of the command in
 * progress, and wraps every call of the service.  The two callbacks run on the service's thread;
 * everything else runs on the GUI thread, GetResponseVar also on the waiting thread.  The words
 * that threads share are relaxed atomics: each stands for itself and orders nothing else. */
class STKLogic : public QObject {
    Q_OBJECT

public:
    /* The instance, made on the first call. */
    static STKLogic *CreateInstance();
    /* Every owner calls it at its own end: the first one destroys the instance, the rest do
     * nothing. */
    static void DestroyInst();

    static void RegisterSTKCB();
    static void UnresgisterSTKCB();

    static int OnSTKEventCB(int iEvent, void *pNotifyData);
    static int OnDeviceEventCB(int iCode, void *pData);

    void stkEventSwitchCase(_MOVA_EN_STKTYPE enStkType);

    /* The verdict: whether the user interface handled the command. */
    void UpdateCBReturnVal(bool bRet);

    /* The response flag: whether the card has sent anything since it was cleared. */
    bool GetResponseVar();
    void SetResponseVar(bool bRespondence);

    /* The rest returns true when the service returned 0; on false, unless said otherwise, nothing
     * was changed. */

    /* A failed get leaves the menu empty. */
    bool GetMainMenu(StkMenuItems *pMenu);
    bool GetSubMenu(StkMenuItems *pMenu);
    bool SelectMainMenuItem(int index);
    /* action: "SUBMENU_ACTION_SELECT_ITEM" or "SUBMENU_ACTION_RETURN_BACK_ITEM". */
    bool SelectSubMenuItem(QString action, int index);

    bool GetIdleModePrompt(QString *pText);
    bool GetPlayTone(MOVAPlayToneRequest *pReq);
    bool GetLaunchBrowser(MOVALaunchBrowser *pReq);
    bool GetInKeyRquest(StkInKeyRequest *pReq);
    bool GetInputRequest(StkInKeyRequest *pReq);
    /* *pClearMode becomes "STK_CLR_MODE_AUTO" or empty, *pDuration seconds. */
    bool GetPromptText(QString *pText, QString *pClearMode, int *pDuration);
    bool GetRefreshInfo();

    /* The newest notification with data: its identifier, and its place among all of them.  A window
     * stays open while further commands arrive; what it keeps of this tells its command from
     * theirs. */
    uint32_t CommandInProgress() const;

    /* The answers go to the command in progress, or to the one that is named. */

    /* result: "STK_TYPE_OK" accepts, anything else cancels. */
    bool CallStkAnswerInKey(QString result, QString answer);
    bool CallStkAnswerInKey(QString result, QString answer, uint32_t command);
    bool CallStkAnswerInput(QString result, QString answer);
    bool CallStkAnswerInput(QString result, QString answer, uint32_t command);
    bool SendNoDataResponse(_STK_UI_EN_STKTYPE type, _STK_UI_EN_TERMINALRESPONSE response);
    bool SendNoDataResponse(_STK_UI_EN_STKTYPE type, _STK_UI_EN_TERMINALRESPONSE response,
                            uint32_t command);

signals:
    void DevAvailable(bool isAvaillable);
    void STKSetupMenu();
    void STKDisplayText();
    void STKGetInkey();
    void STKGetInput();
    void STKSetupCall();
    void STKPlayTone();
    void STKSelItem();
    void STKRefresh();
    void STKSendSS();
    void STKSendSMS();
    void STKSendUSSD();
    void STKLaunchBrowser();
    void STKSetupIdleModeText();
    void STKEndSession();
    void ShowMainMenu();
    void CloseInputDlg();

private:
    STKLogic();
    ~STKLogic();

    int16_t CmdId() const;

    std::atomic<int16_t> m_sCmdId;
    std::atomic<int32_t> m_bRet;
    std::atomic<int32_t> m_bRespondence;
    std::atomic<uint32_t> m_uCommand; /* a running number above m_sCmdId, in one word */

    static std::atomic<STKLogic *> m_pStkLogicInst;
};

#endif
