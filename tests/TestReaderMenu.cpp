#include <QDir>
#include <QMenu>
#include <QTemporaryDir>
#include <QTest>

#include "Languages.h"
#include "ModemMenu.h"
#include "ReaderMenu.h"

// Readers are written "name=state", the state as its number, and modems "at:name=state".
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

    void followsModems()
    {
        QVERIFY(Languages::apply("en"));
        const QTemporaryDir folder;
        QVERIFY(QDir::setCurrent(folder.path()) && QFile("c").open(QIODevice::WriteOnly) &&
                QFile::link("c", "link"));
        // The line; what was asked for, and one list after the other.
        for (const auto &[line, steps] : QList<QPair<QString, QString>>{
                 {"mbim:b — not ready", "mbim:||at:a=0 mbim:b=0 mbim:c=0"},
                 {"at:c — in use by \u2066x\u2069", "at:c|at:a=0 at:c=1"},
                 {"at:c — connected", "at:link|mbim:c=0 at:c=1"},
                 {"at:a — not ready", "at:a|at:a=0|at:b=0"}}) {
            QMenu menu;
            ModemMenu modems(&menu);
            connect(&modems, &ModemMenu::chosen, &modems, &ModemMenu::use);
            modems.use(readModems(steps.section('|', 0, 0)).front());
            modems.setAnswering(line.endsWith("connected"));
            for (const QString &list : steps.section('|', 1).split('|'))
                modems.setModems(readModems(list));
            modems.checkedAction()->trigger(); // the same once more
            const QString shown = modems.checkedAction()->text();
            QCOMPARE(modems.line(), shown);
            QCOMPARE(shown, "Modem: \u2066" + QString(line).replace(" —", "\u2069 —"));
        }
    }

private:
    static std::vector<CardHost::Modem> readModems(const QString &text)
    {
        std::vector<CardHost::Modem> all;
        for (const QString &modem : text.split(' ', Qt::SkipEmptyParts))
            all.push_back({CardHost::Modem::Kind(modem.startsWith("mbim:")),
                           modem.section('=', 0, 0).section(':', 1).toStdString(), "",
                           CardHost::Modem::State(modem.section('=', 1).toInt()), "x"});
        return all;
    }
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
