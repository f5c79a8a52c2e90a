#include "FaultScript.h"

namespace {
constexpr int kBusyBit = 0x01;     // status byte 1, bit 0
constexpr int kPaperEndBit = 0x04; // status byte 1, bit 2
constexpr int kOperatorBit = 0x04; // status byte 2, bit 2
} // namespace

bool FaultScript::parse(const QString& text, QString* error)
{
    int lineNo = 0;
    for (QString line : text.split(QLatin1Char('\n'))) {
        ++lineNo;
        line = line.trimmed();
        if (line.isEmpty() || line.startsWith(QLatin1Char('#')))
            continue;
        if (line.startsWith(QLatin1String("card "))) {
            queuedCards_ << line.mid(5).trimmed();
            continue;
        }
        Rule r;
        QString rest;
        if (line.startsWith(QLatin1Char('/'))) {
            const int end = line.indexOf(QLatin1Char('/'), 1);
            int close = end;
            // the pattern may hold escaped slashes
            while (close > 0 && line.at(close - 1) == QLatin1Char('\\'))
                close = line.indexOf(QLatin1Char('/'), close + 1);
            if (close < 0) {
                if (error)
                    *error = QStringLiteral("line %1: unterminated pattern").arg(lineNo);
                return false;
            }
            r.pattern = QRegularExpression(line.mid(1, close - 1).replace(QLatin1String("\\/"), QLatin1String("/")));
            if (!r.pattern.isValid()) {
                if (error)
                    *error = QStringLiteral("line %1: %2").arg(lineNo).arg(r.pattern.errorString());
                return false;
            }
            rest = line.mid(close + 1).trimmed();
            if (rest.startsWith(QLatin1Char('x'))) {
                const int colon = rest.indexOf(QLatin1Char(':'));
                r.remaining = rest.mid(1, colon - 1).trimmed().toInt();
                rest = rest.mid(colon);
            }
        } else if (line.startsWith(QLatin1Char('*'))) {
            r.every = true;
            rest = line.mid(1).trimmed();
        } else {
            const int colon = line.indexOf(QLatin1Char(':'));
            bool ok = false;
            r.number = line.left(colon).trimmed().toInt(&ok);
            if (!ok || r.number < 1) {
                if (error)
                    *error = QStringLiteral("line %1: no selector").arg(lineNo);
                return false;
            }
            r.remaining = 1;
            rest = line.mid(colon);
        }
        if (!rest.startsWith(QLatin1Char(':'))) {
            if (error)
                *error = QStringLiteral("line %1: ':' expected").arg(lineNo);
            return false;
        }
        rest = rest.mid(1).trimmed();
        r.action = rest.section(QLatin1Char(' '), 0, 0).toLower();
        r.argument = rest.section(QLatin1Char(' '), 1).trimmed();
        static const QStringList known{QStringLiteral("code"),   QStringLiteral("status"), QStringLiteral("busy"),
                                       QStringLiteral("paperend"), QStringLiteral("operator"),
                                       QStringLiteral("silent"), QStringLiteral("lost"),   QStringLiteral("nack"),
                                       QStringLiteral("split"),  QStringLiteral("delay"),  QStringLiteral("drop"),
                                       QStringLiteral("noenq"),  QStringLiteral("card")};
        if (!known.contains(r.action)) {
            if (error)
                *error = QStringLiteral("line %1: unknown action '%2'").arg(lineNo).arg(r.action);
            return false;
        }
        rules_.push_back(r);
    }
    return true;
}

bool FaultScript::matches(Rule& r, int n, const QString& command) const
{
    if (r.remaining == 0)
        return false;
    if (r.number > 0)
        return r.number == n;
    if (r.every)
        return true;
    return r.pattern.match(command).hasMatch();
}

FaultEffect FaultScript::effectFor(int n, const QString& command)
{
    FaultEffect e;
    for (Rule& r : rules_) {
        if (r.action == QLatin1String("noenq") || !matches(r, n, command))
            continue;
        if (r.remaining > 0)
            --r.remaining;
        const QString& a = r.action;
        if (a == QLatin1String("code"))
            e.code = r.argument.toInt(nullptr, 16);
        else if (a == QLatin1String("status")) {
            e.status1 |= r.argument.section(QLatin1Char(' '), 0, 0).toInt(nullptr, 16);
            e.status2 |= r.argument.section(QLatin1Char(' '), 1, 1).toInt(nullptr, 16);
        } else if (a == QLatin1String("busy"))
            e.status1 |= kBusyBit;
        else if (a == QLatin1String("paperend"))
            e.status1 |= kPaperEndBit;
        else if (a == QLatin1String("operator"))
            e.status2 |= kOperatorBit;
        else if (a == QLatin1String("silent"))
            e.silent = true;
        else if (a == QLatin1String("lost"))
            e.lostReply = true;
        else if (a == QLatin1String("nack"))
            e.nack = true;
        else if (a == QLatin1String("split"))
            e.splitMs = r.argument.toInt();
        else if (a == QLatin1String("delay"))
            e.delayMs = r.argument.toInt();
        else if (a == QLatin1String("drop"))
            e.drop = true;
        else if (a == QLatin1String("card"))
            e.cards << r.argument;
    }
    return e;
}

bool FaultScript::swallowEnq(int n, const QString& lastCommand)
{
    for (Rule& r : rules_) {
        if (r.action != QLatin1String("noenq") || !matches(r, n, lastCommand))
            continue;
        if (r.remaining > 0)
            --r.remaining;
        return true;
    }
    return false;
}
