// Uses the windows of the example host as a person would; Qt loads this into the example's process.
#include <QComboBox>
#include <QGenericPlugin>
#include <QLineEdit>
#include <QTableWidget>
#include <QtTest>

class MinimalHostUser : public QGenericPlugin {
    Q_OBJECT
    Q_PLUGIN_METADATA(IID QGenericPluginFactoryInterface_iid FILE "MinimalHostUser.json")

public:
    QObject *create(const QString &, const QString &) override
    {
        startTimer(20);
        return new QObject;
    }

protected:
    void timerEvent(QTimerEvent *) override
    {
        if (m_step == m_steps.size())
            return;
        if (++m_tries > 1500)
            qFatal("cannot %s", qPrintable(m_steps[m_step]));
        for (QWidget *widget : QApplication::allWidgets()) {
            if (widget->isVisible() && widget->isEnabled() && act(widget)) {
                ++m_step;
                m_tries = 0;
                return;
            }
        }
    }

private:
    bool act(QWidget *widget)
    {
        const QString verb = m_steps[m_step].section(' ', 0, 0);
        const QString text = m_steps[m_step].section(' ', 1);
        if (verb == "choose") {
            if (auto *const languages = qobject_cast<QComboBox *>(widget))
                languages->setCurrentText(text);
            auto *const table = qobject_cast<QTableWidget *>(widget);
            if (table)
                table->setCurrentItem(table->findItems(text, Qt::MatchExactly).value(0));
            return (table && table->currentItem()) || widget->property("currentText") == text;
        }
        if (verb == "type" && qobject_cast<QLineEdit *>(widget))
            return QTest::keyClicks(widget, text), true;
        if (widget->property("text") != text || verb == "type")
            return false;
        if (verb != "leave")
            return verb == "see" || QMetaObject::invokeMethod(widget, "click");
        QFile maps("/proc/self/maps"); // the service is the example's, and no other is there
        return maps.open(QFile::ReadOnly) && !maps.readAll().contains("libModemService") &&
            widget->window()->close();
    }

    const QStringList m_steps{"click SIM toolkit", "choose Say hello",
                              "click Select",      "see Hello from the card.",
                              "click OK",          "choose Introduce yourself",
                              "click Select",      "type Ann",
                              "click OK",          "see Nice to meet you, Ann.",
                              "click OK",          "choose de",
                              "see Schließen",     "leave SIM toolkit"};
    int m_step = 0, m_tries = 0;
};

#include "MinimalHostUser.moc"
