#include "EcrModel.h"

namespace {
constexpr int kDocumentOpenBit = 0x10; // status byte 2
} // namespace

EcrModel::EcrModel(RegisterMemory& memory)
    : m_(memory)
    , cards_(memory)
    , document_(memory, cards_)
    , tables_(memory, document_)
    , receipt_(memory, document_, tables_, cards_)
    , reports_(memory, document_)
    , programming_(memory)
{
    receipt_.enrol(commands_);
    tables_.enrol(commands_);
    reports_.enrol(commands_);
    cards_.enrol(commands_);
    programming_.enrol(commands_);
    control_.enrol(commands_);
}

EcrModel::Outcome EcrModel::execute(const QString& command, const QDateTime& now)
{
    Command c;
    c.fields = command.trimmed().split(QLatin1Char('/'));
    c.now = now;
    Reply reply = commands_.run(c);
    // Every reply, a refusal too, tells whether something is open after the command.
    reply.withStatus(0, document_.anythingOpen() ? kDocumentOpenBit : 0);
    return Outcome{reply, c.printed, c.replyAfterMs};
}
