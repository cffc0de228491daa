#ifndef STKINPUTDLG_H
#define STKINPUTDLG_H

#include <QPointer>

#include "STKLogic.h"
#include "platform/ExtendDialog.h"

class QLabel;
class QLineEdit;
class QPushButton;
class QTimer;
class STKInputDlg;

/* The frame of the input window: every way out that is not a button answers Cancel. */
class STKInputExtendDlg : public ExtendDialog {
    Q_OBJECT

public:
    explicit STKInputExtendDlg(QWidget *parent);
    void Instantiate(STKInputDlg *pStkInputDlg);

    void reject() override;
    void closeEvent(QCloseEvent *e) override;
    ~STKInputExtendDlg();

private slots:
    void onLineChanged(QString strText);

private:
    QPointer<STKInputDlg> m_pStkInputDlg;
};

/* The small modal window in which the user answers a Get Inkey or a Get Input; it sends the answer
 * itself.  The window is built afresh for every request and dies with its frame.
 *
 * GUI thread only.  The order of use is SetInKeyRequest or SetInputRequest, ShowStkInputDlg, which
 * returns when the window has closed, GetLastError. */
class STKInputDlg : public QObject {
    Q_OBJECT

public:
    static STKInputDlg *StkInputDlgInstance();
    static void DestroyInstance();

    bool initUI(QWidget *parent);
    /* The answer goes to that command, without one to the newest. */
    void ShowStkInputDlg(QWidget *parent, STKCommand stCommand = STKCommand());
    /* Answers Cancel and closes the window. */
    void CloseDlg();
    bool IsDialogCreated();
    /* Forgets the window without deleting anything. */
    void AssignNULL();
    /* 0 when the last answer was sent, -1 when it failed or there was none yet. */
    int GetLastError();
    /* Of the host's catalogues.  Not the tr of Qt, which takes a literal: pass a QString. */
    QString tr(QString id);
    void SetStkInputUiText();
    void setStkInputObjectName();
    void setStkInputUiLayout();
    /* Applies the request to the widgets. */
    void setInitSetting();
    void SetBtnClicked(bool bBtnClicked);
    bool GetBtnClicked();

    void SetInputRequest(StkInKeyRequest req);
    /* One character, shown as it is typed.  A default text stays as the last Get Input left it. */
    void SetInKeyRequest(StkInKeyRequest req);

public slots:
    void onButtonClickOk();
    void onButtonClickCancel();
    void onTextEdited(QString strText);
    void onTimerTimeOut();

private:
    friend class STKInputExtendDlg;

    STKInputDlg();
    ~STKInputDlg();

    bool eventFilter(QObject *pWatched, QEvent *e) override;
    QString allowedText(QString strText) const;
    bool isChangeRefused(const QString &strText) const;
    void settleLine(const QString &strText);
    bool isPromptTooLong() const;
    void fitPrompt();
    bool sendAnswer(const QString &strResult, const QString &strAnswer);

    QPointer<STKInputExtendDlg> m_pExtendDlg;
    QPointer<STKLogic> m_pStkLogic;
    QPointer<QWidget> m_pMainWidget;
    QPointer<QPushButton> m_pBtnOk;
    QPointer<QPushButton> m_pBtnCancel;
    QPointer<QLabel> m_pLabelText;
    QPointer<QLineEdit> m_pLineEditInput;
    QTimer *m_pInputTimer; /* this object's child: one stays behind for every window shown */
    StkInKeyRequest m_stInKeyRequest;
    int m_nLastError;
    int m_enStkType; /* MOVA_STKTYPE_GET_INKEY or MOVA_STKTYPE_GET_INPUT */
    bool m_bBtnClicked; /* OK or Cancel has answered: the close must not do so again */
    STKCommand m_stCommand; /* the one that the window was opened for */
    QString m_strSettled; /* what the line holds, without what it refuses */
    bool m_bSettledOk; /* OK may send it */

    static STKInputDlg *m_pStkInputDlgInstance;
};

#endif
