#include "link/PortAddress.h"
#include "link/SerialFrame.h"

#include "DataFile.h"
#include "PrintQString.h"

#include <gtest/gtest.h>

namespace {

// Rows of link/frames.txt: a command and the check digits its frame carries.
TEST(CheckDigits, GoldenFramesAndSums)
{
    const QStringList rows = DataLines("link/frames.txt");
    ASSERT_GT(rows.size(), 6);
    for (const QString& row : rows) {
        const QString text = row.section(u'\t', 0, 0);
        const QString digits = row.section(u'\t', 1);
        EXPECT_EQ(FrameCommand(text), QChar(0x02) + text + digits + QChar(0x03)) << qPrintable(row);
        EXPECT_EQ(CheckDigits(text), digits.toInt()) << qPrintable(row);
    }
    // Greek goes in as its Windows-1253 byte: Α is 0xC1.
    EXPECT_EQ(CheckDigits(QStringLiteral("Α")), 0xC1 % 100);
    // A character outside the code page is reported and summed as a question mark.
    bool invalid = false;
    EXPECT_EQ(CheckDigits(QStringLiteral("?ж"), &invalid), (63 + 63) % 100);
    EXPECT_TRUE(invalid);
    invalid = false;
    CheckDigits(QStringLiteral("ΑΒΓ€"), &invalid);
    EXPECT_FALSE(invalid);
}

// Anything not serial is an address, whatever it holds; an address without a
// whole port number up to 32767 is invalid.
TEST(PortAddress, SerialNetworkAndInvalidForms)
{
    const QStringList kinds = {"serial", "tcp", "invalid"};
    const QStringList rows = DataLines("link/port-addresses.txt");
    ASSERT_GT(rows.size(), 10);
    for (const QString& row : rows) {
        const QStringList cell = row.split(u'\t');
        const PortAddress p = PortAddress::parse(cell.value(0) == "-" ? QString() : cell.value(0));
        const QString seen = kinds.value(int(p.kind)) + (p.kind == PortAddress::Kind::Serial ? " " + p.device
                             : p.kind == PortAddress::Kind::Tcp ? QStringLiteral(" %1 %2").arg(p.address).arg(p.tcpPort)
                                                                : QString());
#ifdef Q_OS_WIN
        if (cell.value(0).startsWith(u"com", Qt::CaseInsensitive))
            continue; // COM names stay as they are there
#endif
        EXPECT_EQ(seen, cell.value(1)) << qPrintable(row);
    }
}

} // namespace
