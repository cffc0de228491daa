#include <QApplication>
#include <QClipboard>
#include <QTest>

#include "PinField.h"

class TestPinField : public QObject {
    Q_OBJECT

private slots:
    void keepsDigitsToItself()
    {
        QApplication::clipboard()->setText("987654");
        // Of the keys < is Backspace, v is Ctrl+V, a is Ctrl+A; no PIN where none is valid.
        const struct {
            QString what, keys, pin;
        } rows[] = {
            {"too short", "123", ""},
            {"shortest", "1234", "1234"},
            {"no more than eight", "1234567890", "12345678"},
            {"nothing but digits", "1x2 3-4", "1234"},
            {"digits of another script", "١٢٣٤", "1234"},
            {"last one erased", "12345<<6", "1236"},
            {"erased beyond the start", "1<<<2345", "2345"},
            {"all erased", "12345678a<4321", "4321"},
            {"nothing pasted", "v123v", ""},
        };
        for (const auto &[what, keys, expected] : rows) {
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
            QCOMPARE(what + QString::fromLatin1(pin.digits(), int(pin.size())), what + expected);
            QVERIFY2(field.text().count('.') == field.text().size(),
                     "a digit stands in the line's text");
            field.wipe();
            QVERIFY(field.text().isEmpty() && !field.pin().isValid());
        }
    }
};

QTEST_MAIN(TestPinField)
#include "TestPinField.moc"
