#include "STKInputDlg.h"

#include <new>

#include <QCloseEvent>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTimer>
#include <QVBoxLayout>

#include "STKKeyboardLoan.h"
#include "TraceLog.h"
#include "platform/Change.h"
#include "platform/CommonUtils.h"
#include "shared/TextView.h"

#define STK_TRACE_FILE "../../src/STKPlugin/STKInputDlg"

#if QT_VERSION < 0x060000
#include <QRegExpValidator>
typedef QRegExp STKPattern;
typedef QRegExpValidator STKPatternValidator;
#else
#include <QRegularExpressionValidator>
typedef QRegularExpression STKPattern;
typedef QRegularExpressionValidator STKPatternValidator;
#endif

namespace {

const int FRAME_WIDGET_TYPE = 1;
const int FRAME_WIDTH = 261, FRAME_HEIGHT = 170;
const int INPUT_WIDTH = 240, INPUT_HEIGHT = 22;
const int SPACING = 35;
const int INKEY_TIMER_MS = 1000;
const int INPUT_TYPE_DIGITS = 2;

/* Calls no text invalid: a line of Qt 4 that hides its text would empty itself for one, and tell
 * nobody.  STKInputDlg takes out by itself what is refused. */
class STKDigitsValidator : public STKPatternValidator {
public:
    explicit STKDigitsValidator(QObject *parent)
        : STKPatternValidator(STKPattern("[0-9*+#]*"), parent)
    {
    }
    State validate(QString &strText, int &nPos) const override
    {
        const int nCursor = nPos; // sent to the end of an invalid text
        const State enState = STKPatternValidator::validate(strText, nPos);
        nPos = nCursor;
        return qMax(Intermediate, enState);
    }
};

/* Half of a surrogate pair, as a length limit leaves it, is no character. */
QString wholeCharacters(const QString &strText)
{
    QString strWhole;
    for (int i = 0; i < strText.length(); ++i) {
        const QChar ch = strText.at(i);
        if (ch.isHighSurrogate() && i + 1 < strText.length() && strText.at(i + 1).isLowSurrogate())
            strWhole += strText.mid(i++, 2);
        else if (!ch.isHighSurrogate() && !ch.isLowSurrogate())
            strWhole += ch;
    }
    return strWhole;
}

QString onlyDigits(const QString &strText)
{
    const QString strDigits = "0123456789*+#";
    QString strOnly;
    for (int i = 0; i < strText.length(); ++i) {
        if (strDigits.contains(strText.at(i)))
            strOnly += strText.at(i);
    }
    return strOnly;
}

} // namespace

/* ---- The frame ---- */

STKInputExtendDlg::STKInputExtendDlg(QWidget *parent)
    : ExtendDialog(parent, Qt::WindowCloseButtonHint, FRAME_WIDGET_TYPE)
{
}

STKInputExtendDlg::~STKInputExtendDlg() { }

void STKInputExtendDlg::Instantiate(STKInputDlg *pStkInputDlg)
{
    m_pStkInputDlg = pStkInputDlg;
}

void STKInputExtendDlg::reject()
{
    if (!m_pStkInputDlg)
        return;
    m_pStkInputDlg->CloseDlg();
    TRACE_TIME_FILE_FUNC("%s : %s : %s : Entered");
}

void STKInputExtendDlg::closeEvent(QCloseEvent *)
{
    TRACE_TIME_FILE_FUNC("%s : %s : %s : Entered");
    if (!m_pStkInputDlg)
        return;
    if (m_pStkInputDlg->GetBtnClicked()) {
        m_pStkInputDlg->SetBtnClicked(false);
        if (m_pStkInputDlg->m_pExtendDlg)
            m_pStkInputDlg->m_pExtendDlg->close();
    } else {
        m_pStkInputDlg->CloseDlg();
    }
    m_pStkInputDlg->AssignNULL();
    TRACE_TIME_FILE_FUNC("%s : %s : %s : Exit");
}

void STKInputExtendDlg::onLineChanged(QString strText)
{
    if (m_pStkInputDlg)
        m_pStkInputDlg->settleLine(strText);
}

/* ---- The input dialog: life ---- */

STKInputDlg *STKInputDlg::m_pStkInputDlgInstance = nullptr;

STKInputDlg *STKInputDlg::StkInputDlgInstance()
{
    TRACE_START();
    if (!m_pStkInputDlgInstance)
        m_pStkInputDlgInstance = new STKInputDlg;
    TRACE_END();
    return m_pStkInputDlgInstance;
}

void STKInputDlg::DestroyInstance()
{
    TRACE_START();
    if (m_pStkInputDlgInstance) {
        delete m_pStkInputDlgInstance;
        m_pStkInputDlgInstance = nullptr;
    }
    TRACE_END();
}

STKInputDlg::STKInputDlg()
    : m_pInputTimer(nullptr)
    , m_stInKeyRequest()
    , m_nLastError(-1)
    , m_enStkType(MOVA_STKTYPE_GET_INPUT)
    , m_bBtnClicked(false)
    , m_bSettledOk(false)
{
    TRACE_START();
    m_stInKeyRequest.strText = "";
    m_pStkLogic = STKLogic::CreateInstance();
    TRACE_FILE_FUNC_TIME("End  of %s: %s: %s: ");
}

STKInputDlg::~STKInputDlg()
{
    TRACE_START();
    STKLogic::DestroyInst();
    m_pExtendDlg = nullptr;
    m_pStkLogic = nullptr;
    m_pMainWidget = nullptr;
    m_pBtnOk = nullptr;
    m_pBtnCancel = nullptr;
    m_pLabelText = nullptr;
    m_pLineEditInput = nullptr;
    m_pInputTimer = nullptr;
    TRACE_FILE_FUNC_TIME("End  of %s: %s: %s: ");
}

/* ---- The input dialog: window ---- */

bool STKInputDlg::initUI(QWidget *parent)
{
    TRACE_START();
    m_pExtendDlg = new (std::nothrow) STKInputExtendDlg(parent);
    if (TRACE_IS_NULL(m_pExtendDlg))
        return false;
    // Without a handle of its own the line would have the keyboard grabbed for the window behind,
    // and that takes the keys of every program.
    m_pExtendDlg->winId();
    m_pMainWidget = new (std::nothrow) QWidget(m_pExtendDlg);
    m_pBtnOk = new (std::nothrow) QPushButton(m_pExtendDlg);
    m_pBtnCancel = new (std::nothrow) QPushButton(m_pExtendDlg);
    m_pLabelText = new (std::nothrow) QLabel(m_pExtendDlg);
    m_pLineEditInput = new (std::nothrow) QLineEdit(m_pExtendDlg);
    m_pInputTimer = new (std::nothrow) QTimer(this);
    if (!m_pMainWidget || !m_pBtnOk || !m_pBtnCancel || !m_pLabelText || !m_pLineEditInput ||
        !m_pInputTimer) {
        TRACE_TIME_FILE_FUNC("%s: %s: %s: Memory Allocation Failed");
        return false;
    }
    m_pExtendDlg->Instantiate(this);
    m_pExtendDlg->AddMainWidget(m_pMainWidget);
    SetStkInputUiText();
    m_pLineEditInput->setFixedSize(INPUT_WIDTH, INPUT_HEIGHT);
    m_pLabelText->setFixedWidth(INPUT_WIDTH);
    m_pLabelText->setWordWrap(true);
    m_pLabelText->setTextFormat(Qt::PlainText);
    setStkInputUiLayout();
    setStkInputObjectName();
    setInitSetting();
    connect(m_pBtnOk, SIGNAL(clicked()), this, SLOT(onButtonClickOk()));
    connect(m_pBtnCancel, SIGNAL(clicked()), this, SLOT(onButtonClickCancel()));
    connect(m_pLineEditInput, SIGNAL(textEdited(QString)), this, SLOT(onTextEdited(QString)));
    connect(m_pLineEditInput, SIGNAL(textChanged(QString)), m_pExtendDlg,
            SLOT(onLineChanged(QString)));
    m_pLineEditInput->installEventFilter(this);
    connect(m_pInputTimer, SIGNAL(timeout()), this, SLOT(onTimerTimeOut()));
    TRACE_FILE_FUNC_TIME("End  of %s: %s: %s: ");
    return true;
}

void STKInputDlg::setStkInputUiLayout()
{
    TRACE_FILE_FUNC_TIME("Start  of %s: %s: %s: ");
    QVBoxLayout *pVertical = new (std::nothrow) QVBoxLayout;
    QHBoxLayout *pHorizontal = new (std::nothrow) QHBoxLayout;
    if (!pVertical || !pHorizontal) {
        TRACE_FILE_FUNC_TIME("Memory allocation failed %s: %s: %s: ");
        return;
    }
    pVertical->addWidget(m_pLabelText);
    pVertical->addWidget(m_pLineEditInput);
    pHorizontal->addWidget(m_pBtnOk);
    pHorizontal->addWidget(m_pBtnCancel);
    pHorizontal->setAlignment(Qt::AlignRight);
    pHorizontal->setSpacing(SPACING);
    pVertical->insertSpacing(1, SPACING);
    pVertical->addLayout(pHorizontal);
    if (m_pMainWidget)
        m_pMainWidget->setLayout(pVertical);
    TRACE_FILE_FUNC_TIME("End  of %s: %s: %s: ");
}

void STKInputDlg::setStkInputObjectName()
{
    TRACE_START();
    if (!m_pExtendDlg || !m_pMainWidget || !m_pBtnOk || !m_pBtnCancel || !m_pLabelText ||
        !m_pLineEditInput) {
        TRACE_FILE_FUNC_TIME("Memory is null  %s: %s: %s: ");
        return;
    }
    // The host's style sheets know the first four with their blank.
    m_pExtendDlg->setObjectName("STKPlugin _StkInputDlg");
    m_pMainWidget->setObjectName("STKPlugin _StkInputWidget");
    m_pBtnOk->setObjectName("STKPlugin _PushBtnOk");
    m_pBtnCancel->setObjectName("STKPlugin _PushBtnCancel");
    m_pLabelText->setObjectName("STKPlugin_LabelText");
    m_pLineEditInput->setObjectName("STKPlugin_LineEditInput");
    TRACE_FILE_FUNC_TIME("End  of %s: %s: %s: ");
}

void STKInputDlg::SetStkInputUiText()
{
    TRACE_FILE_FUNC_TIME("Start  of %s: %s: %s: ");
    if (!m_pExtendDlg || !m_pBtnOk || !m_pBtnCancel) {
        TRACE_FILE_FUNC_TIME("UI widget is null  of %s: %s: %s: ");
        return;
    }
    m_pExtendDlg->setWindowTitle("");
    m_pBtnOk->setText(tr(QString("IDS_STK_BTN_OK")));
    m_pBtnCancel->setText(tr(QString("IDS_STK_BTN_CANCEL")));
    TRACE_FILE_FUNC_TIME("End  of %s: %s: %s: ");
}

void STKInputDlg::ShowStkInputDlg(QWidget *parent, STKCommand stCommand)
{
    TRACE_START();
    AssignNULL();
    m_stCommand = stCommand;
    m_bBtnClicked = false; // whatever way the window before this one ended
    if (!initUI(parent)) {
        TRACE_FILE_FUNC_TIME("inintialization of UI is failed %s: %s: %s: ");
        return;
    }
    setInitSetting();
    if (m_pLineEditInput) {
        m_pLineEditInput->setFocus(Qt::OtherFocusReason);
        m_pLineEditInput->grabKeyboard();
    }
    m_pExtendDlg->setFixedSize(FRAME_WIDTH, FRAME_HEIGHT);
    fitPrompt();
    m_pExtendDlg->setWindowModality(Qt::WindowModal);
    m_pExtendDlg->setAttribute(Qt::WA_DeleteOnClose);
    m_pExtendDlg->exec();
    TRACE_END();
}

bool STKInputDlg::isPromptTooLong() const
{
    if (m_pMainWidget->layout()->totalHeightForWidth(FRAME_WIDTH) > FRAME_HEIGHT)
        return true;
    const QStringList words = m_stInKeyRequest.strText.simplified().split(' ');
    for (int i = 0; i < words.size(); ++i) {
        if (m_pLabelText->fontMetrics().boundingRect(words.at(i)).width() > INPUT_WIDTH)
            return true;
    }
    return false;
}

/* The window has one size, and a prompt may have any length. */
void STKInputDlg::fitPrompt()
{
    QBoxLayout *const pLayout =
        m_pMainWidget ? qobject_cast<QBoxLayout *>(m_pMainWidget->layout()) : nullptr;
    if (!pLayout || !m_pLabelText || !isPromptTooLong())
        return;
    QTextEdit *const pView = textViewFor(m_pLabelText);
    pView->setObjectName("STKPlugin_PromptView");
    pView->document()->setDocumentMargin(0);
    pView->setFixedWidth(INPUT_WIDTH);
    pView->setMinimumHeight(1); // what the others leave of the window, and no more
    pLayout->insertWidget(pLayout->indexOf(m_pLabelText), pView);
}

void STKInputDlg::CloseDlg()
{
    TRACE_START();
    onButtonClickCancel();
    TRACE_END();
}

bool STKInputDlg::IsDialogCreated()
{
    TRACE_START();
    TRACE_END();
    return m_pExtendDlg;
}

void STKInputDlg::AssignNULL()
{
    TRACE_START();
    // It stays behind as this object's child; it must not tick into the next window.
    if (m_pInputTimer)
        m_pInputTimer->stop();
    m_pInputTimer = nullptr;
    m_pExtendDlg = nullptr;
    m_pMainWidget = nullptr;
    m_pBtnOk = nullptr;
    m_pBtnCancel = nullptr;
    m_pLabelText = nullptr;
    m_pLineEditInput = nullptr;
    TRACE_END();
}

int STKInputDlg::GetLastError()
{
    TRACE_START();
    TRACE_END();
    return m_nLastError;
}

QString STKInputDlg::tr(QString id)
{
    TRACE_START();
    const QString strText = Change::tr(id, "STKPlugin");
    TRACE_END();
    return strText;
}

void STKInputDlg::SetBtnClicked(bool bBtnClicked)
{
    TRACE_START();
    m_bBtnClicked = bBtnClicked;
    TRACE_END();
}

bool STKInputDlg::GetBtnClicked()
{
    TRACE_START();
    TRACE_END();
    return m_bBtnClicked;
}

/* ---- The input dialog: request and answer ---- */

void STKInputDlg::SetInputRequest(StkInKeyRequest req)
{
    TRACE_START();
    m_stInKeyRequest = req;
    m_enStkType = MOVA_STKTYPE_GET_INPUT;
    TRACE_END();
}

void STKInputDlg::SetInKeyRequest(StkInKeyRequest req)
{
    TRACE_START();
    m_stInKeyRequest.nMaxLen = 1;
    m_stInKeyRequest.bEcho = 1;
    m_stInKeyRequest.nMinLen = 1;
    m_stInKeyRequest.nInputType = req.nInputType;
    m_stInKeyRequest.bOption = req.bOption;
    m_stInKeyRequest.strText = req.strText;
    m_enStkType = MOVA_STKTYPE_GET_INKEY;
    if (req.nDuration > 0 && m_pInputTimer)
        m_pInputTimer->start(INKEY_TIMER_MS);
    TRACE_END();
}

void STKInputDlg::setInitSetting()
{
    TRACE_FILE_FUNC_TIME("Start  of %s: %s: %s: ");
    if (!m_pLabelText || !m_pLineEditInput || !m_pBtnOk) {
        TRACE_TIME_FILE_FUNC("Arg is NULL: %s: %s: %s");
        return;
    }
    m_pLabelText->setText(m_stInKeyRequest.strText);
    m_pLineEditInput->setMaxLength(m_stInKeyRequest.nMaxLen);
    m_pLineEditInput->activateWindow();
    m_pLineEditInput->setEchoMode(m_stInKeyRequest.bEcho ? QLineEdit::Normal : QLineEdit::Password);
    if (m_stInKeyRequest.nInputType == INPUT_TYPE_DIGITS)
        m_pLineEditInput->setValidator(new STKDigitsValidator(this));
    else
        m_pLineEditInput->setValidator(nullptr);
    m_pLineEditInput->setText(
        wholeCharacters(m_stInKeyRequest.strDefaultText.left(m_stInKeyRequest.nMaxLen)));
    m_strSettled = m_pLineEditInput->text();
    m_bSettledOk = false;
    m_pBtnOk->setEnabled(false);
    TRACE_FILE_FUNC_TIME("End  of %s: %s: %s: ");
}

void STKInputDlg::onTextEdited(QString strText)
{
    TRACE_START();
    if (!m_pBtnOk) {
        TRACE_FILE_FUNC_TIME("Memory is null %s: %s: %s: ");
        return;
    }
    m_pBtnOk->setEnabled(strText.length() >= m_stInKeyRequest.nMinLen);
    TRACE_END();
}

/* A key that is refused does not reach the line, where it would replace what is selected. */
bool STKInputDlg::eventFilter(QObject *, QEvent *e)
{
    if (e->type() != QEvent::KeyPress)
        return false;
    const QKeyEvent *const pKey = static_cast<QKeyEvent *>(e);
    const QString strText = pKey->text();
    if (strText.isEmpty() || !strText.at(0).isPrint() || pKey->modifiers() & Qt::ControlModifier)
        return false;
    return allowedText(strText).isEmpty();
}

QString STKInputDlg::allowedText(QString strText) const
{
    if (m_stInKeyRequest.nInputType == INPUT_TYPE_DIGITS)
        return onlyDigits(strText);
    return wholeCharacters(strText);
}

/* What the change that led to this text put in before the cursor was refused altogether. */
bool STKInputDlg::isChangeRefused(const QString &strText) const
{
    const int nCursor = m_pLineEditInput->cursorPosition();
    const QString strHead = allowedText(strText.left(nCursor));
    const QString strTail = allowedText(strText.mid(nCursor));
    return strHead.length() + strTail.length() <= m_strSettled.length() &&
        m_strSettled.startsWith(strHead) && m_strSettled.endsWith(strTail);
}

/* Has the last word on the line, whichever way it was changed: not all of them pass the keys, and
 * not all are reported as edits (undo empties a hidden line in silence). */
void STKInputDlg::settleLine(const QString &strText)
{
    if (!m_pLineEditInput || !m_pBtnOk)
        return;
    const QString strAllowed = allowedText(strText);
    const bool bRefused = strAllowed != strText && isChangeRefused(strText);
    if (!bRefused) {
        m_strSettled = strAllowed;
        m_bSettledOk = strAllowed.length() >= m_stInKeyRequest.nMinLen;
    }
    if (m_strSettled != strText) {
        const int nCursor = m_pLineEditInput->cursorPosition();
        const bool bBlocked = m_pLineEditInput->blockSignals(true);
        m_pLineEditInput->setText(m_strSettled);
        m_pLineEditInput->setCursorPosition(allowedText(strText.left(nCursor)).length());
        m_pLineEditInput->blockSignals(bBlocked);
    }
    m_pBtnOk->setEnabled(m_bSettledOk);
}

bool STKInputDlg::sendAnswer(const QString &strResult, const QString &strAnswer)
{
    if (m_enStkType == MOVA_STKTYPE_GET_INKEY)
        return m_pStkLogic->CallStkAnswerInKey(strResult, strAnswer, m_stCommand);
    return m_pStkLogic->CallStkAnswerInput(strResult, strAnswer, m_stCommand);
}

void STKInputDlg::onButtonClickOk()
{
    TRACE_START();
    SetBtnClicked(true);
    if (!m_pStkLogic || !m_pLineEditInput || !m_pExtendDlg) {
        TRACE_FILE_FUNC_TIME("Logic Instance/Widget is NULL %s: %s: %s: ");
        return;
    }
    if (sendAnswer("STK_TYPE_OK", m_pLineEditInput->text())) {
        m_nLastError = 0;
        if (m_pExtendDlg)
            m_pExtendDlg->close();
    } else {
        m_nLastError = -1;
        QDialog *pMessageBox = nullptr;
        STKKeyboardLoan loan;
        CommonUtils::ShowMessage(QMessageBox::Information, m_pExtendDlg,
                                 tr(QString("IDS_STK_MSG_PROMPT")),
                                 tr(QString("IDS_STK_MSG_INPUTFAILED")), "IDS_OK", "", "", true,
                                 Qt::WindowCloseButtonHint, &pMessageBox, QString(), true);
    }
    TRACE_END();
}

void STKInputDlg::onButtonClickCancel()
{
    TRACE_START();
    SetBtnClicked(true);
    if (!m_pStkLogic || !m_pExtendDlg) {
        TRACE_FILE_FUNC_TIME("Logic Instance/ widget is NULL %s: %s: %s: ");
        return;
    }
    m_nLastError = sendAnswer("STK_TYPE_CANCEL", "") ? 0 : -1;
    if (m_pExtendDlg)
        m_pExtendDlg->close();
    TRACE_END();
}

void STKInputDlg::onTimerTimeOut()
{
    TRACE_START();
    if (m_pInputTimer) {
        m_pInputTimer->stop();
        onButtonClickCancel();
    }
    TRACE_END();
}
