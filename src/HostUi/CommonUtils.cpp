#include "platform/CommonUtils.h"

#include <QAbstractButton>
#include <QApplication>
#include <QEventLoop>
#include <QPointer>
#include <QPushButton>
#include <QThread>
#include <QUrl>
#include <QtDebug>

#include "HostUiState.h"
#include "Screen.h"
#include "platform/Change.h"
#include "platform/ClipMessageBox.h"
#include "platform/ExtendDialog.h"

namespace {

const int MaxLoggedAddress = 200;
const uint MaxPort = 65535;

/* Runs while a dialog is up and clears the caller's pointer the moment it is no longer: another
 * event loop may run on top of this one and keep exec() from returning. */
class DialogLoop : public QEventLoop {
    Q_OBJECT

public:
    DialogLoop(QDialog *dialog, QDialog **shared)
        : m_dialog(dialog)
        , m_shared(shared)
    {
        if (m_shared)
            *m_shared = dialog;
        connect(dialog, SIGNAL(finished(int)), SLOT(over()));
        connect(dialog, SIGNAL(destroyed()), SLOT(over()));
    }

public slots:
    /* The pointer may die with its owner any time after the dialog is over. */
    void over()
    {
        if (m_shared && *m_shared == m_dialog)
            *m_shared = 0;
        m_shared = 0;
        quit();
    }

private:
    QDialog *const m_dialog;
    QDialog **m_shared;
};

/* A box goes with the window that it is over: alone it could slip behind another one, and keep all
 * of them from being used. */
class Companion : public QObject {
public:
    Companion(QDialog *box, QWidget *over)
        : QObject(box)
        , m_box(box)
    {
        over->window()->installEventFilter(this);
    }

protected:
    bool eventFilter(QObject *, QEvent *event)
    {
        // A spontaneous one is the window manager's: the window is minimized.
        if (event->type() == QEvent::Hide && !event->spontaneous())
            m_box->close();
        return false;
    }

private:
    QDialog *const m_box;
};

QPushButton *addButton(QMessageBox *box, const QString &id, QMessageBox::ButtonRole role)
{
    return id.isEmpty() ? 0 : box->addButton(Change::tr(id, "LuminePlugin"), role);
}

/* Qt 4 drops a port that is too large and calls the rest an address. */
bool isPortValid(const QString &address)
{
    const QString site = address.section('?', 0, 0).section('#', 0, 0).section('/', 0, 2);
    const QString port = site.contains("//") ? site.section(':', -1) : QString();
    uint number = 0;
    for (int i = 0; i < port.size(); ++i) {
        const ushort digit = port.at(i).unicode();
        if (digit < '0' || digit > '9')
            return true; // what follows the last colon is no port
        number = qMin(10 * number + (digit - '0'), MaxPort + 1);
    }
    return number <= MaxPort;
}

// In the order of HostUi::UrlRefusal.
const char *const RefusalReasons[] = {"not an address", "only http and https are opened",
                                      "it names no host"};

bool refuse(const QString &address, HostUi::UrlRefusal reason)
{
    QString shown = address.left(MaxLoggedAddress);
    for (int i = 0; i < shown.size(); ++i) {
        if (!shown.at(i).isPrint())
            shown[i] = '?';
    }
    qWarning("OpenUrl: refused \"%s\": %s", qPrintable(shown), RefusalReasons[reason]);
    if (HostUi::state().urlRefusalListener)
        HostUi::state().urlRefusalListener(shown, reason);
    return false;
}

} // namespace

QWidget *CommonUtils::GetMainWindow()
{
    return HostUi::state().mainWindow;
}

QString CommonUtils::GetPluginLibraryPath()
{
    return HostUi::state().pluginLibraryPath;
}

void CommonUtils::MoveCentre(QWidget *widget)
{
    if (!widget)
        return;
    const QRect screen = availableScreen(widget->parentWidget() ? widget->parentWidget() : widget);
    const QRect over =
        widget->parentWidget() ? widget->parentWidget()->window()->frameGeometry() : screen;
    QRect frame = widget->frameGeometry();
    frame.moveCenter(over.center());
    // The upper left corner goes last: a window that is larger than the screen keeps its title bar.
    frame.moveRight(qMin(frame.right(), screen.right()));
    frame.moveBottom(qMin(frame.bottom(), screen.bottom()));
    frame.moveLeft(qMax(frame.left(), screen.left()));
    frame.moveTop(qMax(frame.top(), screen.top()));
    widget->move(frame.topLeft());
}

QMessageBox::StandardButton CommonUtils::ShowMessage(QMessageBox::Icon icon, QWidget *parent,
                                                     QString title, QString text, QString button1,
                                                     QString button2, QString button3, bool modal,
                                                     Qt::WindowFlags flags, QDialog **ppDialog,
                                                     QString detail, bool centre)
{
    QPointer<ExtendDialog> frame = new ExtendDialog(parent, flags, 4);
    ClipMessageBox *box = new ClipMessageBox(frame);
    frame->AddMainWidget(box);
    frame->setWindowTitle(title);
    box->setIcon(icon);
    box->setText(detail.isEmpty() ? text : text + "\n\n" + detail);
    QPushButton *first = addButton(box, button1, QMessageBox::YesRole);
    QPushButton *second = addButton(box, button2, QMessageBox::NoRole);
    addButton(box, button3, QMessageBox::RejectRole);
    if (first)
        box->setDefaultButton(first);
    QObject::connect(box, SIGNAL(changeSize(QSize)), frame, SLOT(changeSize(QSize)));
    QObject::connect(box, SIGNAL(buttonClicked(QAbstractButton *)), frame, SLOT(close()));

    if (parent)
        new Companion(frame, parent);
    DialogLoop loop(frame, ppDialog);
    frame->setWindowModality(modal ? Qt::WindowModal : Qt::NonModal);
    frame->show();
    if (centre)
        MoveCentre(frame);
    loop.exec();
    loop.over();

    const QAbstractButton *clicked = frame ? box->clickedButton() : 0;
    QMessageBox::StandardButton result = QMessageBox::Cancel;
    if (clicked && clicked == first)
        result = QMessageBox::Ok;
    else if (clicked && clicked == second)
        result = QMessageBox::No;
    delete frame;
    return result;
}

bool CommonUtils::OpenUrl(QString url)
{
    QUrl parsed(url, QUrl::StrictMode);
    if (!parsed.isValid() || !isPortValid(url))
        return refuse(url, HostUi::NotAnAddress);
    // Qt 4 keeps the case.
    parsed.setScheme(parsed.scheme().toLower());
    if (parsed.scheme() != "http" && parsed.scheme() != "https")
        return refuse(url, HostUi::SchemeNotAllowed);
    if (parsed.host().isEmpty())
        return refuse(url, HostUi::NoHost);
    const HostUi::UrlOpener &opener = HostUi::state().urlOpener;
    return opener ? opener(parsed) : HostUi::openInBrowser(parsed);
}

bool CommonUtils::WaitForThreadToStop(QThread *thread, int seconds)
{
    if (!thread)
        return true;
    // wait() takes an unsigned long, which a 32-bit build overflows after 49 days.
    const int bounded = qBound(0, seconds, 1000000);
    return thread->wait(bounded * 1000UL);
}

#include "CommonUtils.moc"
