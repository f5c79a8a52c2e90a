// The real TCP pipe against a loopback port nobody listens on. Real exchanges
// over sockets and pseudo-terminals are the end-to-end tests' world.
#include "link/QtTransportFactory.h"

#include <gtest/gtest.h>

#ifdef Q_OS_UNIX
#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

TEST(RealTcpLink, RefusedConnectionIsStatusMinusSix)
{
    // A port the system hands out, bound and never listening.
    const int fd = ::socket(AF_INET, SOCK_STREAM, 0);
    sockaddr_in a{};
    a.sin_family = AF_INET;
    a.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t size = sizeof a;
    ASSERT_EQ(::bind(fd, reinterpret_cast<sockaddr*>(&a), size), 0);
    ASSERT_EQ(::getsockname(fd, reinterpret_cast<sockaddr*>(&a), &size), 0);
    qint16 status = 99;
    const auto pipe = QtTransportFactory().connectTcp(QStringLiteral("127.0.0.1"), ntohs(a.sin_port), status);
    ::close(fd);
    EXPECT_EQ(status, -6);
    EXPECT_FALSE(pipe);
}

#endif
