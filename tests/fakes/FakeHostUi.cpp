#include "FakeHostUi.h"

#include <utility>

#include <QApplication>
#include <QThread>

#include "platform/Change.h"
#include "platform/ClipSound.h"
#include "platform/CommonUtils.h"
#include "platform/ExtendDialog.h"

void FakeHostUi::finishSound()
{
    emit std::exchange(playing, nullptr)->finished();
}

/* In the place of Qt's, whose sound nobody could hear. */
void QApplication::beep()
{
    ++fakeHostUi.beeps;
}

ClipSound::ClipSound(QString fileName)
{
    setObjectName(fileName);
}

ClipSound::~ClipSound()
{
    Stop();
}

bool ClipSound::Play()
{
    fakeHostUi.soundsPlayed << objectName();
    fakeHostUi.playing = fakeHostUi.soundPlays ? this : nullptr;
    return fakeHostUi.soundPlays;
}

bool ClipSound::IsPlaying()
{
    return fakeHostUi.playing == this;
}

void ClipSound::Stop()
{
    if (IsPlaying())
        fakeHostUi.playing = nullptr;
}

QString Change::tr(QString id, QString context)
{
    return fakeHostUi.language + context + ":" + id;
}

QWidget *CommonUtils::GetMainWindow()
{
    return nullptr;
}

QString CommonUtils::GetPluginLibraryPath()
{
    return fakeHostUi.libraryPath;
}

void CommonUtils::MoveCentre(QWidget *) { }

QMessageBox::StandardButton CommonUtils::ShowMessage(QMessageBox::Icon icon, QWidget *parent,
                                                     QString title, QString text, QString button1,
                                                     QString button2, QString button3, bool modal,
                                                     Qt::WindowFlags flags, QDialog **ppDialog,
                                                     QString detail, bool centre)
{
    const QString how =
        QString("%1,%2,%3,%4").arg(icon).arg(modal).arg(int(flags), 0, 16).arg(centre);
    fakeHostUi.messages
        << QStringList({title, text, button1, button2, button3, how, detail}).join("|");
    if (fakeHostUi.messageAnswer)
        return fakeHostUi.messageAnswer;
    ExtendDialog box(parent, flags, 4);
    box.setObjectName("message");
    box.resize(200, 100);
    *ppDialog = &box;
    const int result = box.exec();
    *ppDialog = nullptr;
    return result == QDialog::Accepted ? QMessageBox::Ok : QMessageBox::No;
}

bool CommonUtils::OpenUrl(QString url)
{
    fakeHostUi.openedUrls << url;
    return true;
}

bool CommonUtils::WaitForThreadToStop(QThread *thread, int seconds)
{
    fakeHostUi.threadWaitSeconds = seconds;
    return thread->wait(seconds * 1000);
}
