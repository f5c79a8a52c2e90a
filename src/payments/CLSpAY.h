#pragma once

#include <QString>
#include <QtGlobal>

// What the register says about one of its payments.
class CLSpAY {
public:
    static constexpr qint16 kPreloadedCardType = 3;

    qint16 PAY_iD = 0;
    bool PAY_active = false;
    qint16 PAY_355 = 0;     // not filled by the payment's read
    qint16 PAY_type = 0;    // 0 cash, 1 card, 2 credit, 3 preloaded card, 4 other
    qint16 PAY_retries = 0; // not filled by the payment's read
    qint16 PAY_PayID = 0;   // not filled by the payment's read

    // A preloaded card's name says so behind it.
    QString PAY_Name() const
    {
        return PAY_type == kPreloadedCardType ? name_ + QStringLiteral(":ΠΡΟΦΟΡΤΩΜΕΝΗ") : name_;
    }
    void setPAY_Name(const QString& name) { name_ = name; }

private:
    QString name_;
};
