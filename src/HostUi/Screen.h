#ifndef SCREEN_H
#define SCREEN_H

#include <QWidget>

/// What the panels of the desktop leave of the screen that the widget is on.
inline QRect availableScreen(const QWidget *widget);

#if QT_VERSION < 0x050000
#include <QApplication>
#include <QDesktopWidget>

QRect availableScreen(const QWidget *widget)
{
    return QApplication::desktop()->availableGeometry(widget);
}
#else
#include <QScreen>

QRect availableScreen(const QWidget *widget)
{
    return widget->screen()->availableGeometry();
}
#endif

#endif
