#include <QDir>
#include <QDirIterator>
#include <QLabel>
#include <QPointer>
#include <QPushButton>
#include <QRegularExpression>
#include <QScreen>
#include <QScrollBar>
#include <QSignalSpy>
#include <QTableWidget>
#include <QTest>
#include <QTextEdit>
#include <QThread>
#include <QTimer>
#include <QVBoxLayout>
#include <QWindow>

#include "HostUi.h"
#include "platform/Change.h"
#include "platform/ClipMessageBox.h"
#include "platform/CommonUtils.h"
#include "platform/ExtendDialog.h"

namespace {

const QStringList Languages = {"en", "de", "fr", "es", "zh_CN", "ar"};

// The text of every identifier of a catalogue's source, behind its context, where it is translated.
QMap<QString, QString> readCatalogue(const QString &language)
{
    QFile file(QString(STK_SOURCE_DIR "/translations/host_%1.ts").arg(language));
    file.open(QIODevice::ReadOnly);
    const QRegularExpression entry(
        "<name>(.*)</name>|<source>(.*)</source>\\s*<translation>([^<]+)</translation>");
    QMap<QString, QString> texts;
    QString context;
    for (auto matches = entry.globalMatch(QString::fromUtf8(file.readAll())); matches.hasNext();) {
        const QStringList found = matches.next().capturedTexts();
        if (found.size() == 2)
            context = found[1] + '/';
        else
            texts.insert(context + found[2], found[3]);
    }
    return texts;
}

// What keeps the text from being read; empty when nothing does.
QString textProblem(const ClipMessageBox &box, const QString &text)
{
    const auto *view = box.findChild<QTextEdit *>();
    if (!view) {
        const auto *label = box.findChild<QLabel *>("qt_msgbox_label");
        const bool whole = label->width() >= label->fontMetrics().horizontalAdvance(text);
        return whole ? QString() : "wider than its label";
    }
    const int reachable = view->viewport()->height() + view->verticalScrollBar()->maximum();
    if (view->toPlainText() != text)
        return "not the text";
    if (view->document()->idealWidth() > view->viewport()->width())
        return "wider than its view";
    return reachable < view->document()->size().height() ? "higher than can be scrolled" : "";
}

ClipMessageBox *shownBox()
{
    for (QWidget *widget : QApplication::topLevelWidgets()) {
        if (auto *box = widget->isVisible() ? widget->findChild<ClipMessageBox *>() : nullptr)
            return box;
    }
    return nullptr;
}

} // namespace

class TestHostUi : public QObject {
    Q_OBJECT

private slots:
    void cleanup()
    {
        HostUi::setUrlOpener({});
        HostUi::setUrlRefusalListener({});
        HostUi::setLanguage(STK_TRANSLATION_DIR, "en");
        QVERIFY2(!shownBox(), "no test leaves a window");
    }

    // In what a plug-in puts into a frame: a list over three buttons, the first of them disabled.
    void returnMeansTheFocusedButton()
    {
        ExtendDialog frame(nullptr, Qt::WindowCloseButtonHint, 1);
        auto *content = new QWidget(&frame);
        frame.AddMainWidget(content);
        auto *table = new QTableWidget(2, 1);
        table->setItem(1, 0, new QTableWidgetItem("row"));
        table->setEditTriggers(QAbstractItemView::NoEditTriggers);
        QPushButton *buttons[] = {new QPushButton("Back"), new QPushButton("Select"),
                                  new QPushButton("Close")};
        auto *layout = new QVBoxLayout(content);
        layout->addWidget(table);
        for (QPushButton *button : buttons)
            layout->addWidget(button);
        buttons[2]->setFocus(Qt::OtherFocusReason);
        buttons[0]->setEnabled(false);

        const std::pair<int, Qt::Key> showings[] = {
            {2, Qt::Key_Return}, {2, Qt::Key_Enter}, {1, Qt::Key_Return}};
        for (const auto &[focused, key] : showings) {
            QSignalSpy wanted(buttons[focused], SIGNAL(clicked()));
            QSignalSpy other(buttons[3 - focused], SIGNAL(clicked()));
            buttons[focused]->setFocus(Qt::OtherFocusReason);
            frame.show();
            QVERIFY(QTest::qWaitForWindowActive(&frame));
            const QPoint row = table->visualItemRect(table->item(1, 0)).center();
            QTest::mouseClick(table->viewport(), Qt::LeftButton, {}, row);
            QCOMPARE(frame.focusWidget(), table);
            QTest::keyClick(table, key);
            QCOMPARE(wanted.count(), 1);
            QCOMPARE(other.count(), 0);
            frame.hide();
        }
    }

    void frameKeepsItsTitle()
    {
        ExtendDialog frame(nullptr, Qt::WindowCloseButtonHint, 1);
        for (const char *title : {"Bank", "[*]", "a[*]b[*][*]", "<b>x</b> &amp; %1"}) {
            const Qt::WindowFlags hints = Qt::WindowTitleHint | Qt::WindowCloseButtonHint;
            QCOMPARE(frame.windowFlags() & (hints | Qt::WindowContextHelpButtonHint), hints);
            QCOMPARE(frame.windowType(), Qt::Dialog);
            frame.setWindowTitle(title);
            frame.show();
            QCOMPARE(frame.windowTitle(), QString(title));
            QCOMPARE(frame.windowHandle()->title(), QString(title));
            frame.setWindowTitle("other");
            frame.setWindowTitle(title);
            QCOMPARE(frame.windowHandle()->title(), QString(title));
            frame.setWindowFlags(Qt::WindowCloseButtonHint);
        }
        frame.setWindowTitle("");
        frame.show();
        QCOMPARE(frame.windowTitle(), QString());
        QVERIFY2(frame.windowHandle()->title() == QString(QChar::Nbsp),
                 "not the application's name");
    }

    void modalWindowsOfOneParentLieOverEachOther()
    {
        QWidget parent;
        ExtendDialog a(&parent, {}, 1), b(&parent, {}, 1), c(&parent, {}, 1);
        parent.show();
        QList<QWindow *> below{parent.windowHandle()};
        for (ExtendDialog *frame : {&a, &b, &c}) {
            frame->resize(200, 100);
            frame->setWindowModality(Qt::WindowModal);
            frame->show();
            below.prepend(frame->windowHandle());
        }
        for (ExtendDialog *gone : {&b, &a, &c}) {
            QCOMPARE(c.windowHandle()->transientParent(), below.takeAt(1));
            gone->hide();
        }
    }

    void messageFrameFollowsItsBox()
    {
        ExtendDialog frame(nullptr, Qt::WindowCloseButtonHint, 4);
        auto *box = new ClipMessageBox(&frame);
        frame.AddMainWidget(box);
        frame.setWindowFlags(Qt::WindowCloseButtonHint);
        box->setWindowFlags(Qt::WindowStaysOnTopHint | Qt::FramelessWindowHint);
        box->setText("<b>x</b>");
        QPushButton *ok = box->addButton("OK", QMessageBox::YesRole);
        QPushButton *cancel = box->addButton("Cancel", QMessageBox::RejectRole);
        box->setDefaultButton(ok);
        box->setDefaultButton(cancel);
        connect(box, SIGNAL(changeSize(QSize)), &frame, SLOT(changeSize(QSize)));
        connect(box, SIGNAL(buttonClicked(QAbstractButton *)), &frame, SLOT(close()));
        frame.show();
        QVERIFY(QTest::qWaitForWindowActive(&frame));
        QVERIFY(box->isVisible());
        QCOMPARE(frame.size(), box->size());
        QCOMPARE(box->textFormat(), Qt::PlainText);

        const int width = frame.width();
        ok->setText("OK = a countdown of very many seconds, wider than the whole box was at first");
        QTRY_VERIFY(frame.width() > width);
        QCOMPARE(frame.size(), box->size());

        QTest::keyClick(frame.windowHandle(), Qt::Key_Return);
        QVERIFY(!frame.isVisible());
        QCOMPARE(box->clickedButton(), static_cast<QAbstractButton *>(cancel));
    }

    void longTextsStayWhole_data()
    {
        QTest::addColumn<QString>("text");
        QString line = "Thank you.";
        while (QFontMetrics(QApplication::font()).horizontalAdvance(line) < 280)
            line += 'x';
        const auto wide = [](const char *text, int times) {
            return QString::fromUtf8(text).repeated(times);
        };
        for (const QString &text : {line, wide("<b>x</b>\n", 1), wide("W", 255), wide("x\n", 127),
                                    wide("lorem ipsum ", 20), wide("余额查询", 60), wide("📱", 120)})
            QTest::newRow(qPrintable(text.left(10))) << text;
    }

    void longTextsStayWhole()
    {
        QFETCH(QString, text);
        QString problem = "no box was shown";
        QTimer::singleShot(0, this, [&] {
            ClipMessageBox *box = shownBox();
            const QRect screen = box->screen()->availableGeometry();
            const QWidget *frame = box->window();
            problem = textProblem(*box, text);
            if (frame->width() > screen.width() || frame->height() > screen.height())
                problem = "larger than the screen";
            else if (!frame->rect().contains(box->geometry()))
                problem = "larger than its frame";
            else if ((frame->frameGeometry().center() - screen.center()).manhattanLength() > 4)
                problem = "not in the middle";
            box->window()->close();
        });
        CommonUtils::ShowMessage(QMessageBox::Warning, nullptr, "t", text, "IDS_OK", "", "", true,
                                 {}, nullptr, "", true);
        QCOMPARE(problem, QString());
    }

    void centresOnScreen()
    {
        const QRect screen = QGuiApplication::primaryScreen()->availableGeometry();
        QWidget parent;
        QDialog child(&parent);
        child.resize(100, 80);
        parent.setGeometry(200, 150, 300, 200);
        parent.show();
        child.show();
        CommonUtils::MoveCentre(&child);
        QCOMPARE(child.frameGeometry().center(), parent.frameGeometry().center());

        parent.move(screen.right() - 20, screen.bottom() - 20);
        CommonUtils::MoveCentre(&child);
        QVERIFY(screen.contains(child.frameGeometry()));

        child.resize(screen.size() * 2);
        CommonUtils::MoveCentre(&child);
        QCOMPARE(child.frameGeometry().topLeft(), screen.topLeft());
    }

    void showMessage_data()
    {
        QTest::addColumn<QString>("press");
        QTest::addColumn<int>("result");
        const auto row = [](const char *press, int result) {
            QTest::newRow(press) << press << result;
        };
        row("Yes", QMessageBox::Ok);
        row("No", QMessageBox::No);
        row("Cancel", QMessageBox::Cancel);
        row("Esc", QMessageBox::Cancel);
        row("Return", QMessageBox::Ok);
        row("the frame's close button", QMessageBox::Cancel);
        row("what deletes the parent", QMessageBox::Cancel);
        row("what closes the parent", QMessageBox::Cancel);
    }

    void showMessage()
    {
        QFETCH(QString, press);
        QPointer<QWidget> parent = new QWidget;
        parent->show();
        QDialog *shared = nullptr;
        QDialog *up = nullptr;
        bool sharedWhileUp = false, clearedAtClose = false;
        QTimer::singleShot(0, this, [&] {
            ClipMessageBox *box = shownBox();
            up = shared;
            sharedWhileUp = shared && shared == box->window() &&
                shared->windowTitle() == "[*] title" && box->text() == "<i>text</i>\n\n%1 detail";
            const auto buttons = box->buttons();
            const auto named = [&](QAbstractButton *button) { return button->text() == press; };
            const auto button = std::find_if(buttons.begin(), buttons.end(), named);
            if (button != buttons.end())
                QTest::mouseClick(*button, Qt::LeftButton);
            else if (press == "the frame's close button")
                shared->close();
            else if (press == "what deletes the parent")
                delete parent;
            else if (press == "what closes the parent")
                parent->close();
            else
                QTest::keySequence(shared->windowHandle(), QKeySequence(press));
            clearedAtClose = !shared;
            shared = up; // its owner is gone, and the memory belongs to somebody else
        });
        const int result = CommonUtils::ShowMessage(
            QMessageBox::NoIcon, parent, "[*] title", "<i>text</i>", "IDS_YES", "IDS_NO",
            "IDS_CANCEL", true, Qt::WindowCloseButtonHint, &shared, "%1 detail", true);
        delete parent;
        QTEST(result, "result");
        QVERIFY(sharedWhileUp);
        QVERIFY2(clearedAtClose, "at once");
        QVERIFY2(shared == up, "and not touched after that");
    }

    void openUrl()
    {
        const char scheme[] = "only http and https are opened", invalid[] = "not an address";
        const struct {
            QStringList addresses;
            QString reason; // of the refusal
        } cases[] = {{{"http://example.com", "https://example.com/a?b=c#d", "HTTP://EXAMPLE.COM/",
                       "http://[2001:db8::1]:8080/", "http://example.com/%C3%BC:99999",
                       "http://a:65535?b:99999"},
                      ""},
                     {{"file:///etc/passwd", "javascript:alert(1)", "tel:+123", "example.com",
                       "/etc/passwd", "x-http://a", "x:" + QString(100000, 'a')},
                      scheme},
                     {{"http://", "http:example.com"}, "it names no host"},
                     {{"", "http://exa mple.com", "http://a:65536", "http://[::1]:99999999999/",
                       "http://\x1b"},
                      invalid}};
        QList<QUrl> opened;
        QStringList refused;
        HostUi::setUrlOpener([&](const QUrl &url) {
            opened << url;
            return true;
        });
        HostUi::setUrlRefusalListener(
            [&](const QString &shown, HostUi::UrlRefusal) { refused << shown; });
        for (const auto &[addresses, reason] : cases) {
            for (const QString &address : addresses) {
                const QString shown = address.left(200).replace('\x1b', '?');
                const QString warning = "OpenUrl: refused \"" + shown + "\": " + reason;
                if (!reason.isEmpty())
                    QTest::ignoreMessage(QtWarningMsg, qPrintable(warning));
                QCOMPARE(CommonUtils::OpenUrl(address), reason.isEmpty());
                QVERIFY2(reason.isEmpty() ? opened.takeLast() == QUrl(address)
                                          : refused.takeLast() == shown,
                         qPrintable(shown));
            }
        }
        QVERIFY(opened.isEmpty() && refused.isEmpty());
    }

    void waitForThread()
    {
        QThread idle, busy;
        QVERIFY(CommonUtils::WaitForThreadToStop(nullptr, 5));
        QVERIFY(CommonUtils::WaitForThreadToStop(&idle, 5));
        busy.start();
        QVERIFY(!CommonUtils::WaitForThreadToStop(&busy, -7));
        QElapsedTimer clock;
        clock.start();
        QVERIFY(!CommonUtils::WaitForThreadToStop(&busy, 1));
        QVERIFY2(clock.elapsed() >= 990, "the time is in seconds");
        busy.quit();
        QVERIFY(CommonUtils::WaitForThreadToStop(&busy, INT_MAX));
    }

    void changesLanguage()
    {
        const QString id = "IDS_STK_BTN_BACK";
        for (const auto &[language, text] :
             {std::pair("de", "Zurück"), {"en", "Back"}, {"xx", "IDS_STK_BTN_BACK"}}) {
            QCOMPARE(HostUi::setLanguage(STK_TRANSLATION_DIR, language), text != id);
            QCOMPARE(Change::tr(id, "STKPlugin"), QString::fromUtf8(text));
            QCOMPARE(Change::tr(id, "LuminePlugin"), id);
        }
    }

    void cataloguesAreComplete()
    {
        const QMap<QString, QString> english = readCatalogue("en");
        for (const QString &language : Languages) {
            const QMap<QString, QString> texts = readCatalogue(language);
            QCOMPARE(texts.keys(), english.keys());
            for (auto text = texts.begin(); text != texts.end(); ++text)
                QVERIFY2(text->count("%1") == english[text.key()].count("%1"),
                         qPrintable(language + ' ' + text.key()));
        }

        const QString all = english.keys().join(' ') + ' ';
        const QRegularExpression id("\"(IDS_[A-Z_]+)\"");
        QDirIterator sources(STK_SOURCE_DIR "/src", {"*.cpp"}, QDir::Files,
                             QDirIterator::Subdirectories);
        int used = 0;
        while (sources.hasNext()) {
            QFile file(sources.next());
            QVERIFY(file.open(QIODevice::ReadOnly));
            auto matches = id.globalMatch(QString::fromUtf8(file.readAll()));
            for (; matches.hasNext(); ++used) {
                const QString name = matches.next().captured(1);
                QVERIFY2(all.contains('/' + name + ' '), qPrintable(file.fileName() + ' ' + name));
            }
        }
        QVERIFY(used > 0);
    }

    // The toolkit's windows have fixed sizes, whatever the language.
    void buttonTextsFit()
    {
        const auto width = [](const char *id) {
            return QPushButton(Change::tr(QString("IDS_STK_BTN_") + id, "STKPlugin"))
                .sizeHint()
                .width();
        };
        const int menuGaps = 20 + 20 + 55, inputGaps = 35, margins = 22;
        for (const QString &language : Languages) {
            QVERIFY(HostUi::setLanguage(STK_TRANSLATION_DIR, language));
            const int menu = width("BACK") + width("SELECT") + width("CLOSE");
            QVERIFY2(menu + menuGaps + margins <= 380, qPrintable(language));
            QVERIFY2(width("OK") + width("CANCEL") + inputGaps + margins <= 261,
                     qPrintable(language));
        }
    }
};

QTEST_MAIN(TestHostUi)
#include "TestHostUi.moc"
