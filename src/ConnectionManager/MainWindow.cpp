#include "MainWindow.h"

#include <QApplication>
#include <QCloseEvent>
#include <QClipboard>
#include <QFile>
#include <QDir>
#include <QFileDialog>
#include <QFileInfo>
#include <QHBoxLayout>
#include <QJsonDocument>
#include <QJsonObject>
#include <QMenuBar>
#include <QRegularExpression>
#include <QStatusBar>

#include "CardCommands.h"
#include "Headline.h"
#include "Languages.h"
#include "Messages.h"
#include "ModemIcon.h"
#include "ModemMenu.h"
#include "PinDialog.h"
#include "PluginHost.h"
#include "ReaderMenu.h"
#include "ServiceEvents.h"
#include "session/ServiceStatus.h"
#include "ToolkitButton.h"
#include "ToolkitWindows.h"
#include "Transcript.h"
#include "TranscriptView.h"
#include "UrlBar.h"
#include "platform/CommonUtils.h"

using CardHost::ModemState;
using Languages::leftToRight;
using Languages::text;

namespace {

constexpr int RefreshInterval = 200; // ms
constexpr int StateIconSize = 64;
constexpr int UncodableShown = 30'000; // ms; then the entry has long been corrected

const char *refusalId(HostUi::UrlRefusal reason)
{
    switch (reason) {
    case HostUi::SchemeNotAllowed:
        return "IDS_CM_URL_SCHEME";
    case HostUi::NoHost:
        return "IDS_CM_URL_NO_HOST";
    case HostUi::NotAnAddress:
        break;
    }
    return "IDS_CM_URL_NO_ADDRESS";
}

// An address for the status bar.
QString shortened(const QString &address)
{
    constexpr int Longest = 60;
    return leftToRight(address.size() <= Longest ? address : address.left(Longest - 1) + "…");
}

// Whether somebody has to see or to answer the command.
bool wantsUser(int type)
{
    return type == MOVA_STKTYPE_SELECT_ITEM || type == MOVA_STKTYPE_DISPLAY_TEXT ||
        type == MOVA_STKTYPE_GET_INKEY || type == MOVA_STKTYPE_GET_INPUT;
}

bool hasToolkit(ModemState state)
{
    return state == ModemState::Ready || state == ModemState::Busy;
}

// The operator's name as the card's author wrote it, else the file's name.
QString cardName(const QString &fileName)
{
    QFile file(fileName);
    if (!file.open(QIODevice::ReadOnly))
        return QFileInfo(fileName).completeBaseName();
    const QString name = QJsonDocument::fromJson(file.readAll()).object().value("name").toString();
    return name.isEmpty() ? QFileInfo(fileName).completeBaseName() : name;
}

// For buttons, which take no key; Chinese puts the key behind the text, in parentheses.
QString withoutMnemonic(QString text)
{
    static const QRegularExpression trailingKey("\\(&.\\)");
    return text.remove(trailingKey).remove('&');
}

// The plug-in covers the cursor at the start and at the end of every wait and never uncovers it. An
// arrow on top says that no wait is under way: then the whole pile can go.
void dropCoveredCursors()
{
    const QCursor *top = QApplication::overrideCursor();
    if (!top || top->shape() != Qt::ArrowCursor)
        return;
    while (QApplication::overrideCursor())
        QApplication::restoreOverrideCursor();
}

} // namespace

MainWindow::MainWindow(PluginHost &plugin, Transcript &transcript, ServiceEvents &events)
    : m_plugin(plugin)
    , m_urls([this](const QUrl &url) { openUrl(url); })
{
    setObjectName("ConnectionManager_MainWindow");
    setWindowIcon(ModemIcon::simCard());
    createActions();
    createMenus();
    createContent();
    m_panel = std::make_unique<NetworkPanel>(
        QList<QAction *>{m_remove, m_insert, m_endSession, m_timeOutSession}, m_cardMenu,
        m_languageMenu, m_urls);
    m_panel->setWindowIcon(windowIcon());
    resize(720, 520);
    connect(&transcript, &Transcript::entriesAdded, this, &MainWindow::appendEntries);
    connect(&events, &ServiceEvents::readersChanged, this,
            [this](const CardHost::ReaderList &list) {
                m_readers->setReaders(list);
                refreshTexts();
            });
    connect(&events, &ServiceEvents::modemsChanged, this,
            [this](const std::vector<CardHost::Modem> &modems) {
                m_modems->setModems(modems);
                refreshTexts();
            });
    connect(&events, &ServiceEvents::commandComes, this, &MainWindow::meetCommand);
    connect(&m_urls, &UrlRequests::changed, this, &MainWindow::offerUrlPanel);
    connect(&events, &ServiceEvents::noticed, this, &MainWindow::showNotice);
    connect(&events, &ServiceEvents::pinRequestChanged, this, &MainWindow::askPin);
    connect(&m_refreshTimer, &QTimer::timeout, this, &MainWindow::refresh);
    m_refreshTimer.start(RefreshInterval);
}

MainWindow::~MainWindow() = default;

QString MainWindow::openCard(const QString &file)
{
    changeSource(nullptr);
    const QString error =
        QString::fromStdString(CardHost::openScenario(QFile::encodeName(file).toStdString()));
    m_cardName = error.isEmpty() ? cardName(file) : QString();
    showError(error);
    refreshTexts();
    return error;
}

void MainWindow::openReader(const QString &nameStart)
{
    changeSource(m_readers);
    m_readers->use(nameStart);
    CardHost::openReader(nameStart.toStdString());
    refreshTexts();
}

void MainWindow::openModem(const CardHost::Modem &modem)
{
    changeSource(m_modems);
    m_modems->use(modem);
    CardHost::openModem(modem.kind, modem.device);
    refreshTexts();
}

void MainWindow::changeSource(SourceMenu *source)
{
    m_readers->useNone();
    m_modems->useNone();
    m_source = source;
    m_urls.decline(); // it was the card before that asked
    m_cardName.clear();
    showError({});
}

void MainWindow::setLanguage(const QString &code)
{
    m_language = code;
    if (!Languages::apply(code))
        qWarning("The texts of language %s cannot be read", qPrintable(code));
    retranslate();
    m_plugin.languageChanged(code);
    CardHost::setLanguage(code.section('_', 0, 0).toStdString());
}

void MainWindow::showNote(const QString &text)
{
    statusBar()->showMessage(text);
}

QString MainWindow::note() const
{
    return m_errorLabel->isHidden() ? statusBar()->currentMessage() : m_errorLabel->text();
}

void MainWindow::openUrl(const QUrl &url)
{
    const char *const words = m_browser(url) ? "IDS_CM_URL_OPENED" : "IDS_CM_URL_NO_BROWSER";
    showNote(text(words).arg(shortened(url.toString(QUrl::FullyEncoded))));
}

void MainWindow::offerUrlPanel()
{
    if (ToolkitWindows::toolkit() && !m_urls.waiting().isEmpty())
        m_panel->showBeside(this);
}

UrlBar *MainWindow::urlBar() const
{
    return QApplication::activeModalWidget() ? m_panel->urlBar() : m_urlBar;
}

// Before the plug-in hears of it: what it draws needs its window.
void MainWindow::meetCommand(int type)
{
    if (type == MOVA_STKTYPE_SELECT_ITEM)
        openToolkit();
    if (wantsUser(type) && (isMinimized() || !QApplication::activeWindow()))
        QApplication::alert(this);
}

void MainWindow::noteRefusedUrl(const QString &address, HostUi::UrlRefusal reason)
{
    showNote(text("IDS_CM_URL_REFUSED").arg(shortened(address), text(refusalId(reason))));
}

void MainWindow::openToolkit()
{
    if (ToolkitWindows::toolkit())
        return;
    if (!m_plugin.showWindow(this)) {
        showNote(text("IDS_CM_TOOLKIT_FAILED"));
        return;
    }
    if (m_panelOffered || m_source == m_modems) // nobody plays a modem's network
        return;
    m_panel->showBeside(this);
    m_panelOffered = true;
}

PinDialog *MainWindow::pinDialog() const
{
    return m_pinDialog && m_pinDialog->isVisible() ? m_pinDialog.get() : nullptr;
}

void MainWindow::closeEvent(QCloseEvent *event)
{
    event->accept();
    QCoreApplication::exit(0);
}

QAction *MainWindow::addNetworkAction(const char *textId, const QKeySequence &shortcut,
                                      void (*act)())
{
    auto *action = new QAction(this);
    action->setShortcut(shortcut);
    m_actionTexts.append({action, textId});
    connect(action, &QAction::triggered, this, [this, act] {
        act();
        refresh();
    });
    return action;
}

void MainWindow::createActions()
{
    const auto add = [this](const char *textId, const QKeySequence &shortcut, auto slot) {
        auto *action = new QAction(this);
        action->setShortcut(shortcut);
        m_actionTexts.append({action, textId});
        connect(action, &QAction::triggered, this, slot);
        return action;
    };
    m_openCard = add("IDS_CM_OPEN_CARD", QKeySequence::Open, &MainWindow::chooseCard);
    m_quit = add("IDS_CM_QUIT", QKeySequence("Ctrl+Q"), &MainWindow::close);
    m_toolkit = add("IDS_CM_TOOLKIT", QKeySequence("Ctrl+T"), &MainWindow::openToolkit);
    m_about = add("IDS_CM_ABOUT", {}, &MainWindow::showAbout);
    m_copy = add("IDS_CM_COPY", {},
                 [this] { QApplication::clipboard()->setText(m_transcriptView->toPlainText()); });
    m_clear = add("IDS_CM_CLEAR", {}, [this] { m_transcriptView->clear(); });
    m_showPanel =
        add("IDS_CM_SHOW_NETWORK", QKeySequence("Ctrl+N"), [this] { m_panel->showBeside(this); });
    m_remove = addNetworkAction("IDS_CM_REMOVE", QKeySequence("Ctrl+R"), CardHost::removeModem);
    m_insert = addNetworkAction("IDS_CM_INSERT", QKeySequence("Ctrl+I"), CardHost::insertModem);
    m_endSession =
        addNetworkAction("IDS_CM_END_SESSION", QKeySequence("Ctrl+E"), CardHost::endSession);
    m_timeOutSession =
        addNetworkAction("IDS_CM_TIME_OUT", QKeySequence("Ctrl+Shift+E"), CardHost::timeOutSession);
    m_restart = new QAction(this); // its text depends on where the card is
    connect(m_restart, &QAction::triggered, this, [this] { showError({}); });
    connect(m_restart, &QAction::triggered, this, [] { CardHost::restartCard(); });
}

void MainWindow::createMenus()
{
    const auto add = [this](const char *textId, const QList<QAction *> &actions) {
        QMenu *menu = menuBar()->addMenu(QString());
        m_menuTexts.append({menu, textId});
        menu->addActions(actions);
        return menu;
    };
    QMenu *file = add("IDS_CM_MENU_FILE", {m_openCard});
    file->addSeparator();
    m_readers = new ReaderMenu(file);
    connect(m_readers, &ReaderMenu::chosen, this, &MainWindow::openReader);
    m_modems = new ModemMenu(file);
    connect(m_modems, &ModemMenu::chosen, this, &MainWindow::openModem);
    file->addAction(m_quit);
    add("IDS_CM_MENU_MODEM", {m_toolkit, m_remove, m_insert})->insertSeparator(m_remove);
    m_cardMenu = add("IDS_CM_MENU_CARD", {});
    createCommandMenu();
    m_languageMenu = add("IDS_CM_MENU_LANGUAGE", {});
    auto *group = new QActionGroup(this);
    for (const QString &code : Languages::codes()) {
        QAction *action = m_languageMenu->addAction(Languages::nativeName(code));
        action->setCheckable(true);
        action->setData(code);
        group->addAction(action);
        m_languageActions << action;
        connect(action, &QAction::triggered, this, [this, code] { setLanguage(code); });
    }
    add("IDS_CM_MENU_HELP", {m_about});
}

// The names of the commands are technical English in every language, as in the transcript.
void MainWindow::createCommandMenu()
{
    m_commandActions = new QActionGroup(this);
    QMenu *ways = nullptr;
    for (const CardCommand &command : cardCommands()) {
        QAction *action = m_commandActions->addAction(command.name);
        connect(action, &QAction::triggered, this, [this, &command] { sendCommand(command.json); });
        if (!command.wayId) {
            m_cardMenu->addAction(action);
            continue;
        }
        if (!ways || ways->title() != command.name) {
            ways = m_cardMenu->addMenu(command.name);
            m_commandActions->addAction(ways->menuAction());
        }
        ways->addAction(action);
        m_actionTexts.append({action, command.wayId});
    }
    m_cardMenu->addSeparator();
    m_cardMenu->addActions({m_endSession, m_timeOutSession, m_restart, m_showPanel});
    m_cardMenu->insertSeparator(m_showPanel);
}

void MainWindow::createContent()
{
    auto *content = new QWidget(this);
    auto *layout = new QVBoxLayout(content);
    layout->setContentsMargins(12, 12, 12, 6);
    layout->setSpacing(8);
    layout->addWidget(createHeader());

    m_errorLabel = new QLabel(content);
    m_errorLabel->setObjectName("ConnectionManager_Error");
    m_errorLabel->setTextFormat(Qt::PlainText);
    m_errorLabel->setWordWrap(true);
    m_errorLabel->setTextInteractionFlags(Qt::TextSelectableByMouse);
    m_errorLabel->setStyleSheet(
        "background: #fbe3e1; color: #7a1710; border-radius: 4px; padding: 8px;");
    m_errorLabel->hide();
    layout->addWidget(m_errorLabel);

    layout->addWidget(createTranscriptBar());
    m_transcriptView = new TranscriptView(content);
    layout->addWidget(m_transcriptView, 1);
    m_urlBar = new UrlBar(m_urls, QBoxLayout::LeftToRight, content);
    layout->addWidget(m_urlBar);
    setCentralWidget(content);
    statusBar()->addPermanentWidget(new QLabel(m_plugin.description(), this));
}

QWidget *MainWindow::createHeader()
{
    auto *header = new QFrame(this);
    header->setFrameShape(QFrame::StyledPanel);
    header->setBackgroundRole(QPalette::Base);
    header->setAutoFillBackground(true);
    auto *row = new QHBoxLayout(header);
    row->setContentsMargins(16, 12, 16, 12);
    row->setSpacing(16);

    m_icon = new QLabel(header);
    row->addWidget(m_icon);

    auto *texts = new QVBoxLayout;
    m_stateLabel = new QLabel(header);
    m_stateLabel->setObjectName("ConnectionManager_State");
    QFont large = m_stateLabel->font();
    large.setPointSizeF(large.pointSizeF() * 1.5);
    large.setBold(true);
    m_stateLabel->setFont(large);
    m_cardLabel = new QLabel(header);
    m_cardLabel->setTextFormat(Qt::PlainText);
    m_cardLabel->setWordWrap(true);
    texts->addStretch();
    texts->addWidget(m_stateLabel);
    texts->addWidget(m_cardLabel);
    texts->addStretch();
    row->addLayout(texts, 1);

    m_toolkitButton = new ToolkitButton(header);
    connect(m_toolkitButton, &QPushButton::clicked, this, &MainWindow::openToolkit);
    row->addWidget(m_toolkitButton);
    return header;
}

QWidget *MainWindow::createTranscriptBar()
{
    auto *bar = new QWidget(this);
    auto *row = new QHBoxLayout(bar);
    row->setContentsMargins(0, 4, 0, 0);
    m_transcriptLabel = new QLabel(bar);
    row->addWidget(m_transcriptLabel, 1);
    for (QAction *action : {m_copy, m_clear}) {
        auto *button = new QToolButton(bar);
        button->setDefaultAction(action);
        button->setAutoRaise(true);
        row->addWidget(button);
    }
    return bar;
}

void MainWindow::retranslate()
{
    setWindowTitle(text("IDS_CM_TITLE"));
    for (const auto &entry : qAsConst(m_actionTexts)) {
        entry.first->setText(text(entry.second));
        entry.first->setIconText(withoutMnemonic(text(entry.second)));
    }
    for (const auto &entry : qAsConst(m_menuTexts))
        entry.first->setTitle(text(entry.second));
    for (QAction *action : qAsConst(m_languageActions))
        action->setChecked(action->data().toString() == m_language);
    m_transcriptLabel->setText(text("IDS_CM_TRANSCRIPT"));
    m_transcriptView->setPlaceholderText(text("IDS_CM_TRANSCRIPT_EMPTY"));
    m_panel->retranslate();
    if (m_pinDialog)
        m_pinDialog->retranslate();
    m_readers->retranslate();
    m_modems->retranslate();
    m_urlBar->retranslate();
    statusBar()->clearMessage();
    if (m_notice)
        tellNotice();
    refreshTexts();
}

void MainWindow::refresh()
{
    if (m_state != CardHost::state() || m_hasMenu != CardHost::hasMenu())
        refreshTexts();
    if (!m_plugin.isWindowOpen())
        dropCoveredCursors();
}

void MainWindow::refreshTexts()
{
    const ModemState before = std::exchange(m_state, CardHost::state());
    const bool toolkit = hasToolkit(m_state);
    const bool hadMenu = std::exchange(m_hasMenu, CardHost::hasMenu());
    const CardHost::Notice *problem =
        m_source && m_notice && m_notice->problem ? &*m_notice : nullptr;
    const bool isBack = toolkit && before == ModemState::Removed;
    if (problem && (isBack || (m_hasMenu && !hadMenu && isOverWithMenu(*problem)))) {
        showError({}); // it is in the way no more
        problem = nullptr;
    }
    m_icon->setPixmap(ModemIcon::forState(m_state, StateIconSize, devicePixelRatioF()));
    // A modem that has said nothing yet is not ready, and a notice tells where there is no menu.
    const bool awaitsMenu = m_source && !m_hasMenu && !problem;
    m_stateLabel->setText(text(headlineId(m_state, problem, pinDialog(), awaitsMenu)));
    if (m_source)
        m_source->setAnswering(toolkit);
    m_cardLabel->setText(cardLine());
    m_toolkit->setEnabled(toolkit && m_hasMenu);
    m_toolkitButton->follow(toolkit && !awaitsMenu, m_hasMenu);
    const bool inModem = m_source == m_modems; // nobody plays its network
    m_remove->setEnabled(toolkit && !inModem);
    m_insert->setEnabled(m_state == ModemState::Removed && !inModem);
    m_commandActions->setEnabled(toolkit && !m_source); // a real card sends what it likes
    m_endSession->setEnabled(toolkit && !inModem);
    m_timeOutSession->setEnabled(toolkit && !inModem);
    m_restart->setText(text(inModem ? "IDS_CM_RESTART_MODEM" : "IDS_CM_RESTART"));
    m_restart->setEnabled(toolkit && m_source);
}

void MainWindow::chooseCard()
{
    // Beside the programs of an installed tree; above the build folder of a checkout.
    QString folder = QCoreApplication::applicationDirPath() + "/../cards";
    if (!QDir(folder).exists())
        folder = QCoreApplication::applicationDirPath() + "/../../cards";
    const QString file =
        QFileDialog::getOpenFileName(this, text("IDS_CM_OPEN_TITLE"), QDir::cleanPath(folder),
                                     text("IDS_CM_CARD_FILES") + " (*.json)");
    if (!file.isEmpty())
        openCard(file);
}

void MainWindow::showAbout()
{
    CommonUtils::ShowMessage(
        QMessageBox::Information, this, withoutMnemonic(text("IDS_CM_ABOUT")),
        text("IDS_CM_TITLE") + ' ' + QCoreApplication::applicationVersion(), "IDS_OK", {}, {}, true,
        Qt::WindowCloseButtonHint, nullptr,
        text("IDS_CM_ABOUT_TEXT") + "\n\n" + m_plugin.description() + ", Qt " + qVersion(), true);
}

QString MainWindow::cardLine() const
{
    if (m_source)
        return m_source->line();
    return m_state == ModemState::NoCard ? text("IDS_CM_NO_CARD_HINT")
                                         : text("IDS_CM_CARD_NAME").arg(m_cardName);
}

void MainWindow::showNotice(const CardHost::Notice &notice)
{
    if (!m_source) // it is about the card before
        return;
    refreshTexts(); // what is told now is newer than the state
    m_notice = notice;
    tellNotice();
    refreshTexts();
    if (notice.problem)
        Messages::complain(QString::fromStdString(notice.text));
}

void MainWindow::tellNotice()
{
    const QString line = text(*m_notice);
    setError(m_notice->problem ? line : QString());
    statusBar()->showMessage(m_notice->problem ? QString() : line);
}

// The request before is over: its dialog goes without answering.
void MainWindow::askPin(const std::optional<CardHost::PinRequest> &request)
{
    m_pinDialog.reset();
    refreshTexts();
    if (!request)
        return;
    if (m_declinesPins) {
        Messages::complain(QString::fromStdString(request->card) +
                           ": the card wants its PIN, and there is no display to ask for it");
        CardHost::answerPin(request->id, CardHost::Pin());
        return;
    }
    m_pinDialog = std::make_unique<PinDialog>(*request, this);
    m_pinDialog->open();
    refreshTexts();
}

void MainWindow::showError(const QString &line)
{
    m_notice.reset();
    setError(line);
}

void MainWindow::setError(const QString &line)
{
    // The label goes by the first letter, which may be that of a device's name.
    const QChar rightToLeft(0x200f);
    m_errorLabel->setText(isRightToLeft() && !line.isEmpty() ? rightToLeft + line : line);
    m_errorLabel->setVisible(!line.isEmpty());
}

void MainWindow::sendCommand(const char *json)
{
    const std::string error = CardHost::sendCommand(json);
    if (!error.empty())
        showNote(QString::fromStdString(error));
}

// The plug-in's own box says only that the entry could not be sent.
void MainWindow::noteUncodable(const CardHost::TranscriptEntry &entry)
{
    const QJsonObject fields =
        QJsonDocument::fromJson(QByteArray::fromStdString(entry.json)).object();
    if (fields["event"] == "refused" && fields["status"] == StatusNotEncodable)
        statusBar()->showMessage(text("IDS_CM_UNCODABLE"), UncodableShown);
}

void MainWindow::appendEntries(const QList<CardHost::TranscriptEntry> &entries)
{
    for (const CardHost::TranscriptEntry &entry : entries) {
        m_transcriptView->add(entry);
        noteUncodable(entry);
    }
    refresh();
}
