#include <QApplication>
#include <QClipboard>
#include <QTest>

#include "PinField.h"

class TestPinField : public QObject {
    Q_OBJECT

private slots:
    void keepsDigitsToItself_data()
    {
        QTest::addColumn<QString>("keys"); // < is Backspace, v is Ctrl+V, a is Ctrl+A
        QTest::addColumn<QString>("pin"); // empty for none that is valid
        const auto row = [](const char *what, const char *keys, const char *pin) {
            QTest::newRow(what) << QString::fromUtf8(keys) << QString(pin);
        };
        row("too short", "123", "");
        row("shortest", "1234", "1234");
        row("no more than eight", "1234567890", "12345678");
        row("nothing but digits", "1x2 3-4", "1234");
        row("digits of another script", "١٢٣٤", "1234");
        row("last one erased", "12345<<6", "1236");
        row("erased beyond the start", "1<<<2345", "2345");
        row("all erased", "12345678a<4321", "4321");
        row("nothing pasted", "v123v", "");
    }

    void keepsDigitsToItself()
    {
        QFETCH(QString, keys);
        QApplication::clipboard()->setText("987654");
        PinField field(nullptr);
        for (const QChar key : keys) {
            if (key == '<')
                QTest::keyClick(&field, Qt::Key_Backspace);
            else if (key == 'v')
                QTest::keyClick(&field, Qt::Key_V, Qt::ControlModifier);
            else if (key == 'a')
                field.selectAll();
            else
                QTest::sendKeyEvent(QTest::Click, &field, Qt::Key_unknown, QString(key),
                                    Qt::NoModifier);
        }
        const CardHost::Pin pin = field.pin();
        QTEST(QString::fromLatin1(pin.digits(), int(pin.size())), "pin");
        QVERIFY2(field.text().count('.') == field.text().size(),
                 "a digit stands in the line's text");
        field.wipe();
        QVERIFY(field.text().isEmpty() && !field.pin().isValid());
    }
};

QTEST_MAIN(TestPinField)
#include "TestPinField.moc"
