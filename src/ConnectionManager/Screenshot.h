#ifndef SCREENSHOT_H
#define SCREENSHOT_H

#include <QString>

/// Draws every window of the application that is on the screen, one over the other as they lie
/// there, each with a title bar, and writes the picture as PNG.  The window manager is not asked,
/// so that pictures look alike with and without a display.  The result is empty, or one line that
/// says why the file cannot be written.
QString saveScreenshot(const QString &fileName);

#endif
