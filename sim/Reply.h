#pragma once

#include <QString>
#include <QStringList>

// One reply of the register: device code, the two status bytes, then the data
// fields, each closed by "/". Codes and status bytes go out as two upper-case
// hexadecimal digits.
class Reply {
public:
    static Reply ok(const QStringList& data = {});
    static Reply refuse(int code);

    bool isOk() const { return code_ == 0; }
    int code() const { return code_; }
    const QStringList& data() const { return data_; }

    // Sets bits in the status bytes; set bits stay set.
    Reply& withStatus(int byte1, int byte2);

    QString text() const;

private:
    Reply(int code, const QStringList& data);

    int code_ = 0;
    int status1_ = 0;
    int status2_ = 0;
    QStringList data_;
};
