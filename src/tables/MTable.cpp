#include "tables/MTable.h"

#include "link/DeviceLink.h"
#include "protocol/DeviceCommands.h"

#include <QStringList>

namespace {
constexpr int kTitleMax = 53;
constexpr int kFirstLineWidth = 20;
constexpr int kSecondLineWidth = 32;

QString titleLine(const QString& part, int width)
{
    const QString line = part.trimmed().isEmpty() ? part : PadLeftTo(part, width, QString());
    return line.trimmed().isEmpty() ? QStringLiteral(" ") : line;
}
} // namespace

QString PadLeftTo(const QString& text, int width, const QString& lead)
{
    const qsizetype blanks = width - lead.size() - text.size();
    if (blanks < 0)
        return QStringLiteral("*");
    return lead + QString(blanks, QLatin1Char(' ')) + text;
}

void ProgramTableHeader(DeviceLink& link, qint16 table, const QString& title, qint16& status,
                        QString& reply)
{
    QString cut = title.left(kTitleMax);
    cut.replace(QLatin1Char('/'), QLatin1Char('-'));
    const QStringList parts = cut.split(QLatin1Char('~'));
    const QString first = titleLine(parts.value(0), kFirstLineWidth);
    const QString second = titleLine(parts.value(1), kSecondLineWidth);
    link.SendCommand(DeviceCommands::TableTitle(table, first, second), status, reply);
}
