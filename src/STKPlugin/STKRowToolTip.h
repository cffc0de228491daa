#ifndef STKROWTOOLTIP_H
#define STKROWTOOLTIP_H

#include <QScrollBar>
#include <QStyle>
#include <QTableWidget>

/* The tool tip of a row of the menu: an item's text as the card sent it, where the row is too
 * narrow for it. */

/* Whether a row shows the whole text, with the scroll bar beside it. */
inline bool FitsRow(const QTableWidget *pTable, const QString &strText)
{
    const int nMargin = pTable->style()->pixelMetric(QStyle::PM_FocusFrameHMargin) + 1;
    const int nBesides =
        2 * (pTable->frameWidth() + nMargin) + pTable->verticalScrollBar()->sizeHint().width();
    return !strText.contains('\n') &&
        pTable->fontMetrics().boundingRect(strText).width() + nBesides <= pTable->columnWidth(0);
}

/* A tool tip takes what looks like markup for markup, unless all of it is. */
inline QString PlainToolTip(QString strText)
{
    strText.replace('&', "&amp;").replace('<', "&lt;").replace('\n', "<br/>");
    return "<qt>" + strText + "</qt>";
}

#endif
