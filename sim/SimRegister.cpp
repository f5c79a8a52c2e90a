#include "SimRegister.h"

#include "DeviceCode.h"
#include "StateStore.h"
#include "Win1253.h"
#include "shell/Clock.h"

#include <QFile>

namespace {
constexpr int kMaxCommandBytes = 4096;

void appendUtf8(const QString& path, const QString& text)
{
    if (path.isEmpty())
        return;
    QFile f(path);
    if (f.open(QIODevice::WriteOnly | QIODevice::Append))
        f.write(text.toUtf8());
}
} // namespace

SimRegister::SimRegister(const Options& options, Clock& clock)
    : options_(options)
    , clock_(clock)
    , memory_(RegisterMemory::factory())
    , model_(memory_)
{
    if (!options_.stateDir.isEmpty())
        statestore::load(options_.stateDir, memory_, &lastError_);
    if (!options_.modelPrefix.isEmpty())
        memory_.modelPrefix = options_.modelPrefix;
    if (!options_.serialDigits.isEmpty())
        memory_.serialDigits = options_.serialDigits;
}

bool SimRegister::loadFaults(const QString& scriptText, QString* error)
{
    if (!faults_.parse(scriptText, error))
        return false;
    for (const TerminalRule& rule : faults_.terminalRules())
        model_.scriptTerminal(rule);
    return true;
}

bool SimRegister::answerEnq()
{
    return !faults_.swallowEnq(received_ + 1, lastCommand_);
}

SimRegister::Response SimRegister::handle(const QByteArray& raw)
{
    Response out;
    const int n = ++received_;
    QString command = win1253::decode(raw.left(kMaxCommandBytes));
    command.remove(QLatin1Char('\r')).remove(QLatin1Char('\n')).remove(QChar(0));
    lastCommand_ = command;
    const FaultEffect e = faults_.effectFor(n, command);
    out.drop = e.drop;
    if (e.silent) {
        journal(command, QStringLiteral("(silent)"));
        return out;
    }
    if (e.nack) {
        out.nack = true;
        journal(command, QStringLiteral("<NACK>"));
        return out;
    }
    for (const QString& card : e.cards)
        model_.answerNextCardFirst(card);

    int replyAfterMs = 0;
    const QString reply = answer(raw, command, e.code, replyAfterMs).withStatus(e.status1, e.status2).text();
    if (e.lostReply || e.drop) {
        journal(command, reply + (e.drop ? QStringLiteral(" (dropped)") : QStringLiteral(" (lost)")));
        return out;
    }
    journal(command, reply);
    out.reply = win1253::encode(reply);
    out.delayMs = e.delayMs + replyAfterMs;
    if (e.splitMs >= 0) {
        out.splitAt = static_cast<int>(out.reply.size() / 2);
        out.splitMs = e.splitMs;
    }
    return out;
}

bool SimRegister::isWholeCommand(const QByteArray& raw) const
{
    return raw.size() <= kMaxCommandBytes && model_.isWholeCommand(win1253::decode(raw));
}

Reply SimRegister::answer(const QByteArray& raw, const QString& command, int faultCode, int& replyAfterMs)
{
    if (raw.size() > kMaxCommandBytes)
        return Reply::refuse(devicecode::kFieldTooLong);
    if (faultCode >= 0)
        return Reply::refuse(faultCode);
    EcrModel::Outcome o = model_.execute(command, clock_.now());
    print(o.printed);
    persist();
    replyAfterMs = o.replyAfterMs;
    return o.reply;
}

void SimRegister::noteBadFrame(const QByteArray& frame)
{
    journal(win1253::decode(frame), QStringLiteral("<NACK> (check digits)"));
}

void SimRegister::journal(const QString& command, const QString& reply)
{
    appendUtf8(options_.journalPath, command + QStringLiteral(" -> ") + reply + QLatin1Char('\n'));
}

void SimRegister::print(const QStringList& lines)
{
    if (lines.isEmpty())
        return;
    appendUtf8(options_.tapePath, lines.join(QLatin1Char('\n')) + QLatin1Char('\n'));
}

void SimRegister::persist()
{
    if (options_.stateDir.isEmpty())
        return;
    // A query changes nothing: no write, no wait for the disk before the reply.
    QByteArray image = statestore::image(memory_);
    if (image == savedImage_)
        return;
    if (statestore::saveImage(options_.stateDir, image, &lastError_))
        savedImage_ = std::move(image);
    else
        qWarning("kerbano-ecr-sim: %s", qPrintable(lastError_));
}
