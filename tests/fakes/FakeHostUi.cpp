#include "FakeHostUi.h"

#include <QThread>

#include "platform/Change.h"
#include "platform/ClipSound.h"
#include "platform/CommonUtils.h"
#include "platform/ExtendDialog.h"

FakeHostUi &FakeHostUi::get()
{
    static FakeHostUi instance;
    return instance;
}

void FakeHostUi::reset()
{
    *this = FakeHostUi();
    messageAnswer = QMessageBox::Ok;
    soundPlays = true;
    playing = nullptr;
    threadWaitSeconds = -1;
}

void FakeHostUi::finishSound()
{
    ClipSound *const sound = playing;
    playing = nullptr;
    emit sound->finished();
}

ClipSound::ClipSound(const QString &fileName)
{
    setObjectName(fileName);
}

ClipSound::~ClipSound()
{
    Stop();
}

bool ClipSound::Play()
{
    FakeHostUi &ui = FakeHostUi::get();
    ui.soundsPlayed << objectName();
    ui.playing = ui.soundPlays ? this : nullptr;
    return ui.soundPlays;
}

bool ClipSound::IsPlaying()
{
    return FakeHostUi::get().playing == this;
}

void ClipSound::Stop()
{
    if (IsPlaying())
        FakeHostUi::get().playing = nullptr;
}

QString Change::tr(const QString &id, const QString &context)
{
    return FakeHostUi::get().language + context + ":" + id;
}

QWidget *CommonUtils::GetMainWindow()
{
    return nullptr;
}

QString CommonUtils::GetPluginLibraryPath()
{
    return FakeHostUi::get().libraryPath;
}

void CommonUtils::MoveCentre(QWidget *)
{
}

QMessageBox::StandardButton CommonUtils::ShowMessage(QMessageBox::Icon, QWidget *parent,
                                                     QString title, QString text, QString button1,
                                                     QString button2, QString button3, bool,
                                                     Qt::WindowFlags flags, QDialog **ppDialog,
                                                     QString, bool)
{
    FakeHostUi &ui = FakeHostUi::get();
    ui.messages << QStringList({title, text, button1, button2, button3}).join("|");
    if (ui.messageAnswer)
        return static_cast<QMessageBox::StandardButton>(ui.messageAnswer);
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
    FakeHostUi::get().openedUrls << url;
    return true;
}

bool CommonUtils::WaitForThreadToStop(QThread *thread, int seconds)
{
    FakeHostUi::get().threadWaitSeconds = seconds;
    return thread->wait(seconds * 1000);
}
