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
#include <QXmlStreamReader>

#include "HostUi.h"
#include "platform/Change.h"
#include "platform/ClipMessageBox.h"
#include "platform/CommonUtils.h"
#include "platform/ExtendDialog.h"

namespace {

const QStringList Languages = {"en", "de", "fr", "es", "zh_CN", "ar"};

// What a plug-in puts into a frame: a list over three buttons, the first of them disabled.
struct MenuFrame {
    ExtendDialog frame{nullptr, Qt::WindowCloseButtonHint, 1};
    QWidget *content = new QWidget(&frame);
    QPushButton *back = new QPushButton("Back", content);
    QPushButton *select = new QPushButton("Select", content);
    QPushButton *close = new QPushButton("Close", content);
    QTableWidget *table = new QTableWidget(2, 1, content);

    explicit MenuFrame(const QString &focused)
    {
        frame.AddMainWidget(content);
        auto *layout = new QVBoxLayout(content);
        for (QWidget *widget : {static_cast<QWidget *>(table), static_cast<QWidget *>(back),
                                static_cast<QWidget *>(select), static_cast<QWidget *>(close)})
            layout->addWidget(widget);
        for (int row = 0; row < 2; ++row)
            table->setItem(row, 0, new QTableWidgetItem("row"));
        table->setEditTriggers(QAbstractItemView::NoEditTriggers);
        button(focused)->setFocus(Qt::OtherFocusReason);
        back->setEnabled(false);
    }

    QPushButton *button(const QString &text) const
    {
        for (QPushButton *button : {back, select, close}) {
            if (button->text() == text)
                return button;
        }
        return nullptr;
    }
};

// The context and text of every identifier of a catalogue's source.
QMap<QString, QString> readCatalogue(const QString &language)
{
    QFile file(QString(STK_SOURCE_DIR "/translations/host_%1.ts").arg(language));
    QMap<QString, QString> texts;
    if (!file.open(QIODevice::ReadOnly))
        return texts;
    QXmlStreamReader xml(&file);
    QString context, id;
    while (!xml.atEnd()) {
        if (xml.readNext() != QXmlStreamReader::StartElement)
            continue;
        if (xml.name() == QLatin1String("name"))
            context = xml.readElementText();
        else if (xml.name() == QLatin1String("source"))
            id = context + '/' + xml.readElementText();
        else if (xml.name() == QLatin1String("translation")) {
            const bool finished = !xml.attributes().hasAttribute("type");
            texts.insert(id, finished ? xml.readElementText() : QString());
        }
    }
    return xml.hasError() ? QMap<QString, QString>() : texts;
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
        auto *box = widget->isVisible() ? widget->findChild<ClipMessageBox *>() : nullptr;
        if (box)
            return box;
    }
    return nullptr;
}

} // namespace

class TestHostUi : public QObject {
    Q_OBJECT

private slots:
    void cleanup();

    void returnMeansTheFocusedButton_data();
    void returnMeansTheFocusedButton();
    void frameHasTitleBar();
    void titleStaysAsTyped();
    void messageFrameFollowsItsBox();
    void longTextsStayWhole_data();
    void longTextsStayWhole();
    void centresOnScreen();

    void showMessage_data();
    void showMessage();
    void showMessageOutlivesItsParent();
    void openUrl_data();
    void openUrl();
    void waitForThread();

    void changeLanguage();
    void cataloguesAreComplete();
    void buttonTextsFit();
};

void TestHostUi::cleanup()
{
    HostUi::setUrlOpener({});
    HostUi::setUrlRefusalListener({});
    HostUi::setLanguage(STK_TRANSLATION_DIR, "en");
    QVERIFY2(!shownBox(), "no test leaves a window");
}

void TestHostUi::returnMeansTheFocusedButton_data()
{
    QTest::addColumn<QString>("focused");
    QTest::addColumn<int>("key");
    QTest::newRow("Return, Close") << "Close" << int(Qt::Key_Return);
    QTest::newRow("Enter, Close") << "Close" << int(Qt::Key_Enter);
    QTest::newRow("Return, Select") << "Select" << int(Qt::Key_Return);
}

void TestHostUi::returnMeansTheFocusedButton()
{
    QFETCH(QString, focused);
    QFETCH(int, key);
    MenuFrame menu(focused);
    QSignalSpy wanted(menu.button(focused), SIGNAL(clicked()));
    QSignalSpy other(menu.button(focused == "Close" ? "Select" : "Close"), SIGNAL(clicked()));
    for (int showing = 1; showing <= 2; ++showing) {
        menu.button(focused)->setFocus(Qt::OtherFocusReason);
        menu.frame.show();
        QVERIFY(QTest::qWaitForWindowActive(&menu.frame));
        QTest::mouseClick(menu.table->viewport(), Qt::LeftButton, {},
                          menu.table->visualItemRect(menu.table->item(1, 0)).center());
        QCOMPARE(menu.frame.focusWidget(), menu.table);
        QTest::keyClick(menu.table, Qt::Key(key));
        QCOMPARE(wanted.count(), showing);
        QCOMPARE(other.count(), 0);
        menu.frame.hide();
    }
}

void TestHostUi::frameHasTitleBar()
{
    ExtendDialog frame(nullptr, Qt::WindowCloseButtonHint, 1);
    for (int i = 0; i < 2; ++i) {
        const Qt::WindowFlags flags = frame.windowFlags();
        QVERIFY(flags & Qt::WindowTitleHint);
        QVERIFY(flags & Qt::WindowCloseButtonHint);
        QVERIFY(!(flags & Qt::WindowContextHelpButtonHint));
        QCOMPARE(frame.windowType(), Qt::Dialog);
        frame.setWindowFlags(Qt::WindowCloseButtonHint);
    }
}

void TestHostUi::titleStaysAsTyped()
{
    ExtendDialog frame(nullptr, Qt::WindowCloseButtonHint, 1);
    for (const char *title : {"Bank", "[*]", "a[*]b[*][*]", "<b>x</b> &amp; %1"}) {
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
    QVERIFY2(frame.windowHandle()->title() == QString(QChar::Nbsp), "not the application's name");
}

void TestHostUi::messageFrameFollowsItsBox()
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

void TestHostUi::longTextsStayWhole_data()
{
    QTest::addColumn<QString>("text");
    QString line = "Thank you.";
    while (QApplication::fontMetrics().horizontalAdvance(line) < 280)
        line += 'x';
    QTest::newRow("one line") << line;
    QTest::newRow("markup") << QString("<b>x</b>\n");
    QTest::newRow("one word") << QString(255, 'W');
    QTest::newRow("one character a line") << QString("x\n").repeated(127);
    QTest::newRow("words") << QString("lorem ipsum ").repeated(20);
    QTest::newRow("Chinese") << QString::fromUtf8("余额查询").repeated(60);
    QTest::newRow("emoji") << QString::fromUtf8("📱").repeated(120);
}

void TestHostUi::longTextsStayWhole()
{
    QFETCH(QString, text);
    QString problem = "no box was shown";
    QTimer::singleShot(0, this, [&] {
        ClipMessageBox *box = shownBox();
        const QRect screen = box->screen()->availableGeometry();
        problem = textProblem(*box, text);
        if (box->window()->width() > screen.width() || box->window()->height() > screen.height())
            problem = "larger than the screen";
        else if (!box->window()->rect().contains(box->geometry()))
            problem = "larger than its frame";
        else if ((box->window()->frameGeometry().center() - screen.center()).manhattanLength() > 4)
            problem = "not in the middle";
        box->window()->close();
    });
    CommonUtils::ShowMessage(QMessageBox::Warning, nullptr, "t", text, "IDS_OK", "", "", true, {},
                             nullptr, QString(), true);
    QCOMPARE(problem, QString());
}

void TestHostUi::centresOnScreen()
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

void TestHostUi::showMessage_data()
{
    QTest::addColumn<QString>("press");
    QTest::addColumn<int>("result");
    QTest::newRow("first") << "Yes" << int(QMessageBox::Ok);
    QTest::newRow("second") << "No" << int(QMessageBox::No);
    QTest::newRow("third") << "Cancel" << int(QMessageBox::Cancel);
    QTest::newRow("close") << "close" << int(QMessageBox::Cancel);
    QTest::newRow("Escape") << "escape" << int(QMessageBox::Cancel);
    QTest::newRow("Return") << "return" << int(QMessageBox::Ok);
}

void TestHostUi::showMessage()
{
    QFETCH(QString, press);
    QDialog *shared = nullptr;
    bool sharedWhileUp = false, clearedAtClose = false;
    QTimer::singleShot(0, this, [&] {
        ClipMessageBox *box = shownBox();
        const QPointer<QWidget> frame = box->window();
        sharedWhileUp = shared && shared == frame && frame->windowTitle() == "[*] title" &&
            box->text() == "<i>text</i>\n\n%1 detail";
        if (press == "close")
            shared->close();
        else if (press == "escape")
            QTest::keyClick(frame->windowHandle(), Qt::Key_Escape);
        else if (press == "return")
            QTest::keyClick(frame->windowHandle(), Qt::Key_Return);
        for (QAbstractButton *button : box->buttons()) {
            if (button->text() == press)
                QTest::mouseClick(button, Qt::LeftButton);
        }
        clearedAtClose = !shared;
    });
    const int result = CommonUtils::ShowMessage(
        QMessageBox::NoIcon, nullptr, "[*] title", "<i>text</i>", "IDS_YES", "IDS_NO", "IDS_CANCEL",
        true, Qt::WindowCloseButtonHint, &shared, "%1 detail", true);
    QTEST(result, "result");
    QVERIFY(sharedWhileUp);
    QVERIFY(clearedAtClose);
}

void TestHostUi::showMessageOutlivesItsParent()
{
    auto *parent = new QWidget;
    parent->show();
    QDialog *shared = nullptr;
    QTimer::singleShot(0, this, [&] { delete parent; });
    const int result =
        CommonUtils::ShowMessage(QMessageBox::Question, parent, "", "text", "IDS_YES", "IDS_NO", "",
                                 true, {}, &shared, QString(), true);
    QCOMPARE(result, int(QMessageBox::Cancel));
    QVERIFY(!shared);
}

void TestHostUi::openUrl_data()
{
    QTest::addColumn<QString>("address");
    QTest::addColumn<QString>("refusal");
    const auto refused = [](const char *address, const char *reason) {
        QTest::newRow(address) << address
                               << QString("OpenUrl: refused \"%1\": %2").arg(address, reason);
    };
    for (const char *address :
         {"http://example.com", "https://example.com/a?b=c#d", "HTTP://EXAMPLE.COM/",
          "http://[2001:db8::1]:8080/", "http://example.com/%C3%BC"})
        QTest::newRow(address) << address << "";
    for (const char *address :
         {"file:///etc/passwd", "ftp://example.com/", "javascript:alert(1)", "mailto:a@b.c",
          "tel:+123", "data:text/html,x", "example.com", "/etc/passwd", "x-http://example.com"})
        refused(address, "only http and https are opened");
    refused("http://", "it names no host");
    refused("http:example.com", "it names no host");
    refused("", "not an address");
    refused("http://exa mple.com", "not an address");
    refused("http://example.com:99999/", "not an address");
    QTest::newRow("control characters") << "http://a\nb\x1b[31m"
                                        << "OpenUrl: refused \"http://a?b?[31m\": not an address";
    QTest::newRow("endless") << "x:" + QString(100000, 'a')
                             << "OpenUrl: refused \"x:" + QString(198, 'a') +
            "\": only http and https are opened";
}

void TestHostUi::openUrl()
{
    QFETCH(QString, address);
    QFETCH(QString, refusal);
    QList<QUrl> opened;
    HostUi::setUrlOpener([&](const QUrl &url) {
        opened << url;
        return true;
    });
    QStringList refused;
    HostUi::setUrlRefusalListener(
        [&](const QString &shown, HostUi::UrlRefusal) { refused << shown; });
    if (!refusal.isEmpty())
        QTest::ignoreMessage(QtWarningMsg, qPrintable(refusal));
    QCOMPARE(CommonUtils::OpenUrl(address), refusal.isEmpty());
    QCOMPARE(opened, refusal.isEmpty() ? QList<QUrl>{QUrl(address)} : QList<QUrl>());
    QCOMPARE(refused, refusal.isEmpty() ? QStringList() : QStringList(refusal.section('"', 1, 1)));
}

void TestHostUi::waitForThread()
{
    QThread idle, busy;
    QVERIFY(CommonUtils::WaitForThreadToStop(nullptr, 5));
    QVERIFY(CommonUtils::WaitForThreadToStop(&idle, 5));
    busy.start();
    QVERIFY(!CommonUtils::WaitForThreadToStop(&busy, 0));
    QVERIFY(!CommonUtils::WaitForThreadToStop(&busy, -7));
    QElapsedTimer clock;
    clock.start();
    QVERIFY(!CommonUtils::WaitForThreadToStop(&busy, 1));
    QVERIFY2(clock.elapsed() >= 990, "the time is in seconds");
    busy.quit();
    QVERIFY(CommonUtils::WaitForThreadToStop(&busy, INT_MAX));
}

void TestHostUi::changeLanguage()
{
    QVERIFY(HostUi::setLanguage(STK_TRANSLATION_DIR, "de"));
    QCOMPARE(Change::tr("IDS_STK_BTN_BACK", "STKPlugin"), QString::fromUtf8("Zurück"));
    QVERIFY(HostUi::setLanguage(STK_TRANSLATION_DIR, "en"));
    QCOMPARE(Change::tr("IDS_STK_BTN_BACK", "STKPlugin"), QString("Back"));
    QCOMPARE(Change::tr("IDS_STK_BTN_BACK", "LuminePlugin"), QString("IDS_STK_BTN_BACK"));
    QCOMPARE(Change::tr("IDS_ABSENT", "STKPlugin"), QString("IDS_ABSENT"));
    QCOMPARE(Change::tr("", "STKPlugin"), QString());
    QVERIFY(!HostUi::setLanguage(STK_TRANSLATION_DIR, "xx"));
    QCOMPARE(Change::tr("IDS_STK_BTN_BACK", "STKPlugin"), QString("IDS_STK_BTN_BACK"));
}

void TestHostUi::cataloguesAreComplete()
{
    const QMap<QString, QString> english = readCatalogue("en");
    for (const QString &language : Languages) {
        const QMap<QString, QString> texts = readCatalogue(language);
        QCOMPARE(texts.keys(), english.keys());
        for (auto text = texts.begin(); text != texts.end(); ++text) {
            QVERIFY2(!text->isEmpty(), qPrintable(language + ' ' + text.key()));
            QVERIFY2(text->count("%1") == english[text.key()].count("%1"),
                     qPrintable(language + ' ' + text.key()));
        }
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
void TestHostUi::buttonTextsFit()
{
    const auto width = [](const QStringList &ids) {
        int sum = 0;
        for (const QString &id : ids)
            sum += QPushButton(Change::tr(id, "STKPlugin")).sizeHint().width();
        return sum;
    };
    const QStringList menu = {"IDS_STK_BTN_BACK", "IDS_STK_BTN_SELECT", "IDS_STK_BTN_CLOSE"};
    const int menuGaps = 20 + 20 + 55, inputGaps = 35, margins = 22;
    for (const QString &language : Languages) {
        QVERIFY(HostUi::setLanguage(STK_TRANSLATION_DIR, language));
        QVERIFY2(width(menu) + menuGaps + margins <= 380, qPrintable(language));
        QVERIFY2(width({"IDS_STK_BTN_OK", "IDS_STK_BTN_CANCEL"}) + inputGaps + margins <= 261,
                 qPrintable(language));
    }
}

QTEST_MAIN(TestHostUi)
#include "TestHostUi.moc"
