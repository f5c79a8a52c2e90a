#include "pipeline/CommandLine.h"

#include <array>

namespace {
constexpr int kFieldCount = 6;
constexpr int kFlagCount = 7;

QString flagAsTrue(const QString& flags, int index)
{
    return flags.mid(index, 1) == QLatin1String("1") ? QStringLiteral("true") : QStringLiteral("fals");
}

QString printCodeOfFlag(const QString& flag)
{
    if (flag == QLatin1String("1"))
        return QStringLiteral("true N");
    if (flag == QLatin1String("2"))
        return QStringLiteral("true A");
    return QStringLiteral("fals");
}
} // namespace

CommandLineFields readcoman(const QString& commandLine)
{
    std::array<QString, kFieldCount> field;
    if (commandLine.isEmpty())
        return {};
    int current = 0;
    bool reached[kFieldCount] = {true, false, false, false, false, false};
    for (const QChar ch : commandLine) {
        const bool separator = ch == QLatin1Char(',') || ch == QLatin1Char(' ');
        if (separator && current < kFieldCount - 1) {
            ++current;
            reached[current] = true;
            continue;
        }
        field[current].append(ch);
    }
    for (int i = 0; i < kFieldCount; ++i) {
        if (reached[i] && field[i].isEmpty())
            field[i] = QStringLiteral("e");
    }
    return {field[0], field[1], field[2], field[3], field[4], field[5]};
}

bool commandLineUsable(const CommandLineFields& f)
{
    return !f.port.isEmpty() && !f.baud.isEmpty() && !f.file.isEmpty() && !f.time.isEmpty()
        && !f.ecrt.isEmpty() && f.flags.size() >= kFlagCount;
}

JobSettings commandLineSettings(const CommandLineFields& f)
{
    JobSettings s;
    s.file = f.file;
    s.time = f.time;
    s.ecrt = f.ecrt;
    s.multiType = QStringLiteral("fals");
    s.location = QString();
    s.code = QStringLiteral("true");
    s.printCode = printCodeOfFlag(f.flags.mid(0, 1));
    s.printDesc = flagAsTrue(f.flags, 1);
    s.comments = flagAsTrue(f.flags, 2);
    s.currency = f.flags.mid(3, 1);
    s.keybOff = flagAsTrue(f.flags, 4);
    s.dirDepa = flagAsTrue(f.flags, 5);
    s.quantity = flagAsTrue(f.flags, 6);
    return s;
}

bool commandLineStartsBatch(const QString& commandLine)
{
    return commandLine.endsWith(QLatin1Char('`'));
}
