#pragma once

#include <QByteArray>
#include <QFile>
#include <QStringList>

// Expectations kept as data under tests/data/.

// A golden file's bytes as they stand; nothing when it is missing.
inline QByteArray DataBytes(const QString& name)
{
    QFile file(QStringLiteral(KERBANO_SOURCE_DIR "/tests/data/") + name);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

// The lines of a golden file under tests/data/, without comments (#) and
// blank lines; nothing when the file is missing.
inline QStringList DataLines(const QString& name)
{
    QFile file(QStringLiteral(KERBANO_SOURCE_DIR "/tests/data/") + name);
    QStringList lines;
    if (file.open(QIODevice::ReadOnly))
        for (const QString& line : QString::fromUtf8(file.readAll()).split(u'\n'))
            if (!line.trimmed().isEmpty() && !line.startsWith(u'#'))
                lines << line;
    return lines;
}

// A golden text file under tests/data/ line by line, as it stands.
inline QStringList DataFileLines(const QString& name)
{
    QFile file(QStringLiteral(KERBANO_SOURCE_DIR "/tests/data/") + name);
    if (!file.open(QIODevice::ReadOnly))
        return {};
    QStringList lines = QString::fromUtf8(file.readAll()).split(u'\n');
    if (!lines.isEmpty() && lines.last().isEmpty())
        lines.removeLast();
    return lines;
}

// A section of a golden file of sections, each headed "== name" and holding
// its lines verbatim (lines before the first head are notes); trailing empty
// lines of a section are dropped.
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
