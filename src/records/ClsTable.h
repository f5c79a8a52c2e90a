#pragma once

#include <QString>
#include <QtGlobal>

// One item of a table; also the question and the answer of the order store.
class clsTable {
public:
    qint16 Result = 0;
    qint16 zNumber = 0;
    qint16 TableNUM = 0;
    qint16 TableNUM_Dest = 0;
    qint16 tableORDER = 0;
    qint16 tableORDER_Dest = 0;
    qint32 itemUID = 0;
    qint32 itemUID_Dest = 0;
    double itemQuantity = 0.0;
    double itemPrice = 0.0;
    qint16 itemDep = 0;
    double itemVatRate = 0.0;

    static constexpr int kItemDescWidth = 24;

    // Always exactly 24 characters: cut, or filled with blanks.
    QString itemDesc() const { return itemDesc_; }
    void setItemDesc(const QString& text)
    {
        itemDesc_ = text.left(kItemDescWidth).leftJustified(kItemDescWidth, QLatin1Char(' '));
    }

private:
    QString itemDesc_ = QString(kItemDescWidth, QLatin1Char(' '));
};
