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

/* One notification of the card: the identifier of its command, and its place among those of its
 * type, since identifiers may come again; 0 for none.  One word, so that threads pass it on whole.
 */
struct STKCommand {
    int16_t sCmdId = 0;
    uint16_t usNumber = 0;

    bool operator==(STKCommand stOther) const
    {
        return sCmdId == stOther.sCmdId && usNumber == stOther.usNumber;
    }
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

    /* The newest notification of that type.  Whatever presents a command keeps it: others may have
     * arrived since, and more may before the answer. */
    STKCommand CommandInProgress(_MOVA_EN_STKTYPE enStkType) const;

    /* The rest returns true when the service returned 0; on false, unless said otherwise, nothing
     * was changed.  Without a command, or with none, they are about the newest. */

    /* A failed get leaves the menu empty. */
    bool GetMainMenu(StkMenuItems *pMenu);
    bool GetSubMenu(StkMenuItems *pMenu, STKCommand stCommand = STKCommand());
    bool SelectMainMenuItem(int index);
    /* action: "SUBMENU_ACTION_SELECT_ITEM" or "SUBMENU_ACTION_RETURN_BACK_ITEM". */
    bool SelectSubMenuItem(QString action, int index, STKCommand stCommand = STKCommand());

    bool GetIdleModePrompt(QString *pText, STKCommand stCommand = STKCommand());
    bool GetPlayTone(MOVAPlayToneRequest *pReq, STKCommand stCommand = STKCommand());
    bool GetLaunchBrowser(MOVALaunchBrowser *pReq, STKCommand stCommand = STKCommand());
    bool GetInKeyRquest(StkInKeyRequest *pReq, STKCommand stCommand = STKCommand());
    bool GetInputRequest(StkInKeyRequest *pReq, STKCommand stCommand = STKCommand());
    /* *pClearMode becomes "STK_CLR_MODE_AUTO" or empty, *pDuration seconds. */
    bool GetPromptText(QString *pText, QString *pClearMode, int *pDuration,
                       STKCommand stCommand = STKCommand());
    bool GetRefreshInfo(STKCommand stCommand = STKCommand());

    /* result: "STK_TYPE_OK" accepts, anything else cancels. */
    bool CallStkAnswerInKey(QString result, QString answer, STKCommand stCommand = STKCommand());
    bool CallStkAnswerInput(QString result, QString answer, STKCommand stCommand = STKCommand());
    bool SendNoDataResponse(_STK_UI_EN_STKTYPE type, _STK_UI_EN_TERMINALRESPONSE response,
                            STKCommand stCommand = STKCommand());

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

    int16_t cmdIdOf(STKCommand stCommand) const;
    void keepCommand(_MOVA_EN_STKTYPE enStkType, int16_t sCmdId);

    std::atomic<int16_t> m_sCmdId;
    std::atomic<int32_t> m_bRet;
    std::atomic<int32_t> m_bRespondence;
    std::atomic<STKCommand> m_astCommand[MOVA_STKTYPE_SETUP_IDLE_MODE_TEXT + 1]; /* by type */

    static std::atomic<STKLogic *> m_pStkLogicInst;
};

#endif
