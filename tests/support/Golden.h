#pragma once

// Expectations kept as data under tests/data: a file of sections, each headed
// "== name" and holding its lines verbatim (lines before the first head are
// notes). Trailing empty lines of a section are dropped.
#include <QFile>
#include <QStringList>

inline QStringList golden(const QString& file, const QString& section)
{
    QFile f(QStringLiteral(KERBANO_SOURCE_DIR "/tests/data/") + file);
    if (!f.open(QIODevice::ReadOnly))
        return {QStringLiteral("no file tests/data/") + file};
    QStringList out;
    bool inside = false;
    for (const QString& line : QString::fromUtf8(f.readAll()).split(u'\n')) {
        if (line.startsWith(QLatin1String("== "))) {
            if (inside)
                break;
            inside = line.mid(3) == section;
        } else if (inside) {
            out << line;
        }
    }
    while (!out.isEmpty() && out.last().isEmpty())
        out.removeLast();
    return inside || !out.isEmpty() ? out : QStringList{QStringLiteral("no section ") + section};
}
