#include "reports/ZFile.h"

#include "link/DeviceLink.h"
#include "records/ReceiptState.h"
#include "shell/CodePage.h"
#include "shell/ProgressIndicator.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <cmath>

namespace {
const QString kZFilesFolder = QStringLiteral("Zfiles");
const QString kLineEnd = QStringLiteral("\r\n");
const QString kFolderFailed = QStringLiteral("Ο φάκελος %1 δεν μπορεί να δημιουργηθεί.");
const QString kFileFailed = QStringLiteral("Το αρχείο %1 δεν μπορεί να γραφτεί (%2).");
const QString kUnreadableFigure = QStringLiteral("Η ταμειακή έδωσε συντελεστή ΦΠΑ που δεν διαβάζεται.");
} // namespace

ZFile::ZFile(DeviceLink& link, ReceiptState& receipt, clsind& progress, QString programDirectory,
             QLocale locale)
    : link_(link)
    , receipt_(receipt)
    , progress_(progress)
    , programDirectory_(std::move(programDirectory))
    , locale_(std::move(locale))
{
}

// One quiet raw query, its status and text left where the operations leave them.
template <typename Query>
auto ZFile::ask(const Query& query)
{
    const DeviceReply reply = link_.send(query.command(), {.quiet = true});
    receipt_.LastStatus = reply.status();
    receipt_.LastReply = reply.text();
    return query.read(reply);
}

int ZFile::fail(Fault fault, const QString& failure)
{
    fault_ = fault;
    failure_ = failure;
    return 0;
}

int ZFile::BuildZFile()
{
    fault_ = Fault::None;
    failure_.clear();
    progress_.setMax(kProgressMax);
    progress_.setValue(0);

    ZFigures figures;
    if (!readFigures(figures))
        return fail(Fault::Query);
    for (int i = 0; i < zfile::kVatCategories; ++i) {
        if (!std::isfinite(ZFileNet(figures.gross[i], figures.rates[i])))
            return fail(Fault::Query, kUnreadableFigure);
    }
    return write(ZFileLines(figures, locale_)) ? -1 : 0;
}

bool ZFile::readFigures(ZFigures& f)
{
    qint16 step = 0;
    const auto advance = [&] { progress_.setValue(++step); };

    const auto rates = ask(zfile::VatRatesQuery{locale_});
    if (!rates)
        return false;
    f.rates = *rates;
    advance();

    const auto day = ask(zfile::DayFiguresQuery{locale_});
    if (!day)
        return false;
    f.gross = day->gross;
    f.total = day->total;
    f.firstCounter = day->firstCounter;
    f.secondCounter = day->secondCounter;
    f.voids = day->voids;
    f.returns = day->returns;
    f.corrections = day->corrections;
    advance();

    const auto lastZ = ask(zfile::LastZQuery{});
    if (!lastZ)
        return false;
    f.zNumber = lastZ->number;
    zFileNumber_ = lastZ->text;
    path_ = QDir(programDirectory_).filePath(kZFilesFolder + u'/' + ZFileName(lastZ->number));
    advance();

    const auto stamp = ask(zfile::ZStampQuery{});
    if (!stamp)
        return false;
    f.date = stamp->date;
    f.time = stamp->time;
    advance();

    for (int n = 1; n <= ZFigures::kDepartments; ++n) {
        const auto department = ask(zfile::DepartmentTotalsQuery{n, locale_});
        if (!department)
            return false;
        f.departments[n] = {department->name, department->count, department->amount, department->vatIndex};
        advance();
    }

    const auto identity = ask(zfile::PosIdentityQuery{});
    if (!identity)
        return false;
    f.serial = identity->serial;
    f.posNumber = identity->posNumber;

    const auto closing = ask(zfile::DayStatusQuery{});
    if (!closing)
        return false;
    f.closingText = *closing;
    progress_.setValue(kProgressMax);
    return true;
}

bool ZFile::write(const QStringList& lines)
{
    // An existing folder is no error; only a folder that is not there after it counts.
    QDir(programDirectory_).mkdir(kZFilesFolder);
    const QString folder = QDir(programDirectory_).filePath(kZFilesFolder);
    if (!QFileInfo(folder).isDir()) {
        fail(Fault::Folder, kFolderFailed.arg(QDir::toNativeSeparators(folder)));
        return false;
    }

    QFile file(path_);
    if (!file.open(QIODevice::WriteOnly | QIODevice::Append)) {
        fail(Fault::File, kFileFailed.arg(QDir::toNativeSeparators(path_), file.errorString()));
        return false;
    }
    const qint64 before = file.size();
    const QByteArray bytes = codepage::toWin1253(lines.join(kLineEnd) + kLineEnd);
    const bool whole = file.write(bytes) == bytes.size() && file.flush();
    if (!whole) {
        const QString reason = file.errorString();
        // Take back a part copy, so what stands in the file is whole copies only.
        file.resize(before);
        fail(Fault::File, kFileFailed.arg(QDir::toNativeSeparators(path_), reason));
        return false;
    }
    return true;
}
