#include "tables/OrderStoreFault.h"

#include <QSqlError>

namespace {
// SQLite's primary result codes; the extended codes keep them in the low byte.
constexpr int kSqlitePerm = 3;
constexpr int kSqliteBusy = 5;
constexpr int kSqliteLocked = 6;
constexpr int kSqliteReadOnly = 8;
constexpr int kSqliteCorrupt = 11;
constexpr int kSqliteCantOpen = 14;
constexpr int kSqliteNotADatabase = 26;
constexpr int kPrimaryCodeMask = 0xff;
} // namespace

OrderStoreFault ClassifyStoreError(const QSqlError& error)
{
    bool ok = false;
    const int code = error.nativeErrorCode().toInt(&ok) & kPrimaryCodeMask;
    if (!ok)
        return OrderStoreFault::Failed;
    switch (code) {
    case kSqliteBusy:
    case kSqliteLocked:
        return OrderStoreFault::Locked;
    case kSqlitePerm:
    case kSqliteReadOnly:
    case kSqliteCantOpen:
        return OrderStoreFault::ReadOnly;
    case kSqliteCorrupt:
    case kSqliteNotADatabase:
        return OrderStoreFault::Unreadable;
    default:
        return OrderStoreFault::Failed;
    }
}

QString OrderStoreFaultText(OrderStoreFault fault, const QString& path, const QString& detail)
{
    switch (fault) {
    case OrderStoreFault::None:
        return {};
    case OrderStoreFault::NoStore:
        return QStringLiteral("Δεν υπάρχει αρχείο παραγγελιών %1").arg(path);
    case OrderStoreFault::CannotCreate:
        return QStringLiteral("Αδύνατη η δημιουργία του αρχείου παραγγελιών %1 (%2)")
            .arg(path, detail);
    case OrderStoreFault::Locked:
        return QStringLiteral("Το αρχείο παραγγελιών %1 είναι κλειδωμένο από άλλο πρόγραμμα")
            .arg(path);
    case OrderStoreFault::ReadOnly:
        return QStringLiteral("Το αρχείο παραγγελιών %1 ή ο φάκελός του δεν δέχεται εγγραφή")
            .arg(path);
    case OrderStoreFault::SetAside:
        return QStringLiteral("Το αρχείο παραγγελιών %1 ήταν κατεστραμμένο. Φυλάχτηκε ως %2 "
                              "και ξεκινά νέο αρχείο")
            .arg(path, detail);
    case OrderStoreFault::Unreadable:
        return QStringLiteral("Το αρχείο παραγγελιών %1 είναι κατεστραμμένο και δεν μπόρεσε να "
                              "φυλαχτεί με άλλο όνομα")
            .arg(path);
    case OrderStoreFault::Failed:
        break;
    }
    return QStringLiteral("Σφάλμα στο αρχείο παραγγελιών %1: %2").arg(path, detail);
}
