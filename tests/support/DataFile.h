#pragma once

#include <QFile>
#include <QStringList>

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
