#include "link/PortAddress.h"
#include "link/SerialFrame.h"

#include <gtest/gtest.h>

namespace {

QString framed(const QString& text, const char* digits)
{
    return QChar(0x02) + text + QLatin1String(digits) + QChar(0x03);
}

TEST(CheckDigits, GoldenFrames)
{
    EXPECT_EQ(FrameCommand("?/"), framed("?/", "10"));
    EXPECT_EQ(FrameCommand("a/"), framed("a/", "44"));
    EXPECT_EQ(FrameCommand("x/1/1/99999/"), framed("x/1/1/99999/", "79"));
    EXPECT_EQ(FrameCommand("z/1/2600/"), framed("z/1/2600/", "00"));
    // Outer blanks go on the wire but not into the sum.
    EXPECT_EQ(FrameCommand(" ?/ "), framed(" ?/ ", "10"));
    // Byte sum first (356 -> 100), then modulo 100; 199 stays 99.
    EXPECT_EQ(CheckDigits("ddd8"), 0);
    EXPECT_EQ(CheckDigits("cd"), 99);
    // Greek goes in as its Windows-1253 byte: Α is 0xC1.
    EXPECT_EQ(CheckDigits(QStringLiteral("Α")), 0xC1 % 100);
}

TEST(CheckDigits, CharacterOutsideTheCodePageIsReportedAndSummedAsQuestionMark)
{
    bool invalid = false;
    EXPECT_EQ(CheckDigits(QStringLiteral("?ж"), &invalid), (63 + 63) % 100);
    EXPECT_TRUE(invalid);
    invalid = false;
    CheckDigits(QStringLiteral("ΑΒΓ€"), &invalid);
    EXPECT_FALSE(invalid);
}

TEST(PortAddress, SerialAndNetworkForms)
{
    auto p = PortAddress::parse("com1");
    EXPECT_EQ(p.kind, PortAddress::Kind::Serial);
#ifndef Q_OS_WIN
    EXPECT_EQ(p.device, "/dev/ttyS0");
    EXPECT_EQ(PortAddress::parse("COM3").device, "/dev/ttyS2");
#endif
    p = PortAddress::parse("/dev/ttyUSB0");
    EXPECT_EQ(p.kind, PortAddress::Kind::Serial);
    EXPECT_EQ(p.device, "/dev/ttyUSB0");

    p = PortAddress::parse("192.168.1.20:9101:extra");
    EXPECT_EQ(p.kind, PortAddress::Kind::Tcp);
    EXPECT_EQ(p.address, "192.168.1.20");
    EXPECT_EQ(p.tcpPort, 9101);
    EXPECT_EQ(PortAddress::parse("127.0.0.1:32767").kind, PortAddress::Kind::Tcp);
    // Anything not serial is an address, whatever it holds.
    EXPECT_EQ(PortAddress::parse("LPT1:5").kind, PortAddress::Kind::Tcp);
}

TEST(PortAddress, MissingNonNumericOrTooHighPortIsInvalid)
{
    for (const char* port : {"192.168.1.20", "192.168.1.20:", "192.168.1.20:abc",
                             "192.168.1.20:32768", "192.168.1.20:-1", ""})
        EXPECT_EQ(PortAddress::parse(port).kind, PortAddress::Kind::Invalid) << port;
}

} // namespace
