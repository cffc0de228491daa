#ifndef WALKTHROUGH_H
#define WALKTHROUGH_H

#include <vector>

#include <QJsonValue>
#include <QString>

/// The steps of a walkthrough file.
class Walkthrough {
public:
    /// How the row of a menu is chosen once it is the current one.
    enum class SelectBy { Button, DoubleClick, Return };

    struct Step {
        int number = 0; ///< counted from 1, as messages name it
        QString name; ///< what to do: "open", "select", ...
        QJsonValue value; ///< of the type that the step asks for
        int within = 0; ///< longest wait in ms
        SelectBy by = SelectBy::Button;
    };

    /// Reads the file.  The result is empty, or one line that names the file, the place, what was
    /// expected there and what was found; there are no steps then.
    QString load(const QString &fileName);

    const QString &fileName() const { return m_fileName; }
    const std::vector<Step> &steps() const { return m_steps; }

private:
    QString addStep(const QJsonValue &value);

    QString m_fileName;
    std::vector<Step> m_steps;
};

#endif
