#pragma once

#include "tables/TableRoads.h"

class TableFlows;

// The table branches of plu, tot and the Z report over the order store and
// the table flows.
class OrderStoreRoads final : public TableRoads {
public:
    explicit OrderStoreRoads(TableFlows& flows);

    void storeSoldItem(const clsTable& item, const QString& command, const QString& reply) override;
    void removeReturnedItem(const clsTable& item, const QString& command,
                            const QString& reply) override;
    void moveItem(const clsTable& item) override;
    void bringTableToRegister() override;
    void payTable(double amount, qint16 payment) override;
    void forgetPaidTable(qint16 table) override;
    qint32 clearOrderStore() override;

private:
    TableFlows& flows_;
};
