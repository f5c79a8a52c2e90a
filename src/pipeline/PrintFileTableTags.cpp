// The table tags of the print file: TBO, TBC, TBT, TPT, TBS, ltb, and pay and
// voi while a table is in work.
#include "pipeline/PrintFileInterpreter.h"

#include "link/DeviceLink.h"
#include "payments/CardRoads.h"
#include "payments/PaymentMap.h"
#include "pipeline/PrintFileColumns.h"
#include "protocol/DeviceCommands.h"
#include "records/ReceiptState.h"
#include "shell/Clock.h"
#include "shell/ModuleVariables.h"
#include "shell/Operator.h"
#include "shell/ResultSink.h"
#include "shell/TextConversions.h"
#include "tables/MTable.h"
#include "tables/TableFlows.h"

namespace dc = DeviceCommands;

namespace {
const QString kWrongTableNumber = QStringLiteral("Λάθος Αριθμός Τραπεζιού");
const QString kTitleBeforeDevice = QStringLiteral("Μύνημα Kerbano");
const QString kPartSettlementTitle = QStringLiteral("ΜΕΡ.ΕΞΟΦΛ #");
constexpr qint16 kWrongTableStatus = 64;
constexpr qint16 kWrongNumber = -1;

bool isTag(const QString& line, const char* tag)
{
    const QString t = QLatin1String(tag);
    const QString c = column(line, 2, t.size());
    return c == t.toUpper() || c == t.toLower();
}
} // namespace

PrintFileInterpreter::Flow PrintFileInterpreter::tableLine(const QString& line)
{
    if (!ctx_.tables)
        return Flow::Next;
    if (isTag(line, "TBO"))
        return tbo(line);
    if (isTag(line, "TBC"))
        return tbc(line);
    if (isTag(line, "TBT"))
        return tbt(line);
    if (isTag(line, "TPT"))
        return tpt(line);
    return tbs(line);
}

void PrintFileInterpreter::wrongTableNumberBox()
{
    const QString title = ctx_.vars.DeviceLabel.isEmpty() ? kTitleBeforeDevice : ctx_.vars.DeviceLabel;
    ctx_.op.message(title, kWrongTableNumber, Operator::Icon::Information);
}

PrintFileInterpreter::Flow PrintFileInterpreter::tbo(const QString& line)
{
    const QString tableText = column(line, 7, 3).trimmed();
    if (!isNumericField(tableText)) {
        wrongTableNumberBox();
        return Flow::Stop;
    }
    ReceiptState& r = ctx_.receipt;
    const qint16 table = static_cast<qint16>(parseNumber(tableText));
    ProgramTableHeader(ctx_.link, table, fromColumn(line, 11).trimmed(), r.LastStatus, r.LastReply);
    sendReceiptCommand(dc::OpenTable(table));
    // A refused table leaves the job a plain receipt.
    if (r.LastStatus != 0)
        return Flow::Next;
    r.setCurrentTable(table);
    ctx_.tables->readStoreKeys();
    r.TableMode = 1;
    return Flow::Next;
}

PrintFileInterpreter::Flow PrintFileInterpreter::tbc(const QString& line)
{
    if (!isNumericField(fromColumn(line, 6).trimmed())) {
        wrongTableNumberBox();
        return Flow::Stop;
    }
    ReceiptState& r = ctx_.receipt;
    TableFlows& tables = *ctx_.tables;
    if (r.TableMode == 1) {
        if (tables.WaitForRegister() == 0)
            r.setCurrentTable(-1);
    } else if (r.TableMode == 2) {
        sendReceiptCommand(dc::EndItemMove(r.TableFrom, r.TableTo));
        if (r.LastStatus == 0)
            tables.ApplyTransferReply(r.TableFrom, r.TableTo, r.LastReply);
        tables.WaitForRegister();
    } else {
        return Flow::Next;
    }
    r.TableMode = 0;
    tables.ProcessPendingVoids();
    r.setTableDiscount(0);
    return Flow::Next;
}

bool PrintFileInterpreter::tableNumbersGood(qint16 from, qint16 to)
{
    if (from != kWrongNumber && to != kWrongNumber)
        return true;
    ctx_.results.appendResultLine(QStringLiteral("Err = -255, (Wrong Table Number) DateTime end = ")
                                  + ctx_.clock.stamp());
    ctx_.link.ShowDeviceMessage(kWrongTableStatus, kWrongTableNumber);
    return false;
}

PrintFileInterpreter::Flow PrintFileInterpreter::tbt(const QString& line)
{
    ReceiptState& r = ctx_.receipt;
    r.TableFrom = TableNumberOfText(column(line, 7, 3));
    r.TableTo = TableNumberOfText(column(line, 11, 3));
    if (!tableNumbersGood(r.TableFrom, r.TableTo))
        return Flow::Stop;
    qint16 timeout = TableFlows::kWholeMoveTimeoutSeconds;
    ctx_.link.SendCommand(dc::MoveWholeTable(r.TableFrom, r.TableTo), r.LastStatus, r.LastReply, true,
                          timeout, SendOptions::kLogModeResultFile);
    if (r.LastStatus != 0)
        return Flow::Stop;
    const QString moved = r.LastReply;
    // The rows to rewrite are in the store of this register, whatever job came before.
    ctx_.tables->readStoreKeys();
    ctx_.tables->ApplyTransferReply(r.TableFrom, r.TableTo, moved);
    ctx_.tables->WaitForRegister();
    return Flow::Next;
}

PrintFileInterpreter::Flow PrintFileInterpreter::tpt(const QString& line)
{
    ReceiptState& r = ctx_.receipt;
    r.TableFrom = TableNumberOfText(column(line, 7, 3));
    r.TableTo = TableNumberOfText(column(line, 11, 3));
    if (!tableNumbersGood(r.TableFrom, r.TableTo))
        return Flow::Stop;
    return beginMoveInParts();
}

PrintFileInterpreter::Flow PrintFileInterpreter::tbs(const QString& line)
{
    ReceiptState& r = ctx_.receipt;
    r.TableFrom = TableNumberOfText(column(line, 7, 3));
    r.TableTo = TableFlows::kPartSettlementTable;
    if (!tableNumbersGood(r.TableFrom, r.TableTo))
        return Flow::Stop;
    sendReceiptCommand(dc::TableTitle(r.TableTo, kPartSettlementTitle + QString::number(r.TableFrom),
                                      QStringLiteral(" ")));
    return beginMoveInParts();
}

PrintFileInterpreter::Flow PrintFileInterpreter::beginMoveInParts()
{
    ReceiptState& r = ctx_.receipt;
    sendReceiptCommand(dc::BeginItemMove(r.TableFrom, r.TableTo));
    if (r.LastStatus != 0)
        return Flow::Stop;
    r.TableMode = 2;
    ctx_.tables->readStoreKeys();
    r.setCurrentTable(r.TableTo);
    return Flow::Next;
}

void PrintFileInterpreter::ltb(const QString& line)
{
    if (!ctx_.tables)
        return;
    QString list;
    ctx_.tables->getOpenTablesList(column(line, 7, 7), list);
    ctx_.results.appendResultLine(QStringLiteral("tblList   = ") + list);
}

void PrintFileInterpreter::voiOnTable()
{
    ReceiptState& r = ctx_.receipt;
    if (!ctx_.tables || r.TableMode != 1)
        return;
    TableFlows& tables = *ctx_.tables;
    tables.readStoreKeys();
    tables.WaitForRegister();
    tables.VoidWholeTable();
    r.PendingVoids.clear();
    r.TableMode = 0;
}

void PrintFileInterpreter::payOnTable(qint16 payment)
{
    if (!ctx_.tables)
        return;
    ctx_.tables->bringTableToRegister();
    // The record is read afresh: an active one without pre-collection takes
    // the table card road; a table it paid leaves the store.
    const PayEftRecord record = PaymentMapLookup(payment, payeftPath(), ctx_.op);
    if (record.isActive() && !record.isPreCollect()) {
        const clsPayment card{payment, 0.0, QString()};
        if (ctx_.cards.payTableByCard(record, card, ctx_.receipt.currentTable(),
                                      ctx_.receipt.tableDiscount()))
            ctx_.tables->DeleteTableRecords(ctx_.receipt.currentTable());
        return;
    }
    ctx_.tables->payTable(payment, 0.0, false);
}
