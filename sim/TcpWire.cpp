#include "TcpWire.h"

#include "SimRegister.h"

std::vector<WireChunk> TcpWire::command(const QByteArray& bytes)
{
    std::vector<WireChunk> out;
    QByteArray text = bytes;
    // Control bytes have no place on this wire; a terminal user's CR LF neither.
    for (char c : {'\x02', '\x03', '\x05', '\x06', '\x15'})
        text.replace(QByteArray(1, c), QByteArray());
    text = text.trimmed();
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
