#include "FaultScript.h"

#include "RegisterMemory.h"

namespace {
constexpr int kBusyBit = 0x01;     // status byte 1, bit 0
constexpr int kPaperEndBit = 0x04; // status byte 1, bit 2
constexpr int kOperatorBit = 0x04; // status byte 2, bit 2

const QStringList kActions{QStringLiteral("code"),     QStringLiteral("status"), QStringLiteral("busy"),
                           QStringLiteral("paperend"), QStringLiteral("operator"), QStringLiteral("silent"),
                           QStringLiteral("lost"),     QStringLiteral("nack"),   QStringLiteral("split"),
                           QStringLiteral("delay"),    QStringLiteral("drop"),   QStringLiteral("noenq"),
                           QStringLiteral("card")};

// "" written in a script is an empty terminal text.
QString scriptText(const QString& text) { return text == QLatin1String("\"\"") ? QString() : text; }

// "<T|*> [xK|always]" of a terminal line.
bool parseTerminalSelector(const QStringList& words, TerminalRule& r, QString& why)
{
    if (words.size() < 2 || words.size() > 3) {
        why = QStringLiteral("'terminal <T|*> [xK|always] :' expected");
        return false;
    }
    const bool any = words[1] == QLatin1String("*");
    bool ok = true;
    r.terminal = any ? 0 : words[1].toInt(&ok);
    if (!any && (!ok || r.terminal < 1 || r.terminal > capacity::kTerminals)) {
        why = QStringLiteral("terminal 1 to %1 or * expected").arg(capacity::kTerminals);
        return false;
    }
    if (words.size() == 3) {
        if (words[2] == QLatin1String("always"))
            r.remaining = -1;
        else if (!words[2].startsWith(QLatin1Char('x')) || (r.remaining = words[2].mid(1).toInt()) < 1) {
            why = QStringLiteral("xK or always expected, not '%1'").arg(words[2]);
            return false;
        }
    }
    return true;
}

// "[wait S] approve [TEXT] | decline TEXT | busy | nocontact", or "online", "offline".
bool parseTerminalAnswer(QString answer, TerminalRule& r, bool counted, QString& why)
{
    QString word = answer.section(QLatin1Char(' '), 0, 0).toLower();
    if (word == QLatin1String("online") || word == QLatin1String("offline")) {
        r.kind = word == QLatin1String("online") ? TerminalRule::Online : TerminalRule::Offline;
        if (counted || r.terminal == 0 || answer.contains(QLatin1Char(' '))) {
            why = QStringLiteral("'%1' names one terminal and takes no count").arg(word);
            return false;
        }
        return true;
    }
    if (word == QLatin1String("wait")) {
        bool ok = false;
        r.outcome.waitSeconds = answer.section(QLatin1Char(' '), 1, 1, QString::SectionSkipEmpty).toInt(&ok);
        if (!ok || r.outcome.waitSeconds < 0) {
            why = QStringLiteral("wait takes seconds");
            return false;
        }
        answer = answer.section(QLatin1Char(' '), 2, -1, QString::SectionSkipEmpty);
        word = answer.section(QLatin1Char(' '), 0, 0).toLower();
    }
    const QString written = answer.section(QLatin1Char(' '), 1).trimmed();
    const int wait = r.outcome.waitSeconds;
    if (word.isEmpty() || word == QLatin1String("approve"))
        r.outcome = written.isEmpty() ? TerminalOutcome::approve() : TerminalOutcome::approve(scriptText(written));
    else if (word == QLatin1String("decline") && !written.isEmpty())
        r.outcome = TerminalOutcome::decline(scriptText(written));
    else if (word == QLatin1String("busy") && written.isEmpty())
        r.outcome = TerminalOutcome::decline(terminaltext::kBusy);
    else if (word == QLatin1String("nocontact") && written.isEmpty())
        r.outcome = TerminalOutcome::decline(terminaltext::kNoContact);
    else {
        why = QStringLiteral("unknown terminal answer '%1'").arg(answer);
        return false;
    }
    r.outcome.waitSeconds = wait;
    return true;
}

bool parseTerminalLine(const QString& line, TerminalRule& r, QString& why)
{
    const int colon = line.indexOf(QLatin1Char(':'));
    if (colon < 0) {
        why = QStringLiteral("':' expected");
        return false;
    }
    const QStringList words = line.left(colon).split(QLatin1Char(' '), Qt::SkipEmptyParts);
    return parseTerminalSelector(words, r, why) &&
           parseTerminalAnswer(line.mid(colon + 1).trimmed(), r, words.size() == 3, why);
}
} // namespace

bool FaultScript::parse(const QString& text, QString* error)
{
    int lineNo = 0;
    for (QString line : text.split(QLatin1Char('\n'))) {
        ++lineNo;
        line = line.trimmed();
        if (line.isEmpty() || line.startsWith(QLatin1Char('#')))
            continue;
        QString why;
        if (line.startsWith(QLatin1String("card "))) {
            TerminalRule r;
            r.outcome = TerminalOutcome::ofText(scriptText(line.mid(5).trimmed()));
            terminalRules_.push_back(r);
        } else if (line.startsWith(QLatin1String("terminal "))) {
            TerminalRule r;
            if (parseTerminalLine(line, r, why))
                terminalRules_.push_back(r);
        } else {
            Rule r;
            if (parseRule(line, r, why))
                rules_.push_back(r);
        }
        if (!why.isEmpty()) {
            if (error)
                *error = QStringLiteral("line %1: %2").arg(lineNo).arg(why);
            return false;
        }
    }
    return true;
}

bool FaultScript::parseRule(const QString& line, Rule& r, QString& why)
{
    QString rest;
    if (line.startsWith(QLatin1Char('/'))) {
        int close = line.indexOf(QLatin1Char('/'), 1);
        // the pattern may hold escaped slashes
        while (close > 0 && line.at(close - 1) == QLatin1Char('\\'))
            close = line.indexOf(QLatin1Char('/'), close + 1);
        if (close < 0) {
            why = QStringLiteral("unterminated pattern");
            return false;
        }
        r.pattern = QRegularExpression(line.mid(1, close - 1).replace(QLatin1String("\\/"), QLatin1String("/")));
        if (!r.pattern.isValid()) {
            why = r.pattern.errorString();
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
            why = QStringLiteral("no selector");
            return false;
        }
        r.remaining = 1;
        rest = line.mid(colon);
    }
    if (!rest.startsWith(QLatin1Char(':'))) {
        why = QStringLiteral("':' expected");
        return false;
    }
    rest = rest.mid(1).trimmed();
    r.action = rest.section(QLatin1Char(' '), 0, 0).toLower();
    r.argument = rest.section(QLatin1Char(' '), 1).trimmed();
    if (!kActions.contains(r.action)) {
        why = QStringLiteral("unknown action '%1'").arg(r.action);
        return false;
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
            e.cards << scriptText(r.argument);
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
