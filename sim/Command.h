#pragma once

#include <QDateTime>
#include <QStringList>

// One command in hand: its fields split at "/" (the code is field 0), the
// register's clock when it arrived, and what it put on paper.
struct Command {
    QStringList fields;
    QDateTime now;
    QStringList printed;
    int replyAfterMs = 0; // the answer waits on something, a slow card terminal

    QString field(int i) const { return fields.value(i); }
    int fieldCount() const { return static_cast<int>(fields.size()); }
};
