#include "tables/StoreAside.h"

#include <QFile>
#include <QStringList>
#include <array>

namespace {
// A stale journal beside a new store would be replayed into it, so the
// companions go with the file.
const std::array<QString, 2> kCompanions{QStringLiteral("-wal"), QStringLiteral("-shm")};
constexpr int kMaxNameTries = 100;

QString freeAsideName(const QString& path, const QDateTime& when)
{
    const QString stamped = path + QLatin1Char('.') + when.toString(QStringLiteral("yyyyMMdd-HHmmss"));
    for (int n = 1; n <= kMaxNameTries; ++n) {
        const QString name = n == 1 ? stamped : stamped + QLatin1Char('-') + QString::number(n);
        bool taken = QFile::exists(name);
        for (const QString& companion : kCompanions)
            taken = taken || QFile::exists(name + companion);
        if (!taken)
            return name;
    }
    return {};
}
} // namespace

QString SetStoreAside(const QString& path, const QDateTime& when)
{
    const QString aside = freeAsideName(path, when);
    if (aside.isEmpty())
        return {};
    QStringList moved;
    const auto moveBack = [&] {
        for (const QString& companion : moved)
            QFile::rename(aside + companion, path + companion);
    };
    for (const QString& companion : kCompanions) {
        if (!QFile::exists(path + companion))
            continue;
        if (!QFile::rename(path + companion, aside + companion)) {
            moveBack();
            return {};
        }
        moved << companion;
    }
    if (!QFile::rename(path, aside)) {
        moveBack();
        return {};
    }
    return aside;
}
