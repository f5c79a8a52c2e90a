// The order store's calls over a store file the fuzzer shapes. An input headed
// as an SQLite file is the store file itself, byte for byte. Any other input
// adds rows of any type and size (integers, reals, texts, blobs, nulls) to a
// store the driver made, sets its line counter, and names the item asked for.
#include "tables/ClsItemData.h"

#include "support/FuzzScratch.h"

#include <QSqlDatabase>
#include <QSqlQuery>
#include <fuzzer/FuzzedDataProvider.h>

namespace {

const QByteArray kSqliteHeader("SQLite format 3", 15);
const QString kSerial = QStringLiteral("FUZ0000001");
constexpr int kMaxRows = 6;
constexpr size_t kMaxText = 40;

QVariant anyValue(FuzzedDataProvider& in)
{
    switch (in.ConsumeIntegralInRange(0, 4)) {
    case 0:
        return QVariant();
    case 1:
        return QVariant::fromValue(in.ConsumeIntegral<qint64>());
    case 2:
        return in.ConsumeFloatingPoint<double>();
    case 3:
        return QString::fromStdString(in.ConsumeRandomLengthString(kMaxText));
    default:
        return QByteArray::fromStdString(in.ConsumeRandomLengthString(kMaxText));
    }
}

// Rows written past the driver, as another program or a damaged file may leave them.
void addForeignRows(const QString& path, FuzzedDataProvider& in)
{
    const QString name = QStringLiteral("fuzz-rows");
    {
        QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), name);
        db.setDatabaseName(path);
        if (db.open()) {
            QSqlQuery query(db);
            const int rows = in.ConsumeIntegralInRange(0, kMaxRows);
            for (int r = 0; r < rows; ++r) {
                query.prepare(QStringLiteral(
                    "INSERT INTO ecrOrders (zNumber, tableNUM, tableORDER, itemUID, itemDesc, "
                    "itemQuantity, itemPrice, itemDep, itemVatRate, eNum, bTransfered) "
                    "VALUES (?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?)"));
                for (int column = 0; column < 11; ++column)
                    query.addBindValue(anyValue(in));
                query.exec();
            }
            query.prepare(QStringLiteral("UPDATE cntLine_ecrOrders SET eNum = ?"));
            query.addBindValue(anyValue(in));
            query.exec();
        }
        db.close();
    }
    QSqlDatabase::removeDatabase(name);
}

clsTable askedItem(FuzzedDataProvider& in)
{
    clsTable item;
    item.zNumber = in.ConsumeIntegral<qint16>();
    item.TableNUM = in.ConsumeIntegral<qint16>();
    item.TableNUM_Dest = in.ConsumeIntegral<qint16>();
    item.tableORDER = in.ConsumeIntegral<qint16>();
    item.tableORDER_Dest = in.ConsumeIntegral<qint16>();
    item.itemUID = in.ConsumeIntegral<qint32>();
    item.itemUID_Dest = in.ConsumeIntegral<qint32>();
    item.itemQuantity = in.ConsumeFloatingPoint<double>();
    item.itemPrice = in.ConsumeFloatingPoint<double>();
    item.itemDep = in.ConsumeIntegral<qint16>();
    item.itemVatRate = in.ConsumeFloatingPoint<double>();
    item.setItemDesc(QString::fromStdString(in.ConsumeRandomLengthString(kMaxText)));
    return item;
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***)
{
    fuzzing::startApplication();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    // A fresh folder each time: an unreadable file is kept aside under a new name.
    QDir folder(fuzzing::scratchPath(QStringLiteral("store")));
    folder.removeRecursively();
    folder.mkpath(QStringLiteral("."));

    clsItemData store(folder.path(), 0);
    store.ecrSerialNumber(kSerial);
    const QByteArray bytes = fuzzing::bytesOf(data, size);
    FuzzedDataProvider in(data, size);
    clsTable item;
    if (bytes.startsWith(kSqliteHeader)) {
        fuzzing::writeScratchFile(QStringLiteral("store/") + kSerial + QStringLiteral("_Orders.sqlite"),
                                  bytes);
        item.TableNUM = 1;
        item.setItemDesc(QStringLiteral("ΚΑΦΕΣ"));
    } else {
        item = askedItem(in);
        store.ecrZnumber(item.zNumber);
        store.orders_AddRecord(item);
        addForeignRows(store.storePath(), in);
    }

    store.orders_FindRecord(item);
    store.orders_MarkRecord(item);
    store.orders_UpdateRecord(item);
    store.orders_AddRecord(item);
    store.orders_DelRecord(item);
    store.orders_DelAllRecords(item);
    store.lastFailure();
    store.orders_DelAllDBRecords();
    return 0;
}
