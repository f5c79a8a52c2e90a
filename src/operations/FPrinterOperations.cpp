#include "operations/FPrinterOperations.h"

#include "config/RegionalNumber.h"
#include "link/DeviceLink.h"
#include "payments/PaymentMap.h"
#include "protocol/DeviceCommands.h"
#include "protocol/SaleOnTableReply.h"
#include "records/ReceiptState.h"
#include "shell/FormModel.h"
#include "shell/ModuleVariables.h"
#include "shell/Operator.h"
#include "shell/TextConversions.h"
#include "shell/ProgressIndicator.h"

#include <QStringList>
#include <cmath>

namespace dc = DeviceCommands;

namespace {

// Working text of longer than this gets a second description.
constexpr int kSingleDescriptionMax = 20;
constexpr int kFooterPieces = 4;
constexpr int kTrailerFeeds = 3;
constexpr int kFeedLinesAfterComment = 8;
// 0Z: polls for the end of the flash transfer, and the progress scale.
constexpr int kZPolls = 31;
constexpr qint16 kZProgressMax = 21;
constexpr qint16 kZRefused = 70;
constexpr qint16 kZRefusedOther = 195;

const QString kFlashWait = QStringLiteral("Αναμονή για μεταφορά σε flash ");
const QString kStoreClearFailed = QStringLiteral("Πρόβλημα στην διαγραφή των τραπεζιών!");
const QString kReportRefused = QStringLiteral("Αδύνατο Ισοζύγειο!!");
const QString kWaitCaption = QStringLiteral("Μήνυμα Ταμειακής (%1)");

QString slashesToDashes(const QString& text)
{
    QString out = text;
    out.replace(QLatin1Char('/'), QLatin1Char('-'));
    return out;
}

// A line style of a comment: numeric and from 1 to 4.
bool lineStyleOf(const QVariant& c, int& style)
{
    bool ok = false;
    const double value = c.toString().trimmed().toDouble(&ok);
    if (!ok || !(value > 0 && value < 5))
        return false;
    style = static_cast<int>(value);
    return true;
}

} // namespace

FPrinterOperations::FPrinterOperations(DeviceLink& link, ReceiptState& state, ModuleVariables& vars,
                                       Operator& op, FormModel& form, clsind& progress,
                                       QString payEftPath)
    : link_(link)
    , state_(state)
    , vars_(vars)
    , op_(op)
    , form_(form)
    , progress_(progress)
    , payEftPath_(std::move(payEftPath))
{
}

QString FPrinterOperations::firstDescription(const QString& working)
{
    return working.left(dc::kFirstDescriptionMax);
}

QString FPrinterOperations::secondDescription(const QString& working)
{
    if (working.size() <= kSingleDescriptionMax)
        return QString();
    return working.trimmed().mid(dc::kFirstDescriptionMax).trimmed().left(dc::kSecondDescriptionMax);
}

DeviceReply FPrinterOperations::send(const QString& command, bool quiet)
{
    DeviceReply reply = link_.send(command, {.quiet = quiet});
    state_.LastStatus = reply.status();
    state_.LastReply = reply.text();
    return reply;
}

void FPrinterOperations::FPrinterWrite(const QString& text, QVariant& a, QVariant& b, QVariant& c,
                                       const QString& op)
{
    if (op == u"disC")
        return;
    const QString working = slashesToDashes(text).toUpper();

    if (op == u"initialize") send(dc::StatusProbe());
    else if (op == u"DrawerNo") send(dc::DrawerSetting(0));
    else if (op == u"DrawerYes") send(dc::DrawerSetting(1));
    else if (op == u"receiptread") send(dc::StatusProbe());
    else if (op == u"prgRaw") send(text, true);
    else if (op == u"plu") plu(working, b, c);
    else if (op == u"dis") dis(working, a, b, c);
    else if (op == u"sut") send(dc::StatusProbe());
    else if (op == u"tot") tot(text, a, b, c);
    else if (op == u"pot") send(dc::PaidOut());
    else if (op == u"roa") send(dc::ReceivedOnAccount());
    else if (op == u"com") comment(working, c, false, true, false);
    else if (op == u"frt") frt();
    else if (op == u"foo") foo(working);
    else if (op == u"foo_delete") send(dc::BlankFooter(), true);
    else if (op == u"comItem") comment(working, c, false, true, false);
    else if (op == u"comItemmoError") comment(working, c, true, false, true);
    else if (op == u"hea") send(dc::Header());
    else if (op == u"comE") { send(dc::ComEFirst()); send(dc::ComESecond()); }
    else if (op == u"voidAll") send(dc::VoidDocument());
    else if (op == u"fr") send(dc::PaperFeed(1, 1));
    else if (op == u"fj") send(dc::PaperFeed(2, 1));
    else if (op == u"ns") send(dc::OperationNs());
    else if (op == u"0X") send(dc::XReportFinancial());
    else if (op == u"2X") send(dc::XReportSelector2());
    else if (op == u"8X") send(dc::XReportSelector6());
    else if (op == u"6X") send(dc::XReportSecond());
    else if (op == u"0Z") dailyZ();
    else if (op == u"2Z" || op == u"8Z" || op == u"6Z" || op == u"5Z" || op == u"0ZP"
             || op == u"2ZP" || op == u"8ZP" || op == u"6ZP")
        refusedReport();
    else if (op == u"5ZP") send(dc::Report5ZP());
    else if (op == u"prg") send(text);
    // Any other name does nothing.
}

void FPrinterOperations::plu(const QString& working, QVariant& b, QVariant& c)
{
    const bool negative = state_.ItemPrice < 0 || state_.ItemQty < 0;
    const double vatRate = b.toDouble();
    const qint16 department = static_cast<qint16>(c.toInt());

    clsTable item;
    item.setItemDesc(working);
    item.itemDep = department;
    item.itemVatRate = vatRate;

    switch (state_.TableMode) {
    case 0:
    case 1:
        if (!negative) {
            const QString command = dc::Sale(firstDescription(working), secondDescription(working),
                                             state_.ItemQty, state_.ItemPrice, department, vatRate);
            const std::optional<SaleOnTableReply> sold = SaleOnTableReply::read(send(command));
            if (state_.currentTable() < 1 || !sold)
                return;
            item.itemPrice = state_.ItemPrice;
            item.itemQuantity = state_.ItemQty;
            item.TableNUM = state_.currentTable();
            item.tableORDER = sold->lineOrder;
            item.itemUID = sold->itemIdentifier;
            tables_->storeSoldItem(item, command, state_.LastReply);
        } else if (state_.TableMode == 0) {
            state_.ItemQty = std::fabs(state_.ItemQty);
            const double price = std::fabs(state_.ItemPrice);
            const QString command = dc::Return(firstDescription(working), secondDescription(working),
                                               state_.ItemQty, price, department, vatRate);
            send(command);
            if (state_.currentTable() < 1 || state_.LastStatus != 0)
                return;
            item.itemPrice = price;
            item.itemQuantity = state_.ItemQty;
            item.TableNUM = state_.currentTable();
            tables_->removeReturnedItem(item, command, state_.LastReply);
        } else {
            // A cancellation on an open table waits for the table's closing.
            item.itemPrice = std::fabs(state_.ItemPrice);
            item.itemQuantity = std::fabs(state_.ItemQty);
            item.TableNUM = state_.currentTable();
            item.zNumber = state_.StoreZ;
            state_.PendingVoids.append(item);
        }
        break;
    case 2:
        if (!negative) {
            item.itemPrice = state_.ItemPrice;
            item.itemQuantity = state_.ItemQty;
            item.TableNUM = state_.TableFrom;
            tables_->moveItem(item);
        }
        break;
    default:
        break;
    }
}

void FPrinterOperations::dis(const QString& working, QVariant& a, QVariant& b, QVariant& c)
{
    if (state_.TableMode == 1 || state_.TableMode == 2) {
        state_.setTableDiscount(std::fabs(ParseRegionalNumber(a.toString(), &op_)));
        return;
    }
    if (a.toDouble() < 0) {
        b = 0;
        a = std::fabs(a.toDouble());
    }
    send(dc::Discount(a.toDouble(), firstDescription(working), b.toInt(), state_.DiscountScope,
                      c.toInt()));
}

void FPrinterOperations::tot(const QString& text, QVariant& a, QVariant& b, QVariant& c)
{
    if (state_.TableMode == 1 || state_.TableMode == 2) {
        tableTotal(a.toDouble(), static_cast<qint16>(b.toInt()));
        return;
    }
    const PayEftRecord record = PaymentMapLookup(b.toInt(), payEftPath_, op_);
    const QString description = slashesToDashes(text);
    c = slashesToDashes(c.toString());

    if (!record.isActive()) {
        vars_.EftBusy = false;
        send(dc::Payment(b.toInt(), a.toDouble(), description));
        state_.PaymentDone = true;
        return;
    }
    cards_->payInReceipt(record, a.toDouble(), description, c.toString());
    state_.PaymentDone = true;
}

// The table is brought to the register first; then it is paid, by the card
// road of a table for an active record without pre-collection, else plainly.
void FPrinterOperations::tableTotal(double amount, qint16 payment)
{
    tables_->bringTableToRegister();
    const PayEftRecord record = PaymentMapLookup(payment, payEftPath_, op_);
    if (record.isActive() && !record.isPreCollect()) {
        const clsPayment card{payment, amount, QString()};
        if (cards_->payTableByCard(record, card, state_.currentTable(), state_.tableDiscount()))
            tables_->forgetPaidTable(state_.currentTable());
        return;
    }
    tables_->payTable(amount, payment);
}

void FPrinterOperations::comment(const QString& working, QVariant& c, bool quiet,
                                 bool marksAfterTotal, bool sendsBlank)
{
    if (c.toString().isEmpty())
        c = 0;
    int style = 1;
    lineStyleOf(c, style);
    if (!sendsBlank && working.trimmed().isEmpty())
        return;
    send(dc::Comment(style, working), quiet);
    if (marksAfterTotal && state_.PaymentDone)
        state_.CommentAfterTotal = true;
}

void FPrinterOperations::frt()
{
    if (!state_.CommentAfterTotal)
        return;
    for (int i = 0; i < kTrailerFeeds; ++i)
        send(dc::PaperFeed(1, kFeedLinesAfterComment));
}

void FPrinterOperations::foo(const QString& working)
{
    QStringList pieces;
    for (int i = 0; i < kFooterPieces; ++i) {
        QString piece = working.mid(i * dc::kFooterLineMax, dc::kFooterLineMax);
        if (piece.isEmpty())
            piece = QStringLiteral(".");
        pieces << CleanDeviceText(piece);
    }
    send(dc::Footer(pieces[0], pieces[1], pieces[2], pieces[3]));
}

void FPrinterOperations::dailyZ()
{
    send(dc::ZReportDaily());
    if (state_.LastStatus == kZRefused || state_.LastStatus == kZRefusedOther)
        return;

    state_.LastStatus = 0;
    form_.setComstattxt(kFlashWait);
    progress_.setMax(kZProgressMax);
    progress_.setValue(0);

    // The register is busy writing its memory; only the polls pace this.
    // The last poll is not quiet, so a register that stays silent is seen.
    for (int poll = 0; poll < kZPolls; ++poll) {
        form_.setComstattxt(kFlashWait);
        send(dc::StatusProbe(), poll != kZPolls - 1);
        if (state_.LastStatus == 0)
            break;
        // Each unanswered poll moves the indicator short of its end.
        progress_.setValue(static_cast<qint16>((poll + 1) * (kZProgressMax - 1) / kZPolls));
    }
    if (state_.LastStatus != 0) {
        // The transfer never ended: nothing of it shows as done.
        progress_.setValue(0);
        return;
    }

    progress_.setValue(progress_.Max());
    const qint32 result = tables_->clearOrderStore();
    if (result == -1 || result == -3)
        form_.setComstattxt(kStoreClearFailed);
}

void FPrinterOperations::refusedReport()
{
    op_.message(kWaitCaption.arg(vars_.DeviceLabel), kReportRefused, Operator::Icon::Warning);
}
