#include "ui/KerbanoIcon.h"

#include <QPainter>
#include <QPixmap>

namespace {
constexpr int kIconSize = 64;
}

QIcon KerbanoIcon()
{
    QPixmap pixmap(kIconSize, kIconSize);
    pixmap.fill(Qt::transparent);
    QPainter p(&pixmap);
    p.setRenderHint(QPainter::Antialiasing);
    p.setBrush(QColor(0x1f, 0x5f, 0x9f));
    p.setPen(Qt::NoPen);
    p.drawRoundedRect(pixmap.rect().adjusted(2, 2, -2, -2), 10, 10);
    QFont font = p.font();
    font.setBold(true);
    font.setPixelSize(kIconSize * 2 / 3);
    p.setFont(font);
    p.setPen(Qt::white);
    p.drawText(pixmap.rect(), Qt::AlignCenter, QStringLiteral("K"));
    p.end();
    return QIcon(pixmap);
}
