#ifndef PINFIELD_H
#define PINFIELD_H

#include <array>

#include <QLineEdit>

#include "CardHost.h"

/// A line that takes four to eight digits and shows a dot for each.  The digits are kept here
/// alone, and wiped: the text of the line, which Qt copies and remembers, has none of them.
class PinField : public QLineEdit {
    Q_OBJECT

public:
    explicit PinField(QWidget *parent);
    ~PinField() override;

    /// Invalid until there are four digits.
    CardHost::Pin pin() const;
    void wipe();

protected:
    void keyPressEvent(QKeyEvent *event) override;
    void inputMethodEvent(QInputMethodEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;

private:
    void add(const QString &typed);
    void erase();
    void showDots();

    std::array<char, 8> m_digits{};
    size_t m_count = 0;
};

#endif
