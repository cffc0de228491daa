#include "ToolkitButton.h"

#include <QProxyStyle>

#include "Languages.h"
#include "ModemIcon.h"

namespace {

// Where the layout runs from right to left, the common style turns the alignment of a button's text
// round twice, and the text leaves the icon for the border.
class IconBesideText : public QProxyStyle {
public:
    void drawItemText(QPainter *painter, const QRect &place, int alignment, const QPalette &palette,
                      bool isEnabled, const QString &text, QPalette::ColorRole role) const override
    {
        QProxyStyle::drawItemText(painter, place, alignment | Qt::AlignAbsolute, palette, isEnabled,
                                  text, role);
    }
};

} // namespace

ToolkitButton::ToolkitButton(QWidget *parent)
    : QPushButton(ModemIcon::simCard(), QString(), parent)
{
    setObjectName("ConnectionManager_ToolkitButton");
    setIconSize({32, 32});
    setMinimumSize(170, 52);
    auto *style = new IconBesideText;
    style->setParent(this);
    setStyle(style);
}

void ToolkitButton::follow(bool hasToolkit, bool hasMenu)
{
    const QString reason =
        hasToolkit && !hasMenu ? '\n' + Languages::text("IDS_CM_NO_MENU") : QString();
    setText(Languages::text("IDS_CM_TOOLKIT") + reason);
    setEnabled(hasToolkit && hasMenu);
}
