#ifndef STKROWTOOLTIP_H
#define STKROWTOOLTIP_H

#include <QScrollBar>
#include <QStyle>
#include <QTableWidget>

/* A tool tip takes what looks like markup for markup, unless all of it is. */
inline QString PlainToolTip(QString strText)
{
    strText.replace('&', "&amp;").replace('<', "&lt;").replace('\n', "<br/>");
    return "<qt>" + strText + "</qt>";
}

/* A row of the menu: an item's text as the card sent it, which is its tool tip as well where the
 * row is too narrow for it.  That is found out when the tool tip is asked for: to measure each text
 * takes longer than to show the menu. */
class STKRowItem : public QTableWidgetItem {
public:
    explicit STKRowItem(const QString &strText)
        : QTableWidgetItem(strText)
    {
    }

    QVariant data(int nRole) const override
    {
        if (nRole == Qt::ToolTipRole && tableWidget() && !fitsRow(tableWidget()))
            return PlainToolTip(text());
        return QTableWidgetItem::data(nRole);
    }

private:
    /* Whether the row shows the whole text, with the scroll bar beside it. */
    bool fitsRow(const QTableWidget *pTable) const
    {
        const int nMargin = pTable->style()->pixelMetric(QStyle::PM_FocusFrameHMargin) + 1;
        const int nBesides =
            2 * (pTable->frameWidth() + nMargin) + pTable->verticalScrollBar()->sizeHint().width();
        return !text().contains('\n') &&
            pTable->fontMetrics().boundingRect(text()).width() + nBesides <= pTable->columnWidth(0);
    }
};

#endif
