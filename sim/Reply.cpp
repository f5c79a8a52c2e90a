#include "Reply.h"

namespace {
QString hexByte(int value) { return QStringLiteral("%1").arg(value, 2, 16, QLatin1Char('0')).toUpper(); }
} // namespace

Reply::Reply(int code, const QStringList& data)
    : code_(code)
    , data_(data)
{
}

Reply Reply::ok(const QStringList& data) { return Reply(0, data); }

Reply Reply::refuse(int code) { return Reply(code, {}); }

Reply& Reply::withStatus(int byte1, int byte2)
{
    status1_ |= byte1;
    status2_ |= byte2;
    return *this;
}

QString Reply::text() const
{
    QString r = hexByte(code_) + QLatin1Char('/') + hexByte(status1_) + QLatin1Char('/') + hexByte(status2_) +
                QLatin1Char('/');
    for (const QString& d : data_)
        r += d + QLatin1Char('/');
    return r;
}
