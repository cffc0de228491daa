#include "platform/ExtendDialog.h"

#include <QApplication>
#include <QPointer>
#include <QPushButton>
#include <QTimer>
#include <QVBoxLayout>

#include "Screen.h"

static const QChar Blank(QChar::Nbsp);

#if QT_VERSION >= 0x050000
#include <QWindow>

static QString storedTitle(const QString &title)
{
    return title;
}

// windowTitle() keeps the text as it was set, while the title bar would lose every "[*]".  In place
// of an empty title it would show the application's name: only a blank stays empty.
static void showTitleAsTyped(QWidget *window)
{
    const QString title = window->windowTitle().isEmpty() ? QString(Blank) : window->windowTitle();
    // The same one again would be work for the window manager.
    if (window->windowHandle() && window->windowHandle()->title() != title)
        window->windowHandle()->setTitle(title);
}

namespace {

/* Keeps a window over the one that was modal before it, or over what that one was over once it is
 * gone. */
class Place : public QObject {
public:
    Place(QWidget *dialog, QWindow *behind)
        : QObject(dialog)
        , m_window(dialog->windowHandle())
    {
        putOver(behind);
    }

protected:
    bool eventFilter(QObject *behind, QEvent *event)
    {
        if (event->type() == QEvent::Hide && m_window && m_window->transientParent() == behind)
            putOver(m_window->transientParent()->transientParent());
        return false;
    }

private:
    void putOver(QWindow *behind)
    {
        m_window->setTransientParent(behind);
        if (behind)
            behind->installEventFilter(this);
    }

    const QPointer<QWindow> m_window;
};

} // namespace

// Where two modal windows have one parent, Qt takes the parent for what blocks the older one, and
// makes it active as soon as the newer one has the keyboard: keys are lost there, and a line in the
// newer window drops its selection.
static void placeOverModalWindow(QWidget *dialog)
{
    const QWidget *const modal = QApplication::activeModalWidget();
    QWindow *const behind = modal ? modal->window()->windowHandle() : 0;
    if (!behind || !dialog->isModal())
        return;
    dialog->winId(); // creates the window's handle
    const QWindow *const window = dialog->windowHandle(), *const parent = window->transientParent();
    if (parent && parent->isAncestorOf(behind, QWindow::IncludeTransients) &&
        !window->isAncestorOf(behind, QWindow::IncludeTransients) && window != behind)
        new Place(dialog, behind);
}
#else
// The title bar cannot be reached and shows what is stored: the application's name in place of an
// empty title, and a placeholder as typed only where it is doubled.
static QString storedTitle(const QString &title)
{
    return title.isEmpty() ? QString(Blank) : QString(title).replace("[*]", "[*][*]");
}

static void showTitleAsTyped(QWidget *) { }

static void placeOverModalWindow(QWidget *) { }
#endif

namespace {

const int MessageFrame = 4;
const int ActivationMs = 120;

// Some window managers draw neither title nor close button for a window that asks for the close
// button alone.
Qt::WindowFlags framed(Qt::WindowFlags flags)
{
    flags &= ~(Qt::WindowType_Mask | Qt::WindowContextHelpButtonHint);
    return flags | Qt::Dialog | Qt::WindowTitleHint | Qt::WindowSystemMenuHint |
        Qt::WindowCloseButtonHint;
}

} // namespace

ExtendDialog::ExtendDialog(QWidget *parent, Qt::WindowFlags flags, int widgetType)
    : QDialog(parent, framed(flags))
    , m_layout(new QVBoxLayout(this))
    , m_widgetType(widgetType)
{
    m_layout->setContentsMargins(0, 0, 0, 0);
    m_layout->setSpacing(0);
}

ExtendDialog::~ExtendDialog() { }

void ExtendDialog::AddMainWidget(QWidget *widget)
{
    // A dialog that is put into the frame stops being a window of its own.
    widget->setParent(this, widget->windowFlags() & ~Qt::WindowType_Mask);
    m_layout->addWidget(widget);
}

void ExtendDialog::setWindowTitle(const QString &title)
{
    QDialog::setWindowTitle(storedTitle(title));
    showTitleAsTyped(this);
}

void ExtendDialog::setWindowFlags(Qt::WindowFlags flags)
{
    QDialog::setWindowFlags(framed(flags));
}

/* Whichever frame is in front now may have been left without the keyboard: see claimKeyboard(). */
static void offerKeyboard()
{
    const QWidgetList windows = QApplication::topLevelWidgets();
    for (int i = 0; i < windows.size(); ++i) {
        if (ExtendDialog *const window = qobject_cast<ExtendDialog *>(windows.at(i)))
            QTimer::singleShot(ActivationMs, window, SLOT(claimKeyboard()));
    }
}

void ExtendDialog::setVisible(bool visible)
{
    QPointer<QPushButton> wanted;
    if (visible && !isVisible())
        wanted = qobject_cast<QPushButton *>(focusWidget());
    const bool hadKeyboard = isActiveWindow(); // and not another program, which would lose it
    if (visible && !isVisible() && isWindow())
        placeOverModalWindow(this);
    QDialog::setVisible(visible);
    if (!visible && hadKeyboard)
        offerKeyboard();
    if (!wanted)
        return;
    // The base class has just made the first button of the tab order the default one, enabled or
    // not.  Inside a dialog that is no window of its own it leaves several default buttons.
    const QList<QPushButton *> buttons = findChildren<QPushButton *>();
    for (int i = 0; i < buttons.size(); ++i)
        buttons.at(i)->setDefault(false);
    wanted->setDefault(true);
}

/* A window that another one of this program has just made way for can be left without the keyboard:
 * the window manager shows it as active, and the keys still go to the window behind it. */
void ExtendDialog::claimKeyboard()
{
    if (isVisible() && !isActiveWindow() && QApplication::activeModalWidget() == this)
        activateWindow();
}

void ExtendDialog::changeSize(QSize size)
{
    const QSize screen = availableScreen(this).size();
    const QSize wanted = size.boundedTo(screen);
    if (m_widgetType == MessageFrame)
        setFixedSize(wanted);
    else
        resize(wanted);
}

void ExtendDialog::showEvent(QShowEvent *event)
{
    QDialog::showEvent(event);
    if (isWindow())
        QTimer::singleShot(ActivationMs, this, SLOT(claimKeyboard()));
    showTitleAsTyped(this);
}
