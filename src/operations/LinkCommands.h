#pragma once

#include <QString>
#include <QStringList>

// The commands the link sends on its own account: identification, status
// polls, the edition probe on table 290 and the freeing of the register.
// Every other command is built beside these, in the operations folder.
namespace linkcmd {

// The table the edition probe programs and opens.
inline constexpr int kProbeTable = 290;
// The program's version as the register's table title shows it.
inline constexpr int kTitleMajorVersion = 11;
inline constexpr int kTitleMinorVersion = 12;

inline QString StatusProbe() { return QStringLiteral("?/"); }
inline QString SerialQuery() { return QStringLiteral("a/"); }
inline QString VersionQuery() { return QStringLiteral("v/"); }

// Gives table 290 the program's name and version as its first title and
// leaves the second empty: "/0/290/1/Kerbano V11.12//
inline QString ProbeTableTitle()
{
    return QStringLiteral("\"/0/") + QString::number(kProbeTable) + QStringLiteral("/1/Kerbano V")
        + QString::number(kTitleMajorVersion) + QLatin1Char('.')
        + QString::number(kTitleMinorVersion) + QStringLiteral("//");
}

// Opens a table: fourteen slashes after the number.
inline QString OpenTable(int table)
{
    return QStringLiteral("&/0/") + QString::number(table) + QStringLiteral("//////////////");
}

// Closes whatever is open on the register with a payment of zero.
inline QString ZeroPayment() { return QStringLiteral("5/1/0.00////"); }

// Sent in this order when the zero payment answers 70.
inline QStringList ReleaseSequence()
{
    return {QStringLiteral(")/15/"), QStringLiteral(")/71/"), QStringLiteral(")/15/"),
            QStringLiteral(")/15/")};
}

} // namespace linkcmd
