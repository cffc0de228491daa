#include "Screenshot.h"

#include <QApplication>
#include <QImage>
#include <QMainWindow>
#include <QPainter>
#include <QWidget>

namespace {

constexpr int TitleHeight = 26;
constexpr int Margin = 10;

QRect framed(const QWidget *window)
{
    return window->geometry().adjusted(-1, -TitleHeight, 1, 1);
}

// The main window lies under the other windows, dialogs lie over all of them, the latest on top.
bool isLower(const QWidget *a, const QWidget *b)
{
    const auto height = [](const QWidget *window) {
        if (window->windowType() == Qt::Dialog)
            return window->isModal() ? 3 : 2;
        return qobject_cast<const QMainWindow *>(window) ? 0 : 1;
    };
    const QWidget *top = QApplication::activeModalWidget();
    if (a == top || b == top)
        return b == top && a != top;
    // Window systems number their windows in the order of their making.
    return std::pair(height(a), a->internalWinId()) < std::pair(height(b), b->internalWinId());
}

// Menus and tool tips are left out.
QList<QWidget *> visibleWindows()
{
    QList<QWidget *> windows;
    for (QWidget *widget : QApplication::topLevelWidgets()) {
        const bool framedWindow =
            widget->windowType() == Qt::Window || widget->windowType() == Qt::Dialog;
        if (widget->isVisible() && framedWindow)
            windows << widget;
    }
    std::sort(windows.begin(), windows.end(), isLower);
    return windows;
}

void drawWindow(QPainter &painter, QWidget *window)
{
    const QRect frame = framed(window);
    const QRect title(frame.topLeft(), QSize(frame.width(), TitleHeight));
    painter.fillRect(frame, QColor(0x4a, 0x5a, 0x6a));
    painter.setPen(Qt::white);
    painter.drawText(title.adjusted(10, 0, -30, 0), Qt::AlignCenter | Qt::TextSingleLine,
                     painter.fontMetrics().elidedText(window->windowTitle(), Qt::ElideRight,
                                                      title.width() - 60));
    const QRect close(title.right() - 20, title.top() + 8, 10, 10);
    painter.setPen(QPen(Qt::white, 1.5));
    painter.drawLine(close.topLeft(), close.bottomRight());
    painter.drawLine(close.topRight(), close.bottomLeft());
    painter.drawPixmap(window->geometry().topLeft(), window->grab());
}

} // namespace

QString saveScreenshot(const QString &fileName)
{
    const QList<QWidget *> windows = visibleWindows();
    QRect area;
    for (const QWidget *window : windows)
        area |= framed(window);
    area.adjust(-Margin, -Margin, Margin, Margin);
    QImage image(area.size(), QImage::Format_RGB32);
    image.fill(QColor(0xd8, 0xde, 0xe4));
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.translate(-area.topLeft());
    for (QWidget *window : windows)
        drawWindow(painter, window);
    painter.end();
    if (!image.save(fileName, "PNG"))
        return fileName + ": cannot write the picture";
    return {};
}
