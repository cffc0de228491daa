#ifndef TEXTVIEW_H
#define TEXTVIEW_H

#include <QLabel>
#include <QTextEdit>

/* Hides the label and returns a view for its place, in which its text can be read whatever its
 * length: it wraps inside a word where it must, and scrolls; a label does neither.
 *
 * Inline and internal: whoever includes this has it, and asks no library for it. */
static inline QTextEdit *textViewFor(QLabel *label)
{
    QTextEdit *const view = new QTextEdit(label->parentWidget());
    view->setReadOnly(true);
    view->setFrameShape(QFrame::NoFrame);
    view->setFocusPolicy(Qt::NoFocus);
    view->setWordWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
    view->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    view->viewport()->setAutoFillBackground(false);
    view->setPlainText(label->text());
    label->hide();
    return view;
}

#endif
