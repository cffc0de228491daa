#ifndef TOOLKITBUTTON_H
#define TOOLKITBUTTON_H

#include <QPushButton>

/// Opens the SIM toolkit; says why it cannot where a card without a menu is in the modem.
class ToolkitButton : public QPushButton {
    Q_OBJECT

public:
    explicit ToolkitButton(QWidget *parent);

    /// Follows what is in the modem; in the current language.
    void follow(bool hasToolkit, bool hasMenu);
};

#endif
