#pragma once

#include "operations/FPrinter.h"
#include "payments/CardRoads.h"
#include "protocol/DeviceReply.h"
#include "tables/TableRoads.h"

#include <QString>

class DeviceLink;
class FormModel;
class Operator;
class clsind;
struct ModuleVariables;
struct ReceiptState;

// FPrinterWrite over the real link: sale, control and report operations.
// It keeps nothing between calls; everything it learns is left in
// ReceiptState (LastStatus, LastReply and the job's flags).
class FPrinterOperations final : public FPrinter {
public:
    FPrinterOperations(DeviceLink& link, ReceiptState& state, ModuleVariables& vars, Operator& op,
                       FormModel& form, clsind& progress,
                       QString payEftPath = QStringLiteral("payeft.dat"));

    // The table and card subsystems plug in here; until then their branches do nothing.
    void setTableRoads(TableRoads& roads) { tables_ = &roads; }
    void setCardRoads(CardRoads& roads) { cards_ = &roads; }

    Q_DISABLE_COPY_MOVE(FPrinterOperations)

    using FPrinter::FPrinterWrite;
    void FPrinterWrite(const QString& text, QVariant& a, QVariant& b, QVariant& c,
                       const QString& op) override;

    // The two descriptions of a sale or discount line, cut from the working text.
    static QString firstDescription(const QString& working);
    static QString secondDescription(const QString& working);

private:
    // Sends with the result file's logging and leaves status and text in ReceiptState.
    DeviceReply send(const QString& command, bool quiet = false);

    void plu(const QString& working, QVariant& b, QVariant& c);
    void dis(const QString& working, QVariant& a, QVariant& b, QVariant& c);
    void tot(const QString& text, QVariant& a, QVariant& b, QVariant& c);
    void tableTotal(double amount, qint16 payment);
    void comment(const QString& working, QVariant& c, bool quiet, bool marksAfterTotal,
                 bool sendsBlank);
    void frt();
    void foo(const QString& working);
    void dailyZ();
    void refusedReport();

    DeviceLink& link_;
    ReceiptState& state_;
    ModuleVariables& vars_;
    Operator& op_;
    FormModel& form_;
    clsind& progress_;
    QString payEftPath_;
    TableRoads noTables_;
    CardRoads noCards_;
    TableRoads* tables_ = &noTables_;
    CardRoads* cards_ = &noCards_;
};
