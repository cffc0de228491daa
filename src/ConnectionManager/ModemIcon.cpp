#include "ModemIcon.h"

#include <QDir>
#include <QPainter>
#include <QPainterPath>

namespace {

const QColor Blue(0x1f, 0x6f, 0xb2);
const QColor Green(0x2e, 0x9e, 0x5b);
const QColor Orange(0xe0, 0x8a, 0x1e);
const QColor Grey(0xa0, 0xa6, 0xad);
const QColor Gold(0xf3, 0xd0, 0x6b);

// All drawing is done on a square of 64 units.
constexpr int Units = 64;
constexpr int SignalBars = 4;

void drawSimCard(QPainter &painter, const QColor &body)
{
    QPainterPath card;
    card.moveTo(14, 6);
    card.lineTo(36, 6);
    card.lineTo(50, 20);
    card.lineTo(50, 58);
    card.lineTo(14, 58);
    card.closeSubpath();
    painter.setPen(QPen(body.darker(120), 2, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    painter.setBrush(body);
    painter.drawPath(card);

    const QRectF chip(21, 27, 22, 22);
    painter.setPen(QPen(Gold.darker(150), 1.5));
    painter.setBrush(Gold);
    painter.drawRoundedRect(chip, 4, 4);
    painter.drawLine(QPointF(chip.left(), chip.center().y()), QPointF(28, chip.center().y()));
    painter.drawLine(QPointF(36, chip.center().y()), QPointF(chip.right(), chip.center().y()));
    painter.drawRect(QRectF(28, 31, 8, 14));
}

void drawSignal(QPainter &painter, const QColor &colour, int filled)
{
    painter.setPen(Qt::NoPen);
    for (int bar = 0; bar < SignalBars; ++bar) {
        const int height = 8 + bar * 7;
        painter.setBrush(bar < filled ? colour : Grey.lighter(130));
        painter.drawRoundedRect(QRectF(32 + bar * 8, 62 - height, 6, height), 1.5, 1.5);
    }
}

} // namespace

QIcon ModemIcon::simCard()
{
    QIcon icon;
    for (const QFileInfo &file : QDir(":/icons").entryInfoList())
        icon.addFile(file.filePath());
    return icon;
}

QPixmap ModemIcon::forState(CardHost::ModemState state, int size, qreal devicePixelRatio)
{
    const bool present =
        state == CardHost::ModemState::Ready || state == CardHost::ModemState::Busy;
    QPixmap pixmap(qRound(size * devicePixelRatio), qRound(size * devicePixelRatio));
    pixmap.fill(Qt::transparent);
    QPainter painter(&pixmap);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.scale(qreal(pixmap.width()) / Units, qreal(pixmap.height()) / Units);
    painter.save();
    painter.translate(-10, 0);
    drawSimCard(painter, present ? Blue : Grey);
    painter.restore();
    drawSignal(painter, state == CardHost::ModemState::Busy ? Orange : Green,
               present ? SignalBars : 0);
    painter.end();
    pixmap.setDevicePixelRatio(devicePixelRatio);
    return pixmap;
}
