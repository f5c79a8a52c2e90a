#include "tables/ClsItemData.h"

#include "PrintQString.h"
#include "TableItem.h"

#include <QDir>
#include <QFile>
#include <QRandomGenerator>
#include <QSqlDatabase>
#include <QSqlQuery>
#include <QSqlRecord>
#include <QTemporaryDir>
#include <QUuid>
#include <gtest/gtest.h>

#include <chrono>
#include <csignal>
#include <functional>
#include <grp.h>
#include <sys/wait.h>
#include <thread>
#include <array>
#include <vector>
#include <unistd.h>

namespace {

const QString kSerial = QStringLiteral("ECR123");
constexpr qint16 kZ = 7;

clsTable Item(qint16 table, qint32 uid, qint16 order, const QString& desc, double quantity,
              double price, double vatRate = 24.0)
{
    return TableItem(table, uid, order, desc, quantity, price, vatRate);
}

clsTable Moved(qint16 table, qint32 uid, qint16 order, qint16 toTable, qint32 toUid, qint16 toOrder)
{
    clsTable item = Item(table, uid, order, {}, 0, 0);
    item.TableNUM_Dest = toTable;
    item.itemUID_Dest = toUid;
    item.tableORDER_Dest = toOrder;
    return item;
}

QString Joined(const QVariantList& values)
{
    QStringList texts;
    for (const QVariant& value : values)
        texts << value.toString();
    return texts.join(u'|');
}

// The store file read with a connection of the test's own, not the store's
// code: each row its values joined by "|".
QStringList Raw(const QString& path, const QString& sql)
{
    const QString name = QUuid::createUuid().toString();
    QStringList rows;
    {
        QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), name);
        db.setDatabaseName(path);
        QSqlQuery query(db);
        if (db.open() && query.exec(sql))
            while (query.next()) {
                QVariantList row;
                for (int i = 0; i < query.record().count(); ++i)
                    row << query.value(i);
                rows << Joined(row);
            }
    }
    QSqlDatabase::removeDatabase(name);
    return rows;
}

QByteArray RandomBytes(quint32 seed)
{
    QRandomGenerator random(seed);
    QByteArray bytes(4096, '\0');
    for (char& byte : bytes)
        byte = static_cast<char>(random.bounded(256));
    return bytes;
}

bool WriteFile(const QString& path, const QByteArray& bytes)
{
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size();
}

QByteArray ReadFile(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

// Runs body in a child process as the unprivileged user nobody (root writes
// through any permission) and answers what it printed.
QString RunUnprivileged(const std::function<QString()>& body)
{
    int out[2];
    if (pipe(out) != 0)
        return QStringLiteral("no pipe");
    const pid_t pid = fork();
    if (pid == 0) {
        constexpr gid_t kNobody = 65534;
        const bool ready = geteuid() != 0 || (setgroups(0, nullptr) == 0 && setgid(kNobody) == 0 && setuid(kNobody) == 0);
        const QByteArray text = ready ? body().toUtf8() : QByteArray("no user change");
        (void)!write(out[1], text.constData(), text.size());
        _exit(0);
    }
    close(out[1]);
    QByteArray text;
    char buffer[256];
    for (ssize_t n; (n = read(out[0], buffer, sizeof buffer)) > 0;)
        text.append(buffer, n);
    close(out[0]);
    waitpid(pid, nullptr, 0);
    return QString::fromUtf8(text);
}

class OrderStoreTest : public ::testing::Test {
protected:
    QTemporaryDir dir;

    clsItemData Store(qint16 z = kZ, int busyWaitMs = kStoreBusyWaitMs) const
    {
        clsItemData store(dir.path(), busyWaitMs);
        store.ecrSerialNumber(kSerial);
        store.ecrZnumber(z);
        return store;
    }
    QString StorePath() const { return dir.filePath(kSerial + "_Orders.sqlite"); }
    QStringList Raw(const QString& sql) const { return ::Raw(StorePath(), sql); }
    QStringList Lines() const { return Raw("SELECT eNum FROM ecrOrders ORDER BY eNum"); }
    QStringList FilesBesideTheStore() const
    {
        return QDir(dir.path()).entryList(QDir::Files | QDir::NoDotAndDotDot, QDir::Name);
    }
};

TEST_F(OrderStoreTest, AFirstSaleMakesTheStoreAndRowsKeepTheirUnits)
{
    clsItemData store = Store();
    ASSERT_FALSE(QFile::exists(StorePath()));
    EXPECT_EQ(store.orders_AddRecord(Item(5, 9001, 3, "ΚΑΦΕΣ", 0.333, 4.35, 6.5)), 0);
    EXPECT_EQ(store.lastFault(), OrderStoreFault::None);
    EXPECT_EQ(Raw("PRAGMA journal_mode"), QStringList{"wal"});
    EXPECT_EQ(Raw("SELECT * FROM ecrOrders"),
              QStringList{Joined({kZ, 5, 3, 9001, QString("ΚΑΦΕΣ").leftJustified(24), 333, 435, 2, 650.0, 1, 0})});
    EXPECT_EQ(Raw("SELECT eNum FROM cntLine_ecrOrders"), QStringList{"1"});

    // Amounts whose doubles lie just below or above their hundredths are found again.
    EXPECT_EQ(store.orders_AddRecord(Item(5, 9002, 4, "ΝΕΡΟ", 2, 1.10)), 0);
    const auto whole = [](const clsTable& t) {
        return std::tuple(t.Result, t.itemDesc(), t.itemPrice, t.itemQuantity, t.zNumber, t.itemUID, t.tableORDER,
                          t.itemDep, t.itemVatRate);
    };
    EXPECT_EQ(whole(store.orders_FindRecord(Item(5, 0, 0, "ΚΑΦΕΣ", 0.333, 4.35))),
              std::tuple(0, Item(0, 0, 0, "ΚΑΦΕΣ", 0, 0).itemDesc(), 4.35, 0.333, kZ, 9001, qint16(3), qint16(2), 6.5));
    EXPECT_EQ(whole(store.orders_FindRecord(Item(5, 0, 0, "ΝΕΡΟ", 2, 1.1))),
              std::tuple(0, Item(0, 0, 0, "ΝΕΡΟ", 0, 0).itemDesc(), 1.1, 2.0, kZ, 9002, qint16(4), qint16(2), 24.0));
    EXPECT_EQ(store.orders_FindRecord(Item(5, 0, 0, "ΚΑΦΕΣ", 0.333, 4.34)).Result, -2);
    EXPECT_EQ(store.orders_FindRecord(Item(6, 0, 0, "ΚΑΦΕΣ", 0.333, 4.35)).Result, -2);
}

// Each call's answer in order, against the store of the rows put first.
TEST_F(OrderStoreTest, MarksMovesDeletionsAndAnEarlierZAnswerAsTheStoreHoldsThem)
{
    clsItemData store = Store();
    clsItemData later = Store(kZ + 1);
    for (const clsTable& item : {Item(5, 11, 1, "ΜΠΥΡΑ", 1, 3.5), Item(5, 12, 2, "ΜΠΥΡΑ", 1, 3.5),
                                 Item(6, 1, 1, "Α", 1, 1), Item(6, 2, 2, "Β", 1, 1), Item(6, 2, 3, "Β", 1, 1),
                                 Item(7, 1, 1, "Α", 1, 1), Item(3, 40, 2, "ΣΑΛΑΤΑ", 1, 7)})
        ASSERT_EQ(store.orders_AddRecord(item), 0);
    const clsTable beer = Item(5, 0, 0, "ΜΠΥΡΑ", 1, 3.5);
    const clsTable beerAt8 = Item(8, 0, 0, "ΜΠΥΡΑ", 1, 3.5);
    const clsTable saladAt3 = Item(3, 0, 0, "ΣΑΛΑΤΑ", 1, 7);
    const std::vector<std::pair<const char*, std::function<int()>>> calls{
        // Equal rows are found oldest first, and a marked row is skipped.
        {"find beer", [&] { return store.orders_FindRecord(beer).itemUID; }},
        {"mark 11", [&] { return store.orders_MarkRecord(Item(5, 11, 0, "", 0, 0)); }},
        {"find beer", [&] { return store.orders_FindRecord(beer).itemUID; }},
        {"mark 11 again", [&] { return store.orders_MarkRecord(Item(5, 11, 0, "", 0, 0)); }},
        {"mark 12", [&] { return store.orders_MarkRecord(Item(5, 12, 0, "", 0, 0)); }},
        {"find beer", [&] { return store.orders_FindRecord(beer).Result; }},
        // The end of the move rewrites the marked row for its new table.
        {"move 11", [&] { return store.orders_UpdateRecord(Moved(5, 11, 1, 8, 51, 4)); }},
        {"move 11 again", [&] { return store.orders_UpdateRecord(Moved(5, 11, 1, 8, 51, 4)); }},
        {"find at 8", [&] { return store.orders_FindRecord(beerAt8).itemUID; }},
        {"order at 8", [&] { return int(store.orders_FindRecord(beerAt8).tableORDER); }},
        // Deletions count their rows and say when none matched.
        {"delete 6/2", [&] { return store.orders_DelRecord(Item(6, 2, 0, "", 0, 0)); }},
        {"delete 6/2 again", [&] { return store.orders_DelRecord(Item(6, 2, 0, "", 0, 0)); }},
        {"delete table 6", [&] { return store.orders_DelAllRecords(Item(6, 0, 0, "", 0, 0)); }},
        {"delete table 6 again", [&] { return store.orders_DelAllRecords(Item(6, 0, 0, "", 0, 0)); }},
        {"find at 7", [&] { return store.orders_FindRecord(Item(7, 0, 0, "Α", 1, 1)).itemUID; }},
        // A row of an earlier Z is seen only by the update and by clearing.
        {"later find", [&] { return later.orders_FindRecord(saladAt3).Result; }},
        {"later mark", [&] { return later.orders_MarkRecord(Item(3, 40, 0, "", 0, 0)); }},
        {"later delete", [&] { return later.orders_DelRecord(Item(3, 40, 0, "", 0, 0)); }},
        {"later delete table", [&] { return later.orders_DelAllRecords(Item(3, 0, 0, "", 0, 0)); }},
        {"later move", [&] { return later.orders_UpdateRecord(Moved(3, 40, 2, 9, 41, 1)); }},
    };
    QStringList answers;
    for (const auto& [name, call] : calls)
        answers << QString::fromLatin1(name) + QStringLiteral(": ") + QString::number(call());
    EXPECT_EQ(answers, QStringList({"find beer: 11", "mark 11: 0", "find beer: 12", "mark 11 again: -2", "mark 12: 0",
                                    "find beer: -2", "move 11: 0", "move 11 again: -2", "find at 8: 51", "order at 8: 4",
                                    "delete 6/2: 2", "delete 6/2 again: -2", "delete table 6: 1",
                                    "delete table 6 again: -2", "find at 7: 1", "later find: -2", "later mark: -2",
                                    "later delete: -2", "later delete table: -2", "later move: 0"}));
    EXPECT_EQ(Raw("SELECT zNumber, tableNUM, itemUID, tableORDER FROM ecrOrders WHERE itemDesc LIKE 'ΣΑΛΑΤΑ%'"),
              QStringList{"7|9|41|1"});
    EXPECT_EQ(Lines(), QStringList({"1", "2", "6", "7"})); // a move keeps the line number
    EXPECT_EQ(later.orders_DelAllDBRecords(), 4);
}

TEST_F(OrderStoreTest, ClearingTheStoreRestartsTheLineNumbersEvenWhenItWasEmpty)
{
    clsItemData store = Store();
    ASSERT_EQ(store.orders_AddRecord(Item(5, 1, 1, "Α", 1, 1)), 0);
    ASSERT_EQ(Store(kZ - 1).orders_AddRecord(Item(5, 2, 1, "Α", 1, 1)), 0);
    EXPECT_EQ(store.orders_DelAllDBRecords(), 2);
    EXPECT_TRUE(Raw("SELECT * FROM cntLine_ecrOrders").empty());
    ASSERT_EQ(store.orders_AddRecord(Item(5, 3, 1, "Α", 1, 1)), 0);
    EXPECT_EQ(Lines(), QStringList{"1"});

    ASSERT_EQ(store.orders_AddRecord(Item(5, 4, 1, "Α", 1, 1)), 0);
    ASSERT_EQ(store.orders_DelAllRecords(Item(5, 0, 0, "", 0, 0)), 2);
    EXPECT_EQ(store.orders_DelAllDBRecords(), -2);
    EXPECT_EQ(store.lastFault(), OrderStoreFault::None);
    EXPECT_TRUE(Raw("SELECT * FROM cntLine_ecrOrders").empty());
    ASSERT_EQ(store.orders_AddRecord(Item(5, 5, 1, "Α", 1, 1)), 0);
    EXPECT_EQ(Lines(), QStringList{"1"});
}

TEST_F(OrderStoreTest, QuotesAreDataAndAGivenQueryIsUsedAsItStands)
{
    clsItemData store = Store();
    ASSERT_EQ(store.orders_AddRecord(Item(4, 77, 1, "O'NEIL'S \"ΕΙΔΙΚΟ\"", 1, 2)), 0);
    EXPECT_EQ(store.orders_FindRecord(Item(4, 0, 0, "O'NEIL'S \"ΕΙΔΙΚΟ\"", 1, 2)).itemUID, 77);

    const QString wholeTable =
        "select * from ecrOrders WHERE ( (zNumber = 7)  AND (tableNUM = 4) AND (bTransfered=0) )";
    EXPECT_EQ(store.orders_FindRecord(clsTable(), wholeTable).itemUID, 77);
    EXPECT_EQ(store.orders_FindRecord(clsTable(), "select * from ecrOrders WHERE tableNUM = 5").Result, -2);

    EXPECT_EQ(store.orders_FindRecord(clsTable(), "select * from nowhere").Result, -1);
    EXPECT_EQ(store.lastFault(), OrderStoreFault::Failed);
    EXPECT_FALSE(store.lastFailure().isEmpty());
    EXPECT_EQ(store.orders_FindRecord(clsTable(), "select itemUID from ecrOrders").Result, -1);
    // A lookup never changes the store.
    EXPECT_EQ(store.orders_FindRecord(clsTable(), "delete from ecrOrders").Result, -1);
    EXPECT_EQ(store.orders_FindRecord(clsTable(), wholeTable).Result, 0);
}

TEST_F(OrderStoreTest, WithoutAStoreEveryCallButASaleAnswersNoStoreAndMakesNoFile)
{
    clsItemData store = Store();
    const clsTable item = Item(5, 1, 1, "Α", 1, 1);
    EXPECT_EQ(store.orders_FindRecord(item).Result, -3);
    EXPECT_EQ(store.lastFault(), OrderStoreFault::NoStore);
    EXPECT_EQ((std::array<int, 5>{store.orders_DelRecord(item), store.orders_DelAllRecords(item), store.orders_DelAllDBRecords(),
                          store.orders_UpdateRecord(item), store.orders_MarkRecord(item)}),
              (std::array<int, 5>{-3, -3, -3, -3, -3}));
    EXPECT_TRUE(FilesBesideTheStore().isEmpty());

    // An empty file, as a crash before the first row leaves it, is no store either,
    // until a sale makes the tables in it.
    ASSERT_TRUE(WriteFile(StorePath(), {}));
    EXPECT_EQ(store.orders_FindRecord(item).Result, -3);
    EXPECT_EQ(store.orders_AddRecord(item), 0);
    EXPECT_EQ(store.orders_FindRecord(item).Result, 0);
}

TEST_F(OrderStoreTest, AFileOfRandomBytesIsKeptAsideAndANewStoreBegun)
{
    const QByteArray garbage = RandomBytes(1);
    ASSERT_TRUE(WriteFile(StorePath(), garbage) && WriteFile(StorePath() + "-wal", "stale"));
    clsItemData store = Store();
    const clsTable item = Item(5, 1, 1, "Α", 1, 1);

    EXPECT_EQ(store.orders_FindRecord(item).Result, -3);
    EXPECT_EQ(store.lastFault(), OrderStoreFault::SetAside);
    const QString firstAside = store.setAsidePath();
    EXPECT_TRUE(firstAside.startsWith(StorePath() + "."));
    EXPECT_TRUE(store.lastFailure().contains(firstAside));
    EXPECT_EQ(std::tuple(ReadFile(firstAside), ReadFile(firstAside + "-wal")), std::tuple(garbage, QByteArray("stale")));
    EXPECT_FALSE(QFile::exists(StorePath()));

    ASSERT_TRUE(WriteFile(StorePath(), RandomBytes(2)));
    EXPECT_EQ(store.orders_AddRecord(item), 0);
    EXPECT_EQ(store.lastFault(), OrderStoreFault::SetAside);
    EXPECT_NE(store.setAsidePath(), firstAside);
    EXPECT_EQ(ReadFile(store.setAsidePath()), RandomBytes(2));
    EXPECT_EQ(ReadFile(firstAside), garbage);
    EXPECT_EQ(Lines(), QStringList{"1"});

    EXPECT_EQ(store.orders_FindRecord(item).Result, 0);
    EXPECT_EQ(std::tuple(store.lastFault(), store.setAsidePath(), store.lastFailure()),
              std::tuple(OrderStoreFault::None, QString(), QString()));
}

TEST_F(OrderStoreTest, ALockedStoreFailsTheWriteAndIsNeitherSetAsideNorChanged)
{
    clsItemData store = Store(kZ, 0);
    ASSERT_EQ(store.orders_AddRecord(Item(5, 1, 1, "Α", 1, 1)), 0);
    const QString holder = QUuid::createUuid().toString();
    {
        QSqlDatabase other = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), holder);
        other.setDatabaseName(StorePath());
        ASSERT_TRUE(other.open());
        QSqlQuery lock(other);
        ASSERT_TRUE(lock.exec("BEGIN IMMEDIATE"));

        EXPECT_EQ(store.orders_AddRecord(Item(5, 2, 2, "Β", 1, 1)), -1);
        EXPECT_EQ(store.lastFault(), OrderStoreFault::Locked);
        EXPECT_TRUE(store.lastFailure().contains("κλειδωμένο"));
        EXPECT_EQ(store.orders_DelAllDBRecords(), -1);
        EXPECT_EQ(store.orders_FindRecord(Item(5, 0, 0, "Α", 1, 1)).itemUID, 1);
        lock.exec("ROLLBACK");
    }
    QSqlDatabase::removeDatabase(holder);
    EXPECT_EQ(FilesBesideTheStore(), QStringList{kSerial + "_Orders.sqlite"});
    EXPECT_EQ(store.orders_AddRecord(Item(5, 2, 2, "Β", 1, 1)), 0);
    EXPECT_EQ(Lines(), QStringList({"1", "2"}));
}

TEST_F(OrderStoreTest, AReadOnlyDirectoryFailsTheCallsAndLosesNothing)
{
    QDir(dir.path()).mkdir("empty");
    QDir(dir.path()).mkdir("kept");
    clsItemData kept(dir.filePath("kept"));
    kept.ecrSerialNumber(kSerial);
    ASSERT_EQ(kept.orders_AddRecord(Item(5, 1, 1, "Α", 1, 1)), 0);
    const QString keptFile = kept.storePath();

    const auto readOnly = QFile::ReadOwner | QFile::ExeOwner | QFile::ReadGroup | QFile::ExeGroup
        | QFile::ReadOther | QFile::ExeOther;
    QFile::setPermissions(dir.path(), readOnly | QFile::WriteOwner);
    QFile::setPermissions(dir.filePath("empty"), readOnly);
    QFile::setPermissions(dir.filePath("kept"), readOnly);
    QFile::setPermissions(keptFile, QFile::ReadOwner | QFile::ReadGroup | QFile::ReadOther);

    const QString answers = RunUnprivileged([&] {
        const clsTable item = Item(5, 1, 1, "Α", 1, 1);
        QStringList said;
        for (const QString& folder : {QStringLiteral("empty"), QStringLiteral("kept")}) {
            clsItemData store(dir.filePath(folder));
            store.ecrSerialNumber(kSerial);
            said << QString::number(store.orders_AddRecord(item)) << QString::number(int(store.lastFault()))
                 << QString::number(store.orders_FindRecord(item).Result) << QString::number(store.orders_DelRecord(item))
                 << QString::number(store.orders_DelAllDBRecords());
        }
        return said.join(' ');
    });
    EXPECT_EQ(answers, QString("-3 %1 -3 -3 -3 -2 %2 -1 -1 -1")
                           .arg(int(OrderStoreFault::CannotCreate)).arg(int(OrderStoreFault::ReadOnly)));

    for (const char* folder : {"empty", "kept"})
        QFile::setPermissions(dir.filePath(folder), readOnly | QFile::WriteOwner);
    QFile::setPermissions(keptFile, QFile::ReadOwner | QFile::WriteOwner);
    EXPECT_TRUE(QDir(dir.filePath("empty")).isEmpty());
    EXPECT_EQ(QDir(dir.filePath("kept")).entryList(QDir::Files), QStringList{kSerial + "_Orders.sqlite"});
    EXPECT_EQ(kept.orders_FindRecord(Item(5, 0, 0, "Α", 1, 1)).itemUID, 1);
}

// A writer killed at any moment leaves every call whole: the file passes its
// integrity check, each row carries all its fields and the line counter stands
// at the last row, with no gap: row and counter commit together.
TEST_F(OrderStoreTest, AWriterKilledAtRandomMomentsLeavesTheStoreWhole)
{
    constexpr int kKills = 25;
    const auto rowOf = [](qint32 uid) {
        return QVariantList{uid, uid % 290 + 1, QStringLiteral("ΕΙΔΟΣ %1").arg(uid).leftJustified(24), uid % 997 + 1,
                            uid % 500 + 35, 2, 2400.0, kZ, 0};
    };
    QRandomGenerator random(42);
    for (int round = 0; round < kKills; ++round) {
        int progress[2];
        ASSERT_EQ(pipe(progress), 0);
        const pid_t pid = fork();
        ASSERT_GE(pid, 0);
        if (pid == 0) {
            clsItemData store = Store();
            for (qint32 uid = round * 100000;; ++uid) {
                const QVariantList row = rowOf(uid);
                const clsTable item = Item(row[1].toInt(), uid, 1, row[2].toString().trimmed(),
                                           row[3].toInt() / 1000.0, row[4].toInt() / 100.0);
                const char mark = store.orders_AddRecord(item) == 0 ? '+' : 'f';
                (void)!write(progress[1], &mark, 1);
            }
        }
        close(progress[1]);
        for (int seen = 0, before = 1 + random.bounded(4); seen < before; ++seen) {
            char mark = 0;
            ASSERT_EQ(read(progress[0], &mark, 1), 1);
            EXPECT_EQ(mark, '+');
        }
        std::this_thread::sleep_for(std::chrono::microseconds(random.bounded(3000)));
        kill(pid, SIGKILL);
        waitpid(pid, nullptr, 0);
        close(progress[0]);
    }

    EXPECT_EQ(Store().orders_FindRecord(clsTable(), "select * from ecrOrders").Result, 0);
    EXPECT_EQ(Raw("PRAGMA integrity_check"), QStringList{"ok"});
    const QStringList rows = Raw("SELECT itemUID, tableNUM, itemDesc, itemQuantity, itemPrice, itemDep, itemVatRate, "
                                 "zNumber, bTransfered, eNum FROM ecrOrders ORDER BY eNum");
    ASSERT_GE(rows.size(), kKills);
    for (int i = 0; i < rows.size(); ++i)
        EXPECT_EQ(rows[i], Joined(rowOf(rows[i].section(u'|', 0, 0).toInt()) << i + 1));
    EXPECT_EQ(Raw("SELECT eNum FROM cntLine_ecrOrders"), QStringList{QString::number(rows.size())});
}

} // namespace
