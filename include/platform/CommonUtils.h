#ifndef COMMONUTILS_H
#define COMMONUTILS_H

#include <QDialog>
#include <QMessageBox>
#include <QString>

#include "HostUiGlobal.h"

class QThread;
class QWidget;

/* Services that the host shares with its plug-ins.  GUI thread only. */
class HOSTUI_API CommonUtils {
public:
    /* The host's main window, null before it exists. */
    static QWidget *GetMainWindow();
    /* The folder whose "plugins" folder holds one folder a plug-in; no slash at its end. */
    static QString GetPluginLibraryPath();
    /* Centres the window over its parent, or on its screen. */
    static void MoveCentre(QWidget *widget);
    /* Shows a modal message box and returns how it ended: QMessageBox::Ok for the first button,
     * QMessageBox::No for the second, QMessageBox::Cancel for the third and for a close.
     *
     * title and text are shown as they are, as plain text; the three buttons are identifiers that
     * are translated, an empty one leaves its button out.  *ppDialog holds the box while it is up
     * and null afterwards; ppDialog may be null.  Whoever ends the pointer's life closes the box
     * first: it is not touched after that.  detail, where it is not empty, stands under the
     * text.  modal: the window of parent waits; centre: the box opens over the middle of parent. */
    static QMessageBox::StandardButton ShowMessage(QMessageBox::Icon icon, QWidget *parent,
                                                   QString title, QString text, QString button1,
                                                   QString button2, QString button3, bool modal,
                                                   Qt::WindowFlags flags, QDialog **ppDialog,
                                                   QString detail, bool centre);
    /* Opens the address in the user's browser.  Only http and https; false, with a logged reason,
     * for anything else. */
    static bool OpenUrl(QString url);
    /* Waits for the thread to end, at most that many seconds; true when it has ended. */
    static bool WaitForThreadToStop(QThread *thread, int seconds);
};

#endif
