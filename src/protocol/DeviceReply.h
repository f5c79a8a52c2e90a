#pragma once

#include <QString>
#include <QStringList>
#include <QtGlobal>

// What became of a command, for callers that must tell the cases apart (a
// card refused by the register, a terminal still busy, a register gone).
enum class ReplyOutcome {
    Success,  // status 0
    Refused,  // the register refused the command: its device code, or 255 for a fault
    Busy,     // the register is busy or waits (the statuses of the device-wait window)
    LinkLost, // nothing answers on the line: no port, ENQ unanswered, the connection gone
    NoReply,  // the command went out and no reply came back in time
};

// One reply of the register, read once. It carries the status and the text
// that SendCommand hands back (the reply itself on success, the register's
// message otherwise) and the reply's fields by position: 0 the device code,
// 1 and 2 the status bytes, the data from 3 on. Fields are read from the reply
// as it came, whatever the status; readers look at them only when ok().
class DeviceReply {
public:
    // A reply as the register sent it, frame bytes removed: decoded here.
    static DeviceReply decode(const QString& received, bool ignoreOperatorBusy);
    // A failure of the link itself, with the message the operator is to see.
    static DeviceReply linkFailure(qint16 status, const QString& message, ReplyOutcome outcome);
    // A status and a text as SendCommand's callers hold them; the fields are
    // read from the text.
    static DeviceReply fromStatusAndText(qint16 status, const QString& text);

    qint16 status() const { return status_; }
    const QString& text() const { return text_; }
    ReplyOutcome outcome() const { return outcome_; }
    bool ok() const { return status_ == 0; }

    // The device code and the two status bytes; -1 when not two hexadecimal digits.
    int deviceCode() const { return hexField(0); }
    int statusByte1() const { return hexField(1); }
    int statusByte2() const { return hexField(2); }
    // bit 0 is the least significant; false when the byte cannot be read.
    bool statusBitSet(int statusByte, int bit) const;

    qsizetype fieldCount() const { return fields_.size(); }
    // The field at index, empty when the reply has no such field.
    QString field(qsizetype index) const { return fields_.value(index); }
    // A reply closes with "/", so its last data field is the last field but one.
    QString lastButOneField() const { return field(fields_.size() - 2); }

private:
    DeviceReply(qint16 status, QString text, ReplyOutcome outcome, const QString& received);
    int hexField(qsizetype index) const;

    qint16 status_ = 0;
    QString text_;
    ReplyOutcome outcome_ = ReplyOutcome::NoReply;
    QStringList fields_;
};

// The outcome a status stands for when nothing else is known of it.
ReplyOutcome OutcomeOfStatus(qint16 status);
