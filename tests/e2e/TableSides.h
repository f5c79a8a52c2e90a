#pragma once

// The two homes of a restaurant table, each read by the test itself: what the
// virtual register holds on it (asked on its own wire) and the order store's
// rows (read with a connection of the test's own).
#include "shell/CodePage.h"

#include <QDir>
#include <QSqlDatabase>
#include <QSqlQuery>
#include <QTcpSocket>
#include <QUuid>
#include <gtest/gtest.h>

#include <set>
#include <tuple>

// An item as both sides name it: its identifier and its line order.
using TableItemKey = std::tuple<int, int>;

inline std::set<TableItemKey> registerTableItems(const QString& address, int table)
{
    constexpr int kReplyWaitMs = 5000;
    constexpr int kReplySilenceMs = 300;
    QTcpSocket socket;
    socket.connectToHost(address.section(':', 0, 0), quint16(address.section(':', 1).toInt()));
    EXPECT_TRUE(socket.waitForConnected(kReplyWaitMs));
    socket.write(codepage::toWin1253(QStringLiteral("&/11/%1//0/0///////////").arg(table)));
    QByteArray reply;
    if (socket.waitForReadyRead(kReplyWaitMs)) {
        reply += socket.readAll();
        while (socket.waitForReadyRead(kReplySilenceMs))
            reply += socket.readAll();
    }
    socket.disconnectFromHost();
    const QStringList fields = codepage::fromWin1253(reply).trimmed().split(QLatin1Char('/'));
    EXPECT_EQ(fields.value(0), "00") << reply.toStdString();
    std::set<TableItemKey> items;
    for (qsizetype i = 4; i < fields.size() - 1; ++i) {
        const QStringList sub = fields[i].split(QLatin1Char('|'));
        items.insert({sub.value(1).toInt(), sub.value(0).toInt()});
    }
    return items;
}

inline std::set<TableItemKey> storeTableItems(const QString& directory, int table)
{
    std::set<TableItemKey> items;
    const QStringList stores = QDir(directory).entryList({QStringLiteral("*_Orders.sqlite")}, QDir::Files);
    if (stores.isEmpty())
        return items;
    EXPECT_EQ(stores.size(), 1) << stores.join(", ").toStdString();
    const QString name = QUuid::createUuid().toString();
    {
        QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), name);
        db.setDatabaseName(QDir(directory).filePath(stores.first()));
        EXPECT_TRUE(db.open());
        QSqlQuery query(db);
        query.prepare(QStringLiteral("SELECT itemUID, tableORDER FROM ecrOrders WHERE tableNUM = ?"));
        query.addBindValue(table);
        EXPECT_TRUE(query.exec());
        while (query.next())
            items.insert({query.value(0).toInt(), query.value(1).toInt()});
    }
    QSqlDatabase::removeDatabase(name);
    return items;
}
