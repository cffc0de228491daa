#include <QMenu>
#include <QTest>

#include "ReaderMenu.h"

// Readers are written "name=state", the state as its number.
class TestReaderMenu : public QObject {
    Q_OBJECT

private slots:
    void followsReaders()
    {
        const struct {
            QString what, start; // what was asked for
            QStringList lists; // one after the other
            QString checked; // reader in use after the last
        } rows[] = {
            {"first with a card", "", {"a=0 b=1 c=1"}, "b"},
            {"first without any card", "", {"a=0 b=0"}, "a"},
            {"stays with a card", "", {"a=0 b=1", "a=1 b=1"}, "b"},
            {"goes on when it is pulled", "", {"a=1 b=1", "a=0 b=1"}, "b"},
            {"goes on when it is unplugged", "", {"a=1 b=1", "b=1"}, "b"},
            {"named, though empty", "b", {"a=1 b=0"}, "b"},
            {"named by its start", "be", {"b=1 beta=1"}, "beta"},
            {"named, not there", "x", {"a=1"}, ""},
            {"no readers", "", {"a=1", ""}, ""},
        };
        for (const auto &[what, start, lists, checked] : rows) {
            QMenu menu;
            ReaderMenu readers(&menu);
            readers.use(start);
            for (const QString &list : lists)
                readers.setReaders(read(list));
            const QAction *action = readers.checkedAction();
            QCOMPARE(what + (action ? action->data().toString() : ""), what + checked);
            const int count = lists.last().split(' ', Qt::SkipEmptyParts).size();
            QCOMPARE(menu.actions().size(), qMax(1, count) + 1); // a line for none; the separator
            QCOMPARE(menu.actions().first()->isEnabled(), count > 0);
        }
    }

    // As from its own triggered signal, which the action must outlive.
    void isRefilledByItsOwnAction()
    {
        QMenu menu;
        ReaderMenu readers(&menu);
        readers.setReaders(read("a=1 c=0"));
        connect(&readers, &ReaderMenu::chosen, &readers, &ReaderMenu::use);
        menu.actions().at(1)->trigger();
        QCOMPARE(readers.checkedAction()->data().toString(), QString("c"));
    }

private:
    static CardHost::ReaderList read(const QString &text)
    {
        CardHost::ReaderList list;
        for (const QString &reader : text.split(' ', Qt::SkipEmptyParts))
            list.readers.push_back({reader.section('=', 0, 0).toStdString(),
                                    CardHost::Reader::State(reader.section('=', 1).toInt())});
        return list;
    }
};

QTEST_MAIN(TestReaderMenu)
#include "TestReaderMenu.moc"
