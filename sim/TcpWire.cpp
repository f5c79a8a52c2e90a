#include "TcpWire.h"

#include "SimRegister.h"

QByteArray TcpWire::cleaned(const QByteArray& bytes)
{
    QByteArray text = bytes;
    for (char c : {'\x02', '\x03', '\x05', '\x06', '\x15'})
        text.replace(QByteArray(1, c), QByteArray());
    return text.trimmed();
}

std::vector<WireChunk> TcpWire::receive(const QByteArray& bytes, qint64 nowMs)
{
    held_ += bytes;
    lastByteMs_ = nowMs;
    if (!reg_.isWholeCommand(cleaned(held_)))
        return {};
    const QByteArray whole = held_;
    held_.clear();
    return command(whole);
}

qint64 TcpWire::quietDeadlineMs() const { return held_.isEmpty() ? -1 : lastByteMs_ + kQuietMs; }

std::vector<WireChunk> TcpWire::whenQuiet(qint64 nowMs)
{
    if (held_.isEmpty() || nowMs < quietDeadlineMs())
        return {};
    const QByteArray held = held_;
    held_.clear();
    return command(held);
}

std::vector<WireChunk> TcpWire::command(const QByteArray& bytes)
{
    std::vector<WireChunk> out;
    const QByteArray text = cleaned(bytes);
    if (text.isEmpty())
        return out;
    const SimRegister::Response r = reg_.handle(text);
    if (r.reply.isEmpty()) {
        if (r.drop)
            out.push_back({r.delayMs, QByteArray(), true});
        return out;
    }
    if (r.splitAt >= 0) {
        out.push_back({r.delayMs, r.reply.left(r.splitAt), false});
        out.push_back({r.delayMs + r.splitMs, r.reply.mid(r.splitAt), r.drop});
    } else {
        out.push_back({r.delayMs, r.reply, r.drop});
    }
    return out;
}
