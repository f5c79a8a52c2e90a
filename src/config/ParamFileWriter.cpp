#include "config/ParamFileWriter.h"

#include "shell/CodePage.h"

#include <QSaveFile>
#include <QStringList>

namespace {
constexpr int kDefaultTcpPort = 9101;

QString trueFalse(bool on)
{
    return on ? QStringLiteral("true") : QStringLiteral("false");
}

QString zeroOne(bool on)
{
    return on ? QStringLiteral("1") : QStringLiteral("0");
}

// The device list of the form holds one row; the other two names are known
// to the writer all the same.
QString ecrtLine(const QString& typetxt)
{
    const QString t = typetxt.toLower();
    if (t == QLatin1String("tec fiscal printer"))
        return QStringLiteral("[ecrt] TECFP");
    if (t == QLatin1String("poseidon 21"))
        return QStringLiteral("[ecrt] pos21");
    if (t == QLatin1String("mikropos"))
        return QStringLiteral("[ecrt] mikro");
    return QString();
}

QString printCodeLine(const ParamFormValues& f)
{
    if (f.print_code_ascii)
        return QStringLiteral("[print_code] true A");
    if (f.print_code_numeric)
        return QStringLiteral("[print_code] true N");
    return QStringLiteral("[print_code] falseN");
}
} // namespace

ParamFormValues ParamFormValues::fromSettings(const ParamSettings& s, bool spRet, bool cpDOS,
                                              const QString& eMail, int ZeMail)
{
    const auto on = [](const QString& v) { return v == QLatin1String("true"); };
    ParamFormValues f;
    f.comtxt = s.port;
    f.baudtxt = s.baud;
    f.filetxt = s.job.file;
    f.location = s.job.location;
    f.typetxt = s.job.ecrt.toUpper() == QLatin1String("TECFP") ? QStringLiteral("TEC Fiscal Printer")
                                                               : QString();
    f.multi_print = on(s.job.multiType);
    f.descreption = on(s.job.printDesc);
    f.print_code_numeric = s.job.printCode == QLatin1String("true N");
    f.print_code_ascii = s.job.printCode == QLatin1String("true A");
    f.comments = on(s.job.comments);
    f.currency = (s.job.currency == QLatin1String("1")) ? 1 : (s.job.currency == QLatin1String("2")) ? 2 : 0;
    f.keyb_locked = on(s.job.keybOff);
    f.dirdep = on(s.job.dirDepa);
    f.quantity = on(s.job.quantity);
    f.ChkAuto = s.autoStart;
    f.chkspRet = spRet;
    f.chkDOSf = cpDOS;
    f.txtemail = eMail;
    f.chkAutomailsend = ZeMail == 1;
    return f;
}

QString WithDefaultTcpPort(const QString& comtxt, bool baudHidden)
{
    if (baudHidden && !comtxt.contains(QLatin1Char(':')))
        return comtxt + QLatin1Char(':') + QString::number(kDefaultTcpPort);
    return comtxt;
}

QByteArray writeParamText(const ParamFormValues& f, const QDate& today)
{
    QStringList lines;
    lines << QStringLiteral("# Set up for kerbano program")
          << QStringLiteral("Created by  Kerbano on ") + today.toString(QStringLiteral("MM-dd-yyyy"))
          << QStringLiteral("# Serial port setup. This can be Com1 or Com2,Com3,Com4 ")
          << QStringLiteral("[port] ") + f.comtxt.toLower()
          << QStringLiteral("# Baud rate setup. This usually is 9600. Valid baude rates are : 19200,9600")
          << QStringLiteral("# 4800,2400,1200. It can go low as 120 but with not tested results.")
          << QStringLiteral("[baud] ") + f.baudtxt.toLower()
          << QStringLiteral("# The file that the main application is exchanging data with ledgerhub.")
          << QStringLiteral("# Depending on the application this can be managed to process receipts in a row.")
          << QStringLiteral("# Setup the application to generate  \\myapp\\print.1 and kerbcano will")
          << QStringLiteral("# try to see if pending receipts are in files \\myapp\\print.2 ... print.10")
          << QStringLiteral("# This has also to do with [multi type] on or off")
          << QStringLiteral("[file] ") + f.filetxt
          << QString()
          << QStringLiteral("# yes or no Depending on type structure")
          << QStringLiteral("[code] no")
          << QStringLiteral("# Type of machine");
    const QString ecrt = ecrtLine(f.typetxt);
    if (!ecrt.isEmpty())
        lines << ecrt;
    lines << QStringLiteral("[multi type] ") + trueFalse(f.multi_print)
          << QStringLiteral("[time] 0")
          << QStringLiteral("[subtotal] yes")
          << QStringLiteral("[print_desc] ") + trueFalse(f.descreption)
          << printCodeLine(f)
          << QStringLiteral("[comments] ") + trueFalse(f.comments);
    if (f.currency >= 0 && f.currency <= 2)
        lines << QStringLiteral("[currency]=") + QString::number(f.currency);
    lines << (f.keyb_locked ? QStringLiteral("[keyb_off]=true ") : QStringLiteral("[keyb_off]=false"))
          << QStringLiteral("[dir_depa]=") + trueFalse(f.dirdep)
          << QStringLiteral("[quantity]=") + trueFalse(f.quantity)
          << QStringLiteral("[spRet   ]=") + zeroOne(f.chkspRet)
          << QStringLiteral("[cpDOS   ]=") + zeroOne(f.chkDOSf)
          << QStringLiteral("[eMail   ]=") + f.txtemail
          << QStringLiteral("[ZeMail  ]=") + zeroOne(f.chkAutomailsend)
          << QStringLiteral("################################")
          << QStringLiteral("# Customer Specific Parameters #")
          << QStringLiteral("################################")
          << (f.ChkAuto ? QStringLiteral("[AutoStar]=yes") : QStringLiteral("[AutoStar]=no"))
          << QStringLiteral("[location] ")
                 + (f.location.isEmpty() ? QStringLiteral("\\kerbano\\") : f.location)
          << QStringLiteral("# End of parameter file #");
    QByteArray out;
    for (const QString& line : lines) {
        out += codepage::toWin1253(line);
        out += "\r\n";
    }
    return out;
}

bool writeParamFile(const QString& path, const ParamFormValues& form, const QDate& today)
{
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly))
        return false;
    file.write(writeParamText(form, today));
    return file.commit();
}
