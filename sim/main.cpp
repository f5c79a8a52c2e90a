// kerbano-ecr-sim: a Greek fiscal register on a TCP port or a pseudo-terminal.
#include "SimRegister.h"
#include "WireServer.h"
#include "shell/Clock.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QFile>

#include <cstdio>

int main(int argc, char** argv)
{
    QCoreApplication app(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("kerbano-ecr-sim"));
    QCoreApplication::setApplicationVersion(QStringLiteral(KERBANO_VERSION));

    QCommandLineParser p;
    p.setApplicationDescription(QStringLiteral(
        "Virtual Greek fiscal register for Kerbano: answers the register's commands on a TCP port\n"
        "(plain text) or on a pseudo-terminal (ENQ/ACK, STX text check-digits ETX), keeps a register's\n"
        "memory, prints a paper tape and plays faults from a script. See sim/README.md."));
    p.addHelpOption();
    p.addVersionOption();
    const QCommandLineOption tcp(QStringLiteral("tcp"), QStringLiteral("Serve plain TCP on HOST:PORT (default 127.0.0.1:9101)."),
                                 QStringLiteral("HOST:PORT"));
    const QCommandLineOption pty(QStringLiteral("pty"),
                                 QStringLiteral("Make a pseudo-terminal and link its slave at PATH (serial protocol). "
                                                "Without --tcp, only the pseudo-terminal is served."),
                                 QStringLiteral("PATH"));
    const QCommandLineOption baud(QStringLiteral("baud"),
                                  QStringLiteral("With --pty, time the line at N baud: a frame is taken in and its reply "
                                                 "let out as a cable at that speed would carry them."),
                                  QStringLiteral("N"));
    const QCommandLineOption state(QStringLiteral("state"),
                                   QStringLiteral("Keep the register's memory in DIR across runs (crash-safe writes)."),
                                   QStringLiteral("DIR"));
    const QCommandLineOption journal(QStringLiteral("journal"),
                                     QStringLiteral("Append one UTF-8 line per exchange: command -> reply."),
                                     QStringLiteral("FILE"));
    const QCommandLineOption tape(QStringLiteral("tape"), QStringLiteral("Append what the register prints (UTF-8)."),
                                  QStringLiteral("FILE"));
    const QCommandLineOption faults(QStringLiteral("faults"),
                                    QStringLiteral("Fault script: busy, paper end, silence, NACK, split or late reply, "
                                                   "dropped connection, unanswered ENQ, card outcomes."),
                                    QStringLiteral("FILE"));
    const QCommandLineOption model(QStringLiteral("model"), QStringLiteral("Model prefix answered to a/ (default DNT)."),
                                   QStringLiteral("PREFIX"));
    const QCommandLineOption serial(QStringLiteral("serial"), QStringLiteral("Serial digits answered to a/."),
                                    QStringLiteral("DIGITS"));
    p.addOptions({tcp, pty, baud, state, journal, tape, faults, model, serial});
    p.process(app);

    RealClock clock;
    SimRegister::Options o;
    o.stateDir = p.value(state);
    o.journalPath = p.value(journal);
    o.tapePath = p.value(tape);
    o.modelPrefix = p.value(model);
    o.serialDigits = p.value(serial);
    SimRegister reg(o, clock);
    if (!reg.lastError().isEmpty())
        std::fprintf(stderr, "kerbano-ecr-sim: %s; starting from the factory memory\n", qPrintable(reg.lastError()));

    if (p.isSet(faults)) {
        QFile f(p.value(faults));
        QString error;
        if (!f.open(QIODevice::ReadOnly) || !reg.loadFaults(QString::fromUtf8(f.readAll()), &error)) {
            std::fprintf(stderr, "kerbano-ecr-sim: fault script %s: %s\n", qPrintable(f.fileName()),
                         qPrintable(error.isEmpty() ? f.errorString() : error));
            return 2;
        }
    }

    WireServer server(reg, clock);
    QString error;
    if (p.isSet(pty) && !server.openPty(p.value(pty), p.value(baud).toInt(), &error)) {
        std::fprintf(stderr, "kerbano-ecr-sim: %s\n", qPrintable(error));
        return 1;
    }
    if (p.isSet(tcp) || !p.isSet(pty)) {
        const QString hp = p.isSet(tcp) ? p.value(tcp) : QStringLiteral("127.0.0.1:9101");
        const int colon = hp.lastIndexOf(QLatin1Char(':'));
        bool ok = false;
        const quint16 port = colon > 0 ? hp.mid(colon + 1).toUShort(&ok) : 0;
        if (!ok || !server.listenTcp(hp.left(colon), port, &error)) {
            std::fprintf(stderr, "kerbano-ecr-sim: --tcp %s: %s\n", qPrintable(hp),
                         qPrintable(error.isEmpty() ? QStringLiteral("HOST:PORT expected") : error));
            return 1;
        }
    }
    std::fprintf(stderr, "kerbano-ecr-sim: ready\n");
    server.run();
    return 0;
}
