#include "pipeline/JobJournal.h"

#include "protocol/DeviceCommands.h"

#include <QCryptographicHash>
#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonDocument>
#include <QJsonObject>
#include <QSaveFile>

#ifdef Q_OS_WIN
#include <io.h>
#else
#include <unistd.h>
#endif

namespace {
const QString kFilePrefix = QStringLiteral("kerbanoJobs-");
const QString kFileSuffix = QStringLiteral(".journal");
// Past this size the journal is cut back to its last record when a job ends.
constexpr qint64 kCompactBytes = 256 * 1024;

// The commands that may change what the register holds: sales, discounts,
// payments (card ones included), comments, pre-collections, voids, tables.
// Questions leave no trace.
bool changesRegister(const QString& command)
{
    static const char* const kPrefixes[] = {"3/", "4/", "5/", "6/", "7/", "+/", "&/", "\"/"};
    if (command == DeviceCommands::EftOutcomeQuery())
        return false;
    for (const char* prefix : kPrefixes) {
        if (command.startsWith(QLatin1String(prefix)))
            return true;
    }
    return false;
}

bool isPayment(const QString& command)
{
    return command.startsWith(QLatin1String("5/"));
}

QString portFileName(const QString& port)
{
    QString name;
    for (const QChar c : port)
        name += c.isLetterOrNumber() ? c : QLatin1Char('_');
    return kFilePrefix + (name.isEmpty() ? QStringLiteral("none") : name) + kFileSuffix;
}

void putCounters(QJsonObject& o, const RegisterCounters& c)
{
    o[QStringLiteral("register")] = c.registerName;
    if (c.daily)
        o[QStringLiteral("daily")] = *c.daily;
    if (c.progressive)
        o[QStringLiteral("progressive")] = *c.progressive;
}

RegisterCounters countersOf(const QJsonObject& o)
{
    RegisterCounters c;
    c.registerName = o.value(QStringLiteral("register")).toString();
    if (o.contains(QStringLiteral("daily")))
        c.daily = o.value(QStringLiteral("daily")).toInt();
    if (o.contains(QStringLiteral("progressive")))
        c.progressive = o.value(QStringLiteral("progressive")).toInt();
    return c;
}

QList<QJsonObject> readRecords(const QString& path)
{
    QList<QJsonObject> records;
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return records;
    const QList<QByteArray> lines = file.readAll().split('\n');
    for (const QByteArray& line : lines) {
        // A line cut short by a crash is no object: it is left out.
        const QJsonDocument doc = QJsonDocument::fromJson(line);
        if (doc.isObject())
            records << doc.object();
    }
    return records;
}

bool syncToDisk(QFile& file)
{
    if (!file.flush())
        return false;
#ifdef Q_OS_WIN
    return _commit(file.handle()) == 0;
#else
    return ::fsync(file.handle()) == 0;
#endif
}

QString kindOf(const QJsonObject& o)
{
    return o.value(QStringLiteral("job")).toString();
}

qint64 idOf(const QJsonObject& o)
{
    return o.value(QStringLiteral("id")).toInteger();
}
} // namespace

JobJournal::JobJournal(QString directory)
    : directory_(std::move(directory))
{
}

void JobJournal::useFor(const QString& port)
{
    const QString path = QDir(directory_).filePath(portFileName(port));
    if (path == path_)
        return;
    path_ = path;
    jobId_ = 0;
}

QByteArray JobJournal::hashOf(const QString& path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return {};
    QCryptographicHash hash(QCryptographicHash::Sha256);
    hash.addData(&file);
    return hash.result().toHex();
}

std::optional<JournalJob> JobJournal::unfinished() const
{
    std::optional<JournalJob> job;
    for (const QJsonObject& o : readRecords(path_)) {
        const QString kind = kindOf(o);
        if (kind == QLatin1String("begin")) {
            job = JournalJob{};
            job->id = idOf(o);
            job->printPath = o.value(QStringLiteral("print")).toString();
            job->printHash = o.value(QStringLiteral("hash")).toString().toLatin1();
            job->resultPath = o.value(QStringLiteral("result")).toString();
            job->before = countersOf(o);
            continue;
        }
        if (!job || idOf(o) != job->id)
            continue;
        const QString command = o.value(QStringLiteral("command")).toString();
        if (kind == QLatin1String("send")) {
            job->sent << command;
            job->cardSent = job->cardSent || o.value(QStringLiteral("card")).toBool();
        } else if (kind == QLatin1String("ok")) {
            job->confirmed << command;
        } else if (kind == QLatin1String("closed")) {
            job->resultClosed = true;
            job->closedAtMs = o.value(QStringLiteral("at")).toInteger();
        } else if (kind == QLatin1String("end")) {
            job.reset();
        }
    }
    return job;
}

RegisterCounters JobJournal::lastSeen() const
{
    RegisterCounters seen;
    for (const QJsonObject& o : readRecords(path_)) {
        if (kindOf(o) == QLatin1String("end"))
            seen = countersOf(o);
    }
    return seen;
}

void JobJournal::begin(const QString& printPath, const QString& resultPath, const RegisterCounters& before)
{
    qint64 last = 0;
    for (const QJsonObject& o : readRecords(path_))
        last = qMax(last, idOf(o));
    jobId_ = last + 1;
    paymentsSent_ = paymentsConfirmed_ = 0;
    QJsonObject o{{QStringLiteral("job"), QStringLiteral("begin")},
                  {QStringLiteral("id"), jobId_},
                  {QStringLiteral("print"), QFileInfo(printPath).absoluteFilePath()},
                  {QStringLiteral("hash"), QString::fromLatin1(hashOf(printPath))},
                  {QStringLiteral("result"), resultPath}};
    putCounters(o, before);
    append(QJsonDocument(o).toJson(QJsonDocument::Compact));
}

void JobJournal::sending(const QString& command, bool cardCommand)
{
    if (!inJob() || !changesRegister(command))
        return;
    QJsonObject o{{QStringLiteral("job"), QStringLiteral("send")},
                  {QStringLiteral("id"), jobId_},
                  {QStringLiteral("command"), command}};
    if (cardCommand)
        o[QStringLiteral("card")] = true;
    if (isPayment(command))
        ++paymentsSent_;
    // What recovery decides by must be on the disk before the register sees
    // it: a payment (it may close the receipt), a card command, a void. A
    // sale's record reaches the disk with the next of those.
    const bool decisive = isPayment(command) || cardCommand || command == DeviceCommands::VoidDocument();
    append(QJsonDocument(o).toJson(QJsonDocument::Compact), decisive);
}

void JobJournal::confirmed(const QString& command)
{
    if (!inJob() || !changesRegister(command))
        return;
    if (isPayment(command))
        paymentsConfirmed_ = paymentsSent_;
    // Not forced to disk on its own: the next record is, and a confirmation
    // lost with the machine only leaves the command in doubt, which the
    // register's figures settle.
    append(QJsonDocument(QJsonObject{{QStringLiteral("job"), QStringLiteral("ok")},
                                     {QStringLiteral("id"), jobId_},
                                     {QStringLiteral("command"), command}})
               .toJson(QJsonDocument::Compact),
           false);
}

void JobJournal::resultClosed()
{
    if (!inJob())
        return;
    append(QJsonDocument(QJsonObject{{QStringLiteral("job"), QStringLiteral("closed")},
                                     {QStringLiteral("id"), jobId_},
                                     {QStringLiteral("at"), QDateTime::currentMSecsSinceEpoch()}})
               .toJson(QJsonDocument::Compact));
}

void JobJournal::end(const QString& how, const RegisterCounters& after)
{
    if (!inJob())
        return;
    settle(jobId_, how, after);
    jobId_ = 0;
}

void JobJournal::settle(qint64 id, const QString& how, const RegisterCounters& seen)
{
    QJsonObject o{{QStringLiteral("job"), QStringLiteral("end")},
                  {QStringLiteral("id"), id},
                  {QStringLiteral("how"), how}};
    putCounters(o, seen);
    const QByteArray record = QJsonDocument(o).toJson(QJsonDocument::Compact);
    append(record);
    compactWhenLarge();
}

bool JobJournal::append(const QByteArray& record, bool durable)
{
    if (path_.isEmpty())
        return false;
    QFile file(path_);
    if (!file.open(QIODevice::ReadWrite | QIODevice::Append))
        return false;
    // A line of its own even behind a record a crash cut short.
    QByteArray line = record + '\n';
    if (file.size() > 0 && file.seek(file.size() - 1) && file.read(1) != "\n")
        line.prepend('\n');
    return file.write(line) == line.size() && (!durable || syncToDisk(file));
}

// Only the last record matters once every job has ended: it carries the counters.
void JobJournal::compactWhenLarge()
{
    if (QFileInfo(path_).size() < kCompactBytes)
        return;
    const QList<QJsonObject> records = readRecords(path_);
    if (records.isEmpty())
        return;
    QSaveFile file(path_);
    if (!file.open(QIODevice::WriteOnly))
        return;
    file.write(QJsonDocument(records.last()).toJson(QJsonDocument::Compact) + '\n');
    file.commit();
}
