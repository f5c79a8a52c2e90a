#pragma once

#include <QList>
#include <QString>
#include <QStringList>

// Every command the driver sends to the register is written here, each with
// its exact run of slashes: the register counts fields, so an empty field is
// kept as two adjacent slashes. Numbers go through FormatDeviceNumber; text
// fields are cut to their limits, never refused. Only the raw commands of a
// print file (SND, PRG) reach the register without passing through here.
namespace DeviceCommands {

// Field limits of the register.
inline constexpr int kFirstDescriptionMax = 15;
inline constexpr int kSecondDescriptionMax = 30;
inline constexpr int kDiscountTextMax = 15;
inline constexpr int kPaymentTextMax = 30;
inline constexpr int kCommentTextMax = 30;
inline constexpr int kFooterLineMax = 32;
inline constexpr int kReplacementTextMax = 15;
inline constexpr int kQuantityDecimals = 3;
inline constexpr int kAmountDecimals = 2;

// The table the edition probe of the identification programs and opens, and
// the program's version as that table's title shows it.
inline constexpr int kProbeTable = 290;
inline constexpr int kTitleMajorVersion = 11;
inline constexpr int kTitleMinorVersion = 12;

// Reading the register.
QString StatusProbe();                       // ?/
QString DeviceSerial();                      // a/
QString Versions();                          // v/
QString Counters();                          // i/
QString CurrentReceipt();                    // 9/
QString VatTable();                          // e/
QString DepartmentData(int department);      // d/<department>, no closing slash
QString DepartmentTotals(int department);    // d/<department>/
QString ZDataFiscal();                       // 0/
QString ZDataTotals();                       // t/
QString ZDataSums();                         // s/
QString PaymentDefinition(int payment);      // y/<payment>/
QString EftTerminalDefinition(int terminal); // ,/11/<terminal>/
QString TableContents(int table);            // &/11/<table>//0/0///////////

// Sale.
QString Sale(const QString& name, const QString& name2, double quantity, double price,
             int department, double vatRate);
QString Return(const QString& name, const QString& name2, double quantity, double price,
               int department, double vatRate);
QString Cancellation(const QString& name, const QString& name2, double quantity, double price,
                     int department, double vatRate);
// type 0 discount, 1 surcharge; scope 0 last item, 1 subtotal; kind 0 percentage, 1 amount.
QString Discount(double amount, const QString& text, int type, int scope, int kind);
QString Payment(int payment, double amount, const QString& text);
QString PaymentWithoutText(int payment, double amount);
QString CardPayment(int payment, double amount, const QString& text, int terminal);
QString CardReplacementPayment(int payment, double amount); // text "ΑΝΤΙ ΚΑΡΤΑΣ"
// The alternative of a tot card payment: "ΑΝΤΙ:" and the text, cut to 15 together.
QString CardReplacementPaymentWithText(int payment, double amount, const QString& text);
QString ZeroPayment();                                      // 5/1/0.00////
QString EftOutcomeQuery();                                  // 5/99/0/ ///1/1/
QString ReceivedOnAccount();                                // 6/0/  (roa)
QString PaidOut();                                          // 6/1/  (pot)
QString PreCollectionDocument();                            // 6/0/1//
QString Comment(int style, const QString& text);
QString DocumentNumberCaption(); // 7/1/1/Αριθμ. Παραστατικού:/
QString DocumentNumberLine(const QString& tag);
QString CustomerDisplay(int line, const QString& text);
QString ReportDisplayAmount(); // 7/0/1/            0.00/
QString ReportDisplayReady();  // 7/0/2/ *** Ετοιμη *** /
QString Footer(const QString& line1, const QString& line2, const QString& line3,
               const QString& line4);
QString BlankFooter(); // F/0/./0/./0/./0/./0/./0/./
QString Header();      // E/
QString ComEFirst();   // m/
QString ComESecond();  // k/0/0
QString VoidDocument(); // +/
QString CancelCommand(int number);

// Tables.
QString TableTitle(int table, const QString& line1, const QString& line2);
QString OpenTable(int table);
QString PrepareTableClosing(int table, double discount);
QString PrepareTableClosingWithoutDiscount(int table);
QString PayTable(int table, int payment, double amount, const QString& text);
QString PayTableByCard(int table, int payment, double amount, const QString& text, int terminal);
QString TableTokenPayment(int table);
QString MoveWholeTable(int from, int to);
QString BeginItemMove(int from, int to);
QString SelectTableLine(int table, int order);
QString MoveItem(int from, int to, qint32 identifier);
QString EndItemMove(int from, int to);
QString TablesDetailReport();
QString TablesSummaryReport();
// The edition probe: table 290 titled "Kerbano V11.12", second title empty.
QString EditionProbeTitle();
// The tables a table command sent names: the table it works on, both tables
// of a move; none for the reports and for any other command.
QList<int> TablesNamedBy(const QString& command);

// Control and reports.
QString DrawerSetting(int value); // I/<value>/0
QString OperationNs();            // L/
QString PaperFeed(int station, int lines);
QString XReportFinancial();  // x/1/1/99999/
QString XReportSelector2();  // x/2/1/
QString XReportSelector6();  // x/6/1/
QString XReportSecond();     // x/8/1/99999/
QString ZReportDaily();      // x/7///
QString Report5ZP();         // z/1/2600/
QString DeviceCode(int code); // )/<code>/
// Frees a register whose zero payment answered 70: )/15/, )/71/, )/15/, )/15/.
QStringList ReleaseSequence();
QString TaxServerSettings(bool connect, const QString& server, const QString& aesKey,
                          const QString& qrAddress);
QString ProgramAlternativePayment(int alternative, const QString& text);
QString EftBatch(int terminal);
// The notice of a receipt whose card payment was replaced: two display lines,
// then the printed warning and five empty lines, in the order they go out.
QStringList PendingPaymentNotice();

} // namespace DeviceCommands
