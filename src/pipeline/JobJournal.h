#pragma once

#include "link/CommandTrail.h"

#include <QByteArray>
#include <QString>
#include <QStringList>
#include <optional>

// What the register's counters said at one moment: the daily receipt number
// ("9/") and the progressive one (the day's base from "i/" plus the daily).
struct RegisterCounters {
    QString registerName; // the identification, as "[<model><number>]" in DeviceLabel
    std::optional<qint32> daily;
    std::optional<qint32> progressive;
};

// One job as the journal knows it.
struct JournalJob {
    qint64 id = 0;
    QString printPath;
    QByteArray printHash; // hex SHA-256 of the print file's bytes
    QString resultPath;
    RegisterCounters before; // as last seen on this register, when known
    QStringList sent;        // commands handed to the register, in order
    QStringList confirmed;   // commands the register confirmed, in order
    bool cardSent = false;   // a card payment went out
    bool resultClosed = false;
    qint64 closedAtMs = 0; // when the result file got its exitcode line
};

// The job journal: an append-only file in the program's directory, one
// record a line; the start of a job, its payments and voids, the closing of
// its result file and its end are forced to disk before what they announce
// happens. It tells the next life whether the last job ended, and if not, what it
// had done, so that the job is reconciled with the register rather than
// printed again blindly. A record cut short by a crash is ignored. One file a
// port, as one kerbano holds a port.
class JobJournal final : public CommandTrail {
public:
    explicit JobJournal(QString directory);

    // The journal of the register behind port (param.ini's or the command line's).
    void useFor(const QString& port);
    QString path() const { return path_; }

    // The last job of this port, when it never ended.
    std::optional<JournalJob> unfinished() const;
    // The counters at the end of the last job that ended (or was reconciled).
    RegisterCounters lastSeen() const;

    // A job begins; nothing of it has gone to the register yet.
    void begin(const QString& printPath, const QString& resultPath, const RegisterCounters& before);
    bool inJob() const { return jobId_ != 0; }
    // A payment of the job in hand went out and the register did not confirm
    // the last one: the receipt may still be open.
    bool paymentInDoubt() const { return inJob() && paymentsSent_ > paymentsConfirmed_; }
    void sending(const QString& command, bool cardCommand) override;
    void confirmed(const QString& command) override;
    // The result file has its exitcode line.
    void resultClosed();
    // The job is over: how, and the counters the register gave at its end.
    void end(const QString& how, const RegisterCounters& after);
    // An unfinished job of an earlier life is settled.
    void settle(qint64 id, const QString& how, const RegisterCounters& seen);

    static QByteArray hashOf(const QString& path);

private:
    // durable: on the disk before the call returns.
    bool append(const QByteArray& record, bool durable = true);
    void compactWhenLarge();

    QString directory_;
    QString path_;
    qint64 jobId_ = 0;
    int paymentsSent_ = 0;
    int paymentsConfirmed_ = 0;
};
