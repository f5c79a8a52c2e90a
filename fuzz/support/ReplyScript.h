#pragma once

#include "protocol/DeviceReply.h"
#include "shell/CodePage.h"

#include "ScriptedLink.h"

#include <QByteArray>
#include <QList>

// The register's side of a fuzzed conversation: one reply a line (LF), as the
// register sends it in Windows-1253, handed out in the order the commands go.
// Each reply is decoded as the link decodes it; an empty line is a register
// that stays silent. Once the script runs out every command succeeds with an
// empty reply, as the scripted link of the tests answers.
class ReplyScript {
public:
    explicit ReplyScript(const QByteArray& bytes)
    {
        if (!bytes.isEmpty())
            lines_ = bytes.split('\n');
    }

    ScriptedLink::Answer next()
    {
        if (next_ >= lines_.size())
            return {};
        const QByteArray line = lines_.at(next_++);
        if (line.isEmpty())
            return {kNoReply, QString()};
        const DeviceReply reply = DeviceReply::decode(codepage::fromWin1253(line), false);
        return {reply.status(), reply.text()};
    }

    // Lets link answer every command from this script.
    void answer(ScriptedLink& link)
    {
        link.responder = [this](const QString&, ScriptedLink::Answer& a) {
            a = next();
            return true;
        };
    }

private:
    static constexpr qint16 kNoReply = -4;
    QList<QByteArray> lines_;
    qsizetype next_ = 0;
};

// The input of a conversation target: what stands before the first NUL byte,
// and the replies behind it.
struct SplitInput {
    QByteArray head;
    QByteArray replies;

    explicit SplitInput(const QByteArray& bytes)
    {
        const qsizetype nul = bytes.indexOf('\0');
        head = nul < 0 ? bytes : bytes.left(nul);
        replies = nul < 0 ? QByteArray() : bytes.mid(nul + 1);
    }
};
