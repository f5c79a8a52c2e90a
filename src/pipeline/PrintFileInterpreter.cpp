#include "pipeline/PrintFileInterpreter.h"

#include "config/RegionalNumber.h"
#include "config/VatFile.h"
#include "link/DeviceLink.h"
#include "payments/CardRoads.h"
#include "protocol/DeviceCommands.h"
#include "operations/FPrinter.h"
#include "records/ReceiptState.h"
#include "payments/PaymentMap.h"
#include "pipeline/PrintFileColumns.h"
#include "shell/ModuleVariables.h"
#include "shell/ResultSink.h"
#include "shell/TextConversions.h"
#include "tables/DepartmentLookup.h"
#include "tables/MDocData.h"

#include <QDir>
#include <QLocale>
#include <QRegularExpression>
#include <cmath>

namespace {

const QString kSubtotalDiscountText = QStringLiteral("Εκπτωση Μερ.Συν");
const QString kUnknownDepartment = QStringLiteral("ΑΝΥΠΑΡΚΤΟ ΤΜΗΜΑ");
const QString kBadPaymentNumber = QStringLiteral("Λάθος Αριθμός πληρωμής στο αρχείο!");
constexpr qint16 kBadPaymentStatus = 99;
// Environmental fee lines that name no department of their own.
constexpr int kFeeDefaultDepartment = 10;

bool isLowerTag(const QString& line, const char* tag)
{
    const QString t = QLatin1String(tag);
    return column(line, 2, t.size()) == t;
}

bool isAnyCaseTag(const QString& line, const char* tag)
{
    const QString t = QLatin1String(tag);
    return column(line, 2, t.size()).compare(t, Qt::CaseInsensitive) == 0;
}

// The two exact spellings, "TBO" and "tbo"; a mixed spelling is no tag.
bool isUpperOrLowerTag(const QString& line, const char* tag)
{
    const QString t = QLatin1String(tag);
    const QString c = column(line, 2, t.size());
    return c == t.toUpper() || c == t.toLower();
}

int firstLineHolding(const QStringList& lines, const QString& marker)
{
    for (int i = 0; i < lines.size(); ++i) {
        if (lines.at(i).contains(marker))
            return i;
    }
    return -1;
}

} // namespace

int FeeDepartment(const QString& text, int department)
{
    qsizetype p = text.indexOf(QStringLiteral("ΛΠΣΜ"));
    if (p < 0)
        p = text.indexOf(QStringLiteral("ΛΠΣM")); // the last letter a Latin M
    if (p < 0)
        return department;
    const QString dash = text.mid(p + 4, 1);
    const QString digits = text.mid(p + 5, 2);
    static const QRegularExpression twoDigits(QStringLiteral("^\\s*\\d+\\s*$"));
    if (dash == QLatin1String("-") && twoDigits.match(digits).hasMatch())
        return digits.trimmed().toInt();
    return kFeeDefaultDepartment;
}

QString NumberText(double value)
{
    // The shortest text of the number, with the decimal mark of the system.
    QString text = QString::number(value, 'g', 15);
    return text.replace(QLatin1Char('.'), QLocale::system().decimalPoint());
}

PrintFileInterpreter::PrintFileInterpreter(InterpreterContext context, JobSettings settings)
    : ctx_(std::move(context))
    , settings_(std::move(settings))
{
}

void PrintFileInterpreter::run(const QStringList& lines, const std::function<void(int)>& onLine)
{
    // The line index is a 16-bit counter: lines beyond 32767 are never reached.
    const int count = int(std::min<qsizetype>(lines.size(), kMaxLines));
    // The resFile: and tag: lines were read before the walk; they are no tags.
    const int resultLine = firstLineHolding(lines, QStringLiteral("resFile:"));
    const int tagLine = firstLineHolding(lines, QStringLiteral("tag:"));
    for (int i = 0; i < count; ++i) {
        if (onLine)
            onLine(i);
        // The process is ending: the job stops between two lines.
        if (ctx_.vars.Stop != StopCause::None)
            return;
        if (i == resultLine || i == tagLine)
            continue;
        const Flow flow = runLine(lines, i);
        if (flow == Flow::Stop)
            return;
        if (flow == Flow::SkipNext)
            ++i;
    }
}

PrintFileInterpreter::Flow PrintFileInterpreter::runLine(const QStringList& lines, int i)
{
    const QString& line = lines.at(i);
    if (isAnyCaseTag(line, "MKZ")) {
        mkz();
    } else if (isAnyCaseTag(line, "PLU")) {
        return plu(lines, i);
    } else if (isLowerTag(line, "dis")) {
        dis(line);
    } else if (isLowerTag(line, "mod")) {
        mod(line);
    } else if (isLowerTag(line, "to")) {
        to(line);
    } else if (isLowerTag(line, "foo")) {
        footer(line, QStringLiteral("foo"));
    } else if (isLowerTag(line, "frt")) {
        footer(line, QStringLiteral("frt"));
    } else if (isLowerTag(line, "com")) {
        com(line);
    } else if (isUpperOrLowerTag(line, "TBO") || isUpperOrLowerTag(line, "TBC")
               || isUpperOrLowerTag(line, "TBT") || isUpperOrLowerTag(line, "TPT")
               || isUpperOrLowerTag(line, "TBS")) {
        return tableLine(line);
    } else if (isUpperOrLowerTag(line, "SND")) {
        snd(line);
    } else if (isUpperOrLowerTag(line, "PRG")) {
        prg(line);
    } else if (isAnyCaseTag(line, "pay")) {
        pay(line);
    } else if (isLowerTag(line, "can")) {
        can(line);
    } else if (isLowerTag(line, "voi")) {
        voi();
    } else if (isLowerTag(line, "ltb")) {
        ltb(line);
    } else if (isLowerTag(line, "exit")) {
        return Flow::Stop;
    }
    return Flow::Next;
}

double PrintFileInterpreter::parseNumber(const QString& text) const
{
    return ParseRegionalNumber(text, &ctx_.op);
}

QString PrintFileInterpreter::deviceText(const QString& text) const
{
    return CleanDeviceText(DecodeFileText(text, ctx_.vars.cpDOS));
}

QString PrintFileInterpreter::vatsPath() const
{
    return QDir(ctx_.workingDirectory).filePath(QStringLiteral("vats.dat"));
}

QString PrintFileInterpreter::payeftPath() const
{
    return QDir(ctx_.workingDirectory).filePath(QStringLiteral("payeft.dat"));
}

PrintFileInterpreter::Flow PrintFileInterpreter::plu(const QStringList& lines, int i)
{
    const QString& line = lines.at(i);
    ReceiptState& r = ctx_.receipt;

    const QString priceText = column(line, 57, 9).trimmed();
    r.ItemPrice = parseNumber(priceText.isEmpty() ? QStringLiteral("1") : priceText);
    const QString qtyText = column(line, 48, 7).trimmed();
    r.ItemQty = qtyText.isEmpty() ? 0.0 : parseNumber(qtyText);

    const QString depText = column(line, 74, 3).trimmed();
    int department = isNumericField(depText) ? int(parseNumber(depText)) : 0;
    const QString vatText = column(line, 69, 5).trimmed();
    double vatNumber = vatText.isEmpty() ? 0.0 : parseNumber(vatText);

    if (settings_.dirDepa == QLatin1String("fals"))
        department = VatCategoryOfRate(vatsPath(), vatNumber);

    QString description = column(line, 20, 24).toUpper().trimmed();
    if (FeeDepartment(DecodeFileText(description, ctx_.vars.cpDOS), department) != department)
        vatNumber = VatCategoryOfRate(vatsPath(), vatNumber);

    if (settings_.printDesc != QLatin1String("true")) {
        const clsDepartmentInfo info = ReadDepartment(ctx_.link, qint16(department), vatsPath());
        description = info.Result == 0 ? info.DepDesc : kUnknownDepartment;
    }

    if (settings_.quantity != QLatin1String("true")) {
        r.ItemPrice = r.ItemPrice * r.ItemQty;
        r.ItemQty = 1.0;
    }

    const bool lastLine = (i + 1 >= lines.size());
    const bool specialReturn = ctx_.vars.spRet && !lastLine && (r.ItemPrice < 0 || r.ItemQty < 0);
    if (!specialReturn) {
        sellItem(description, vatNumber, department);
        return Flow::Next;
    }
    return specialReturnItem(lines.at(i + 1), description, vatNumber, department);
}

// A negative item followed by its discount line: the discount is folded into
// the price and printed as a comment, so the register never sees a discount
// on a return.
PrintFileInterpreter::Flow PrintFileInterpreter::specialReturnItem(const QString& nextLine,
                                                                  const QString& description,
                                                                  double vatNumber, int department)
{
    ReceiptState& r = ctx_.receipt;
    const QString discountField = column(nextLine, 7, 9).trimmed();
    const bool merges = column(nextLine, 2, 3) == QLatin1String("mod")
        && isNumericField(QString(discountField).remove(QLatin1Char('%')));

    double rate = 0.0;
    QString note;
    bool isPercent = false;
    QString next = nextLine;
    if (merges) {
        next.replace(QLatin1Char('-'), QLatin1Char(' '));
        const QString rateField = column(next, 7, 9);
        rate = std::fabs(parseNumber(QString(rateField).remove(QLatin1Char('%')).trimmed()));
        note = column(next, 17, 24).trimmed();
        isPercent = rateField.contains(QLatin1Char('%'));
    }

    double cut = 0.0;
    if (isPercent) {
        cut = std::fabs(rate * r.ItemPrice / 100.0 * r.ItemQty);
        r.ItemPrice = r.ItemPrice * r.ItemQty - r.ItemPrice * r.ItemQty * rate / 100.0;
    } else {
        cut = rate;
        r.ItemPrice = r.ItemPrice * r.ItemQty + rate;
    }
    const QString count = NumberText(std::fabs(r.ItemQty));
    r.ItemQty = 1.0;

    if (r.ItemPrice == 0.0)
        return Flow::SkipNext; // nothing is sold, and the line behind goes with it

    sellItem(description, vatNumber, department);
    if (!merges)
        return Flow::Next;

    QString comment;
    if (!note.isEmpty()) {
        comment = QLatin1Char('*') + note;
    } else {
        comment = count + QStringLiteral(" ΤΕΜ ") + QStringLiteral("Έκπτ=") + column(next, 7, 9).trimmed();
        if (isPercent)
            comment += QLatin1Char('=') + NumberText(cut);
        comment += QStringLiteral(" Ευρώ");
    }
    QVariant a(1), b(1), c(1);
    ctx_.printer.FPrinterWrite(CleanDeviceText(comment), a, b, c, QStringLiteral("comItemmoError"));
    return Flow::SkipNext;
}

void PrintFileInterpreter::sellItem(const QString& description, double vatNumber, int department)
{
    QVariant a(ctx_.receipt.ItemPrice), b(vatNumber), c(department);
    ctx_.printer.FPrinterWrite(deviceText(description), a, b, c, QStringLiteral("plu"));
}

void PrintFileInterpreter::mod(const QString& line)
{
    ctx_.receipt.DiscountScope = 0;
    QString value = column(line, 7, 9).trimmed();
    const int kind = value.endsWith(QLatin1Char('%')) ? 0 : 1;
    const int sign = value.startsWith(QLatin1Char('-')) ? 0 : 1;
    value.remove(QLatin1Char('-')).remove(QLatin1Char('%'));
    if (value.isEmpty())
        return;
    const double amount = 0.0 - parseNumber(value);
    const QString description = column(line, 17, 24).trimmed();
    if (amount == 0.0)
        return;
    QVariant a(amount), b(sign), c(kind);
    ctx_.printer.FPrinterWrite(deviceText(description), a, b, c, QStringLiteral("dis"));
}

void PrintFileInterpreter::dis(const QString& line)
{
    const QString value = column(line, 7, 8).trimmed();
    if (value.isEmpty())
        return;
    const double amount = 0.0 - parseNumber(value);
    ctx_.receipt.DiscountScope = 1;
    const int sign = amount < 0 ? 0 : 1;
    if (amount == 0.0)
        return;
    QVariant a(amount), b(sign), c(1);
    ctx_.printer.FPrinterWrite(kSubtotalDiscountText, a, b, c, QStringLiteral("dis"));
}

void PrintFileInterpreter::com(const QString& line)
{
    if (settings_.comments != QLatin1String("true") && settings_.comments != QLatin1String("TRUE"))
        return;
    QVariant a{QString()}, b{QString()}, c{QString()};
    ctx_.printer.FPrinterWrite(deviceText(column(line, 7, 30).toUpper()), a, b, c,
                               QStringLiteral("comItem"));
}

void PrintFileInterpreter::footer(const QString& line, const QString& op)
{
    QVariant a{QString()}, b{QString()}, c{QString()};
    ctx_.printer.FPrinterWrite(deviceText(fromColumn(line, 7)), a, b, c, op);
}

void PrintFileInterpreter::to(const QString& line)
{
    const QString& currency = settings_.currency;
    if (currency == QLatin1String("0")) {
        const QString number = column(line, 8, 1);
        paymentNumber_ = isNumericField(number) ? qint16(number.trimmed().toInt()) : qint16(-1);
    } else if (currency == QLatin1String("1") || currency == QLatin1String("2")) {
        paymentNumber_ = 1;
    }
    const QString amountText = column(line, 11, 9).trimmed();
    if (!amountText.isEmpty())
        paymentAmount_ = parseNumber(amountText);
    const QString text = deviceText(column(line, 20, 15));
    if (paymentNumber_ <= 0)
        return;
    QVariant a(paymentAmount_), b(static_cast<int>(paymentNumber_)), c(ctx_.vars.JobTag);
    ctx_.printer.FPrinterWrite(text, a, b, c, QStringLiteral("tot"));
}

void PrintFileInterpreter::pay(const QString& line)
{
    const QString number = column(line, 7, 2);
    if (!isNumericField(number) || number.contains(QLatin1Char('.'))
        || number.contains(QLatin1Char(','))) {
        ctx_.link.ShowDeviceMessage(kBadPaymentStatus, kBadPaymentNumber);
        return;
    }
    const qint16 payment = qint16(number.trimmed().toInt());
    const PayEftRecord record = PaymentMapLookup(payment, payeftPath(), ctx_.op);
    if (ctx_.receipt.TableMode == 1 || ctx_.receipt.TableMode == 2) {
        payOnTable(payment);
        return;
    }
    if (ctx_.receipt.TableMode != 0)
        return;
    if (record.isActive() && !record.isPreCollect()) {
        ctx_.cards.payFromMapInReceipt(
            record, [this] { return mDocData(ctx_.link).ReadRemainingAmount(); });
        return;
    }
    const double remaining = mDocData(ctx_.link).ReadRemainingAmount();
    sendReceiptCommand(DeviceCommands::PaymentWithoutText(payment, remaining));
}

void PrintFileInterpreter::can(const QString& line)
{
    if (ctx_.receipt.TableMode != 0)
        return;
    const QString number = column(line, 7, 6).trimmed();
    if (isNumericField(number))
        voidNumber_ = qint32(parseNumber(number));
    sendReceiptCommand(DeviceCommands::CancelCommand(voidNumber_));
}

void PrintFileInterpreter::voi()
{
    if (ctx_.receipt.TableMode != 0) {
        voiOnTable();
        return;
    }
    sendReceiptCommand(DeviceCommands::VoidDocument());
}

void PrintFileInterpreter::snd(const QString& line)
{
    sendReceiptCommand(column(line, 7, 90));
    QString reply = ctx_.receipt.LastReply;
    reply.replace(QLatin1Char('\n'), QLatin1Char('~'));
    ctx_.results.appendResultLine(QStringLiteral("sndReply = %1;%2").arg(ctx_.receipt.LastStatus).arg(reply));
}

void PrintFileInterpreter::prg(const QString& line)
{
    QVariant a{QString()}, b{QString()}, c{QString()};
    ctx_.printer.FPrinterWrite(DecodeFileText(column(line, 6, 90).trimmed(), ctx_.vars.cpDOS), a,
                               b, c, QStringLiteral("prg"));
}

void PrintFileInterpreter::mkz()
{
    if (ctx_.runDailyZ)
        ctx_.runDailyZ();
    if (!ctx_.link.isConnected()) {
        qint16 status = 0;
        QString reply;
        ctx_.link.OpenDeviceLink(ctx_.vars.port, status, reply, false);
    }
}

void PrintFileInterpreter::sendReceiptCommand(const QString& command)
{
    ctx_.link.SendCommand(command, ctx_.receipt.LastStatus, ctx_.receipt.LastReply);
}
