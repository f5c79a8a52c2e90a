#include "protocol/DeviceCommands.h"

#include "PrintQString.h"

#include <gtest/gtest.h>

namespace dc = DeviceCommands;

namespace {

// Fixed commands without fields are not repeated here; the status poll, drawer,
// feed, Z and footer commands are checked where the operations send them.
TEST(DeviceCommands, TextsAreCutNumbersFormattedAndEveryEmptyFieldCounted)
{
    const std::pair<QString, const char*> rows[] = {
        {dc::DepartmentData(7), "d/7"},
        {dc::DepartmentTotals(7), "d/7/"},
        {dc::PaymentDefinition(3), "y/3/"},
        {dc::EftTerminalDefinition(12), ",/11/12/"},
        {dc::TableContents(5), "&/11/5//0/0///////////"},
        {dc::Sale("ΨΩΜΙ", "", 1, 1.2, 1, 13), "3/S/ΨΩΜΙ//1.000/1.20/1/13.00/"},
        {dc::Sale("ABCDEFGHIJKLMNOPQ", "X", 0.5, 0.005, 12, 6.5), "3/S/ABCDEFGHIJKLMNO/X/0.500/0.01/12/6.50/"},
        {dc::Return("ΓΑΛΑ", "ΦΡΕΣΚΟ", 2, 3.456, 2, 24), "3/R/ΓΑΛΑ/ΦΡΕΣΚΟ/2.000/3.46/2/24.00/"},
        {dc::Cancellation("ΜΑΚΡΥ ΟΝΟΜΑ ΠΙΑΤΟΥ ΧΩΡΙΣ ΚΟΨΙΜΟ", "", 1, 9, 3, 13),
         "3/C/ΜΑΚΡΥ ΟΝΟΜΑ ΠΙΑΤΟΥ ΧΩΡΙΣ ΚΟΨΙΜΟ//1.000/9.00/3/13.00/"},
        {dc::Discount(5, "ΕΚΠΤΩΣΗ ΜΕΛΟΥΣ ΚΑΡΤΑΣ", 0, 1, 1), "4/5.00//ΕΚΠΤΩΣΗ ΜΕΛΟΥΣ /0/1/1/"},
        {dc::Sale("50%2 OFF", "%1", 1, 1, 1, 0), "3/S/50%2 OFF/%1/1.000/1.00/1/0.00/"},
        {dc::Payment(1, 1, QString(40, 'A')), "5/1/1.00/AAAAAAAAAAAAAAAAAAAAAAAAAAAAAA//////"},
        {dc::PaymentWithoutText(2, 3), "5/2/3.00///////"},
        {dc::CardPayment(3, 10, "VISA", 2), "5/3/10.00/VISA///2/1/"},
        {dc::CardReplacementPayment(1, 10), "5/1/10.00/ΑΝΤΙ ΚΑΡΤΑΣ//////"},
        {dc::CardReplacementPaymentWithText(2, 7.5, "VISA GOLD CARD"), "5/2/7.50/ΑΝΤΙ:VISA GOLD //////"},
        {dc::CardPayment(3, 10, "", 12), "5/3/10.00////12/1/"},
        {dc::Comment(2, QString(35, 'B')), "7/1/2/BBBBBBBBBBBBBBBBBBBBBBBBBBBBBB/"},
        {dc::DocumentNumberLine("A17"), "7/1/2/#A17#/"},
        {dc::CancelCommand(4), "+/4/99/"},
        {dc::TableTitle(9, "   A", " "), "\"/0/9/1/   A/ /"},
        {dc::OpenTable(9), "&/0/9//////////////"},
        {dc::PrepareTableClosing(9, 0), "&/1/9//0////////0.00/////"},
        {dc::PrepareTableClosing(9, 2.5), "&/1/9//0///1/////2.50/////"},
        {dc::PrepareTableClosingWithoutDiscount(9), "&/1/9//0////////////"},
        {dc::PayTable(9, 1, 20, ""), "&/3/9//0/1///////20.00/////"},
        {dc::PayTableByCard(9, 3, 20, "", 2), "&/3/9//0/3///////20.00///2/1/"},
        {dc::TableTokenPayment(9), "&/3/9//0/1///////0.01/////"},
        {dc::MoveWholeTable(1, 2), "&/4/1/2/0/1///////////"},
        {dc::BeginItemMove(1, 2), "&/4/1/2/1/1///////////"},
        {dc::SelectTableLine(9, 3), "&/5/9/3/////////////"},
        {dc::MoveItem(1, 2, 123456), "&/9/1/2/123456////////////"},
        {dc::EndItemMove(1, 2), "&/9/1/2/0////////////"},
        {dc::DeviceCode(100), ")/100/"},
        {dc::TaxServerSettings(true, "http://a.gr/x", QString(64, 'K'), "https://q.gr/r"),
         "]/1/0//http:~~a.gr~x/80/KKKKKKKKKKKKKKKKKKKKKKKKKKKKKKKKKKKKKKKKKKKKKKKKKKKKKKKKKKKKKKKK/https:~~q.gr~r/"},
        {dc::ProgramAlternativePayment(1, "ΜΕΤΡΗΤΑ"), "Y/1/ΜΕΤΡΗΤΑ/ΑΠΠΚ//0/100011010/0/ΑΝΤΙ ΠΙΣΤ.ΚΑΡΤΑ/"},
        {dc::ProgramAlternativePayment(4, "ΕΠΙΤΑΓΗ"), "Y/4/ΕΠΙΤΑΓΗ/ΑΠΠΚ//0/100000001/0/ΑΝΤΙ ΠΙΣΤ.ΚΑΡΤΑ/"},
        {dc::EftBatch(2), "\\/15/2/////////////////"},
        {dc::EditionProbeTitle(), "\"/0/290/1/Kerbano V11.12//"},
        {dc::ReleaseSequence().join(u' '), ")/15/ )/71/ )/15/ )/15/"},
    };
    for (const auto& [built, expected] : rows)
        EXPECT_EQ(built, QString::fromUtf8(expected));
}

} // namespace
