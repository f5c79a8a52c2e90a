#include "SerialWire.h"

#include "SimRegister.h"

int SerialWire::checkDigits(const QByteArray& text)
{
    int sum = 0;
    for (char ch : text.trimmed())
        sum = (sum + static_cast<unsigned char>(ch)) % 256;
    return sum % 100;
}

std::vector<WireChunk> SerialWire::receive(const QByteArray& bytes)
{
    std::vector<WireChunk> out;
    int taken = 0;
    for (char ch : bytes) {
        ++taken;
        const std::size_t answersBefore = out.size();
        if (ch == kEnq) {
            inFrame_ = false; // a new ENQ abandons a half frame
            if (reg_.answerEnq())
                out.push_back({0, QByteArray(1, kAck), false});
        } else if (ch == kStx) {
            inFrame_ = true;
            frame_.clear();
        } else if (!inFrame_) {
            if (ch == kAck)
                ++acks_;
            // anything else between frames is line noise
        } else if (ch == kEtx) {
            inFrame_ = false;
            frameEnded(out);
        } else if (frame_.size() >= kMaxFrameBytes) {
            inFrame_ = false;
            reg_.noteBadFrame(frame_.left(64));
            out.push_back({0, QByteArray(1, kNack), false});
        } else {
            frame_.append(ch);
        }
        // An answer notes how much of the read was in when it was given.
        for (std::size_t i = answersBefore; i < out.size(); ++i)
            out[i].inputBytes = taken;
    }
    return out;
}

void SerialWire::frameEnded(std::vector<WireChunk>& out)
{
    const QByteArray digits = frame_.right(2);
    const QByteArray text = frame_.left(frame_.size() - 2);
    bool ok = frame_.size() >= 2 && std::isdigit(static_cast<unsigned char>(digits[0])) &&
              std::isdigit(static_cast<unsigned char>(digits[1]));
    if (ok)
        ok = digits.toInt() == checkDigits(text);
    if (!ok) {
        reg_.noteBadFrame(frame_);
        out.push_back({0, QByteArray(1, kNack), false});
        return;
    }
    const SimRegister::Response r = reg_.handle(text);
    if (r.nack) {
        out.push_back({r.delayMs, QByteArray(1, kNack), false});
        return;
    }
    if (r.reply.isEmpty())
        return;
    const QByteArray framed = QByteArray(1, kStx) + r.reply + QByteArray(1, kEtx);
    if (r.splitAt >= 0) {
        const int cut = r.splitAt + 1;
        out.push_back({r.delayMs, framed.left(cut), false});
        out.push_back({r.delayMs + r.splitMs, framed.mid(cut), false});
    } else {
        out.push_back({r.delayMs, framed, false});
    }
}
