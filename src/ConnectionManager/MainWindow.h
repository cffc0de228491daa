#ifndef MAINWINDOW_H
#define MAINWINDOW_H

#include <optional>

#include <QActionGroup>
#include <QLabel>
#include <QMainWindow>
#include <QTimer>
#include <QToolButton>

#include "CardHost.h"
#include "HostUi.h"
#include "NetworkPanel.h"
#include "UrlRequests.h"

class ModemMenu;
class PinDialog;
class PluginHost;
class ReaderMenu;
class ServiceEvents;
class SourceMenu;
class ToolkitButton;
class Transcript;
class TranscriptView;
class UrlBar;

/// The connection manager's window: state of the modem, the way into the SIM toolkit, the live
/// transcript, and the menus that play the network side.
class MainWindow : public QMainWindow {
    Q_OBJECT

public:
    MainWindow(PluginHost &plugin, Transcript &transcript, ServiceEvents &events);
    ~MainWindow() override;

    /// Puts the card of the scenario into the modem.  The result is empty, or one line that says
    /// what is wrong with the file; the line also stands in the window, and no card is in then.
    QString openCard(const QString &file);
    /// Puts the card of the first reader whose name begins with the text into the modem; with an
    /// empty text, of the first that has a card.
    void openReader(const QString &nameStart);
    /// Takes the toolkit of the card in a modem of this kind and device, or the first of its kind.
    void openModem(const CardHost::Modem &modem);
    /// For a start that nobody watches: from now on a card goes on without its PIN.
    void declinePins() { m_declinesPins = true; }
    /// Switches every text of the host and of the plug-in's open windows.
    void setLanguage(const QString &code);
    /// A remark for the person at the screen, in the status bar.
    void showNote(const QString &text);
    /// Asks whether an address that the card wants opened is to be opened, and waits for nothing.
    void askUrl(const QUrl &url) { m_urls.ask(url); }
    /// What opens it then, in place of the user's browser.
    void setBrowser(const HostUi::UrlOpener &browser) { m_browser = browser; }
    /// Remarks that the card asked for the address.
    void noteRefusedUrl(const QString &address, HostUi::UrlRefusal reason);
    /// Opens the SIM toolkit window, or brings it to the front.
    void openToolkit();

    /// What opens the SIM toolkit.
    ToolkitButton *toolkitButton() const { return m_toolkitButton; }
    /// What the window tells the person at the screen: its error or, without one, its remark.
    QString note() const;
    /// What asks about an address, where it can be reached: the toolkit's windows keep this one
    /// from being used.
    UrlBar *urlBar() const;
    /// What asks for the PIN of the card; null while nothing does.
    PinDialog *pinDialog() const;

protected:
    void closeEvent(QCloseEvent *event) override;

private:
    void createActions();
    void createMenus();
    void createCommandMenu();
    void createContent();
    QWidget *createHeader();
    QWidget *createTranscriptBar();
    QAction *addNetworkAction(const char *textId, const QKeySequence &shortcut, void (*act)());
    void changeSource(SourceMenu *source);
    void retranslate();
    void refresh();
    void refreshTexts();
    QString cardLine() const;
    void chooseCard();
    void showNotice(const CardHost::Notice &notice);
    void tellNotice();
    void meetCommand(int type);
    void openUrl(const QUrl &url);
    void offerUrlPanel();
    void askPin(const std::optional<CardHost::PinRequest> &request);
    void showAbout();
    void showError(const QString &line);
    void setError(const QString &line);
    void sendCommand(const char *json);
    void noteUncodable(const CardHost::TranscriptEntry &entry);
    void appendEntries(const QList<CardHost::TranscriptEntry> &entries);

    PluginHost &m_plugin;
    QString m_language;
    QString m_cardName;
    CardHost::ModemState m_state = CardHost::ModemState::NoCard;
    bool m_hasMenu = false;
    std::optional<CardHost::Notice> m_notice; // the last, if it is of the card that is in
    HostUi::UrlOpener m_browser = HostUi::openInBrowser;
    UrlRequests m_urls;
    QTimer m_refreshTimer;

    // Everything whose text is a plain identifier, with that identifier.
    QList<QPair<QAction *, const char *>> m_actionTexts;
    QList<QPair<QMenu *, const char *>> m_menuTexts;
    QAction *m_openCard = nullptr;
    ReaderMenu *m_readers = nullptr;
    ModemMenu *m_modems = nullptr;
    SourceMenu *m_source = nullptr; // where the card is read; null for a scenario card
    QAction *m_quit = nullptr;
    QAction *m_toolkit = nullptr;
    QAction *m_remove = nullptr;
    QAction *m_insert = nullptr;
    QAction *m_endSession = nullptr;
    QAction *m_timeOutSession = nullptr;
    QAction *m_restart = nullptr;
    QAction *m_showPanel = nullptr;
    QAction *m_about = nullptr;
    QAction *m_copy = nullptr;
    QAction *m_clear = nullptr;
    QMenu *m_cardMenu = nullptr;
    QActionGroup *m_commandActions = nullptr;
    QMenu *m_languageMenu = nullptr;
    QList<QAction *> m_languageActions;

    QLabel *m_icon = nullptr;
    QLabel *m_stateLabel = nullptr;
    QLabel *m_cardLabel = nullptr;
    ToolkitButton *m_toolkitButton = nullptr;
    QLabel *m_errorLabel = nullptr;
    QLabel *m_transcriptLabel = nullptr;
    TranscriptView *m_transcriptView = nullptr;
    UrlBar *m_urlBar = nullptr;
    std::unique_ptr<NetworkPanel> m_panel;
    std::unique_ptr<PinDialog> m_pinDialog;
    bool m_panelOffered = false;
    bool m_declinesPins = false;
};

#endif
