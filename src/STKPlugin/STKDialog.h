#ifndef STKDIALOG_H
#define STKDIALOG_H

#include <QMap>
#include <QPointer>
#include <QTableWidget>

#include "STKLogic.h"
#include "platform/ExtendDialog.h"

class ClipMessageBox;
class ClipSound;
class QPushButton;
class QRect;
class QTimer;
class STKDialog;
class STKInputDlg;
class STKThread;

/* The list of the card's menu items.
 *
 * While the card is being waited for it swallows presses and keys.  Return on a selected row does
 * not select by itself: it goes on to the frame's default button, Close, and the frame then turns
 * the close into a selection because of the dialog's m_bEnterPressed. */
class STKTableWidget : public QTableWidget {
    Q_OBJECT

public:
    explicit STKTableWidget(QWidget *parent);
    void Instantiate(STKDialog *pStkDialog);

    void mousePressEvent(QMouseEvent *e) override;
    void mouseReleaseEvent(QMouseEvent *e) override;
    void keyPressEvent(QKeyEvent *e) override;
    void mouseDoubleClickEvent(QMouseEvent *e) override;
    ~STKTableWidget() = default;

private:
    bool isWaiting() const;

    QPointer<STKDialog> m_pStkDialog;
};

/* The frame of the toolkit window. */
class STKExtendDlg : public ExtendDialog {
    Q_OBJECT

public:
    explicit STKExtendDlg(QWidget *parent);
    void Instantiate(STKDialog *pStkDialog);

    void reject() override;
    void closeEvent(QCloseEvent *e) override;
    ~STKExtendDlg() = default;

private:
    QPointer<STKDialog> m_pStkDialog;
};

/* The toolkit window: the card's menu with Back, Select and Close, and the receiver of everything
 * that the card sends.  Not a widget: its widgets are built afresh for each showing and die with
 * their frame, whoever ends it; so every pointer to them turns null by itself.  The pointer to the
 * logic does too, because the first of its owners to go takes it along.
 *
 * GUI thread only.  What STKLogic and STKThread emit arrives queued.  The slots that show a window
 * run its event loop and return when it has closed; whatever else arrives meanwhile runs inside it.
 */
class STKDialog : public QObject {
    Q_OBJECT

public:
    static STKDialog *Instance();
    static void Destroy();

    /* Builds and shows the window over parent; false when it could not be built.  rect is not used.
     */
    bool ShowStkDlg(QWidget *parent, QRect &rect);
    bool initUI(QWidget *parent);
    void setStkUiLayout();
    void setStkObjectName();
    /* Translates every text of the window again. */
    void SetStkUiText();
    /* Of the host's catalogues.  Not the tr of Qt, which takes a literal: pass a QString. */
    QString tr(QString id);
    void unSDKRegisterEvent();

    void showMainMenu();
    void showSubMenu();
    bool deleteTableItems();
    void subMenuSeleted(QTableWidgetItem *item);

    /* Shows text in a modal box; QMessageBox::Ok when the user took note or the box cleared itself,
     * QMessageBox::Cancel otherwise. */
    int showTimeMessageBox(QString text);

    void playTone(QString strFileName);
    void stopTone();

    /* Waits, with a busy cursor, until the card sends something or the time-out of STKThread
     * passed. */
    void stkWaitforRespond(int iTimeOut);

    STKThread *m_pStkThread = nullptr;
    QPointer<STKTableWidget> m_pTableWidget;
    QPointer<QPushButton> m_pBtnBack;
    bool m_bEnterPressed = false; /* Return is on its way from the list to the frame */
    QString m_strMenuState = "STK_UNKNOWN"; /* or "STK_MAINMENU" or "STK_SUBMENU" */
    QPointer<ExtendDialog> m_pTimeMsgDlg;

public slots:
    void onButtonClickClose();
    void onButtonClickBack();
    void onButtonClickSelect();
    void onCellDoubleClicked(int iRow, int iColumn);
    void onSTKTimeOut();
    void onSTKPlayToneTimeOut();
    void onPlayingFinished();
    void onDeviceAvailable(bool isAvaialable);
    void onSTKSetupMenu();
    void onSTKDisplayText();
    void onSTKGetInkey();
    void onSTKGetInput();
    void onSTKSetupCall();
    void onSTKPlayTone();
    void onSTKSelItem();
    void onSTKRefresh();
    void onSTKSendSS();
    void onSTKSendSMS();
    void onSTKSendUSSD();
    void onSTKLaunchBrowser();
    void onSTKSetupIdleModeText();
    void onSTKEndSession();
    void onShowMainMenu();
    void onChangeCursor();
    void onCloseInputDlg();
    void onMessageTimeOut();

private:
    STKDialog();
    ~STKDialog();

    void forgetWindow();
    void closeInputDlg();
    void fillTable(const StkMenuItems &stMenu);
    void fetchAndShowMainMenu();
    void followChoice(bool bSent);
    void stopTimers(const char *szName);
    void useStkTimer(const QString &strTimerType, int nMilliseconds);
    bool takeCommand(_MOVA_EN_STKTYPE enStkType, STKCommand *pCommand);
    QWidget *dialogParent() const;
    void reportHandled();
    void startCountdown();
    ClipMessageBox *buildTextBox(const QString &strText);
    void askYesNo(const StkInKeyRequest &stRequest, STKCommand stCommand);
    void showInputDlg(STKCommand stCommand);

    QPointer<STKLogic> m_pStkLogic;
    QPointer<STKExtendDlg> m_pExtendDlg;
    QPointer<QWidget> m_pMainWidget;
    QPointer<QPushButton> m_pBtnSelect;
    QPointer<QPushButton> m_pBtnClose;
    QString m_strTitle = "";
    StkMenuItems m_stMainMenu = {"", new QList<StkItemClass>};
    StkMenuItems m_stSubMenu = {"", new QList<StkItemClass>};
    QTimer *m_pStkTimer = nullptr; /* one timer, two uses: m_strTimerType tells which */
    QPointer<STKInputDlg> m_pStkInputDlg;
    QString m_strTimerType; /* "STK_DEVICE_TIMER", "STK_MSGBOX_TIMER" or empty */
    QTimer *m_pPlayToneTimer = nullptr;
    QTimer *m_pMsgTimer = nullptr;
    int m_nMsgDuration = 0;
    QPushButton *m_pBtnOk = nullptr;
    QPushButton *m_pBtnCancel = nullptr;
    int m_nMsgTicks = 0;
    int m_nMsgRemain = 0;
    QMap<int, STKCommand> m_mapTaken; /* the last command of each type that a slot has taken */
    STKCommand m_stSubMenuCommand; /* the one whose menu m_stSubMenu is */
    int m_nQuestions = 0; /* how many input windows and yes/no boxes have come up */

    static STKDialog *m_pStkDialogInstance;
    static ClipSound *m_pClipSoundSTK;
    /* The yes/no box while it is up.  Whoever shows it writes here once more when it is gone, which
     * may be after this object. */
    static QDialog *m_pMessageBox;
};

#endif
