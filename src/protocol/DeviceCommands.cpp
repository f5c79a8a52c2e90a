#include "protocol/DeviceCommands.h"

#include "config/RegionalNumber.h"

namespace DeviceCommands {

namespace {

QString n(int value) { return QString::number(value); }
QString qty(double value) { return FormatDeviceNumber(value, kQuantityDecimals); }
QString amt(double value) { return FormatDeviceNumber(value, kAmountDecimals); }

// A pattern with %1.. filled in one pass, so a "%" inside a text stays as it is.
template <typename... Args>
QString fill(const char16_t* pattern, const Args&... args)
{
    return QString::fromUtf16(pattern).arg(args...);
}

QString itemLine(QChar kind, const QString& name, const QString& name2, double quantity,
                 double price, int department, double vatRate)
{
    return fill(u"3/%1/%2/%3/%4/%5/%6/%7/", QString(kind), name.left(kFirstDescriptionMax),
                name2.left(kSecondDescriptionMax), qty(quantity), amt(price), n(department),
                amt(vatRate));
}

// The table operations that name two tables, and the one that names none.
constexpr int kMoveOperation = 4;
constexpr int kMoveItemOperation = 9;
constexpr int kReportOperation = 10;

QString webAddress(const QString& text)
{
    QString out = text;
    out.replace(QLatin1Char('/'), QLatin1Char('~'));
    return out;
}

} // namespace

QString StatusProbe() { return QStringLiteral("?/"); }
QString DeviceSerial() { return QStringLiteral("a/"); }
QString Versions() { return QStringLiteral("v/"); }
QString Counters() { return QStringLiteral("i/"); }
QString CurrentReceipt() { return QStringLiteral("9/"); }
QString VatTable() { return QStringLiteral("e/"); }
QString DepartmentData(int department) { return fill(u"d/%1", n(department)); }
QString DepartmentTotals(int department) { return fill(u"d/%1/", n(department)); }
QString ZDataFiscal() { return QStringLiteral("0/"); }
QString ZDataTotals() { return QStringLiteral("t/"); }
QString ZDataSums() { return QStringLiteral("s/"); }
QString PaymentDefinition(int payment) { return fill(u"y/%1/", n(payment)); }
QString EftTerminalDefinition(int terminal) { return fill(u",/11/%1/", n(terminal)); }
QString TableContents(int table) { return fill(u"&/11/%1//0/0///////////", n(table)); }

QString Sale(const QString& name, const QString& name2, double quantity, double price,
             int department, double vatRate)
{
    return itemLine(QLatin1Char('S'), name, name2, quantity, price, department, vatRate);
}

QString Return(const QString& name, const QString& name2, double quantity, double price,
               int department, double vatRate)
{
    return itemLine(QLatin1Char('R'), name, name2, quantity, price, department, vatRate);
}

QString Cancellation(const QString& name, const QString& name2, double quantity, double price,
                     int department, double vatRate)
{
    // The whole-table void puts a full description in the first field, so
    // this one is not cut.
    return fill(u"3/C/%1/%2/%3/%4/%5/%6/", name, name2.left(kSecondDescriptionMax), qty(quantity),
                amt(price), n(department), amt(vatRate));
}

QString Discount(double amount, const QString& text, int type, int scope, int kind)
{
    return fill(u"4/%1//%2/%3/%4/%5/", amt(amount), text.left(kDiscountTextMax), n(type), n(scope),
                n(kind));
}

QString Payment(int payment, double amount, const QString& text)
{
    return fill(u"5/%1/%2/%3//////", n(payment), amt(amount), text.left(kPaymentTextMax));
}

QString PaymentWithoutText(int payment, double amount)
{
    return fill(u"5/%1/%2///////", n(payment), amt(amount));
}

QString CardPayment(int payment, double amount, const QString& text, int terminal)
{
    return fill(u"5/%1/%2/%3///%4/1/", n(payment), amt(amount), text.left(kPaymentTextMax),
                n(terminal));
}

QString CardReplacementPayment(int payment, double amount)
{
    return fill(u"5/%1/%2/ΑΝΤΙ ΚΑΡΤΑΣ//////", n(payment), amt(amount));
}

QString CardReplacementPaymentWithText(int payment, double amount, const QString& text)
{
    return Payment(payment, amount, (QStringLiteral("ΑΝΤΙ:") + text).left(kReplacementTextMax));
}

QString ZeroPayment() { return QStringLiteral("5/1/0.00////"); }
QString EftOutcomeQuery() { return QStringLiteral("5/99/0/ ///1/1/"); }
QString ReceivedOnAccount() { return QStringLiteral("6/0/"); }
QString PaidOut() { return QStringLiteral("6/1/"); }
QString PreCollectionDocument() { return QStringLiteral("6/0/1//"); }

QString Comment(int style, const QString& text)
{
    return fill(u"7/1/%1/%2/", n(style), text.left(kCommentTextMax));
}

QString DocumentNumberCaption() { return QStringLiteral("7/1/1/Αριθμ. Παραστατικού:/"); }
QString DocumentNumberLine(const QString& tag) { return fill(u"7/1/2/#%1#/", tag); }
QString CustomerDisplay(int line, const QString& text) { return fill(u"7/0/%1/%2/", n(line), text); }
QString ReportDisplayAmount() { return QStringLiteral("7/0/1/            0.00/"); }
QString ReportDisplayReady() { return QStringLiteral("7/0/2/ *** Ετοιμη *** /"); }

QString Footer(const QString& line1, const QString& line2, const QString& line3,
               const QString& line4)
{
    return fill(u"j/%1/%2/%3/%4/////", line1.left(kFooterLineMax), line2.left(kFooterLineMax),
                line3.left(kFooterLineMax), line4.left(kFooterLineMax));
}

QString BlankFooter() { return QStringLiteral("F/0/./0/./0/./0/./0/./0/./"); }
QString Header() { return QStringLiteral("E/"); }
QString ComEFirst() { return QStringLiteral("m/"); }
QString ComESecond() { return QStringLiteral("k/0/0"); }
QString VoidDocument() { return QStringLiteral("+/"); }
QString CancelCommand(int number) { return fill(u"+/%1/99/", n(number)); }

QString TableTitle(int table, const QString& line1, const QString& line2)
{
    return fill(u"\"/0/%1/1/%2/%3/", n(table), line1, line2);
}

QString OpenTable(int table) { return fill(u"&/0/%1//////////////", n(table)); }

QString PrepareTableClosing(int table, double discount)
{
    const QString flag = discount != 0.0 ? QStringLiteral("1") : QString();
    return fill(u"&/1/%1//0///%2/////%3/////", n(table), flag, amt(discount));
}

QString PrepareTableClosingWithoutDiscount(int table)
{
    return fill(u"&/1/%1//0////////////", n(table));
}

QString PayTable(int table, int payment, double amount, const QString& text)
{
    return fill(u"&/3/%1//0/%2///////%3/%4////", n(table), n(payment), amt(amount), text);
}

QString PayTableByCard(int table, int payment, double amount, const QString& text, int terminal)
{
    return fill(u"&/3/%1//0/%2///////%3/%4//%5/1/", n(table), n(payment), amt(amount), text,
                n(terminal));
}

QString TableTokenPayment(int table) { return fill(u"&/3/%1//0/1///////0.01/////", n(table)); }
QString MoveWholeTable(int from, int to) { return fill(u"&/4/%1/%2/0/1///////////", n(from), n(to)); }
QString BeginItemMove(int from, int to) { return fill(u"&/4/%1/%2/1/1///////////", n(from), n(to)); }

QString SelectTableLine(int table, int order)
{
    return fill(u"&/5/%1/%2/////////////", n(table), n(order));
}

QString MoveItem(int from, int to, qint32 identifier)
{
    return fill(u"&/9/%1/%2/%3////////////", n(from), n(to), QString::number(identifier));
}

QString EndItemMove(int from, int to) { return fill(u"&/9/%1/%2/0////////////", n(from), n(to)); }
QString TablesDetailReport() { return QStringLiteral("&/10/1/290/1////////////"); }
QString TablesSummaryReport() { return QStringLiteral("&/10/1/290/0////////////"); }

QString EditionProbeTitle()
{
    return TableTitle(kProbeTable,
                      QStringLiteral("Kerbano V") + n(kTitleMajorVersion) + QLatin1Char('.')
                          + n(kTitleMinorVersion),
                      QString());
}

QList<int> TablesNamedBy(const QString& command)
{
    const QStringList fields = command.split(QLatin1Char('/'));
    const auto table = [&fields](int field) { return fields.value(field).toInt(); };
    QList<int> tables;
    if (fields.value(0) == QLatin1String("\"")) {
        tables << table(2); // a title
    } else if (fields.value(0) == QLatin1String("&")) {
        const int operation = table(1);
        if (operation == kReportOperation)
            return {};
        tables << table(2);
        if (operation == kMoveOperation || operation == kMoveItemOperation)
            tables << table(3);
    }
    tables.removeIf([](int t) { return t < 1; });
    return tables;
}

QString DrawerSetting(int value) { return fill(u"I/%1/0", n(value)); }
QString OperationNs() { return QStringLiteral("L/"); }
QString PaperFeed(int station, int lines) { return fill(u"w/%1/%2/", n(station), n(lines)); }
QString XReportFinancial() { return QStringLiteral("x/1/1/99999/"); }
QString XReportSelector2() { return QStringLiteral("x/2/1/"); }
QString XReportSelector6() { return QStringLiteral("x/6/1/"); }
QString XReportSecond() { return QStringLiteral("x/8/1/99999/"); }
QString ZReportDaily() { return QStringLiteral("x/7///"); }
QString Report5ZP() { return QStringLiteral("z/1/2600/"); }
QString DeviceCode(int code) { return fill(u")/%1/", n(code)); }

QStringList ReleaseSequence()
{
    return {DeviceCode(15), DeviceCode(71), DeviceCode(15), DeviceCode(15)};
}

QString TaxServerSettings(bool connect, const QString& server, const QString& aesKey,
                          const QString& qrAddress)
{
    return fill(u"]/%1/0//%2/80/%3/%4/", connect ? QStringLiteral("1") : QStringLiteral("0"),
                webAddress(server), aesKey, webAddress(qrAddress));
}

QString ProgramAlternativePayment(int alternative, const QString& text)
{
    // The mask is the register's; the first flag makes the payment active.
    const QString mask = alternative == 1 ? QStringLiteral("100011010") : QStringLiteral("100000001");
    return fill(u"Y/%1/%2/ΑΠΠΚ//0/%3/0/ΑΝΤΙ ΠΙΣΤ.ΚΑΡΤΑ/", n(alternative), text, mask);
}

QString EftBatch(int terminal) { return fill(u"\\/15/%1/////////////////", n(terminal)); }

QStringList PendingPaymentNotice()
{
    QStringList notice{
        CustomerDisplay(1, QStringLiteral("ΕΚΚΡΕΜ. ΠΛΗΡΩΜΕΣ")),
        CustomerDisplay(2, QString(16, QLatin1Char(' '))),
        Comment(2, QStringLiteral("ΠΡΟΣΟΧΗ!")),
        Comment(1, QStringLiteral(" Η ΑΠΟΔΕΙΞΗ ΠΕΡΙΕΧΕΙ ΠΛΗΡΩΜΕΣ ")),
        Comment(1, QStringLiteral("   ΠΙΣΤ.ΚΑΡΤΩΝ ΠΟΥ ΑΠΕΤΥΧΑΝ")),
        Comment(1, QStringLiteral("ΥΠΑΡΧΕΙ ΥΠΟΛΟΙΠΟ ΠΡΟΣ ΕΙΣΠΡΑΞΗ")),
        Comment(1, QStringLiteral("       ΑΠΟ ΤΟΝ ΠΕΛΑΤΗ")),
    };
    constexpr int kEmptyLines = 5;
    for (int i = 0; i < kEmptyLines; ++i)
        notice << Comment(1, QString());
    return notice;
}

} // namespace DeviceCommands
