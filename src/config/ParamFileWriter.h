#pragma once

#include "config/ParamFileReader.h"

#include <QByteArray>
#include <QDate>
#include <QString>

// What the parameter form holds when OK is pressed: the texts and the boxes.
struct ParamFormValues {
    QString comtxt = QStringLiteral("com1");
    QString baudtxt = QStringLiteral("9600");
    QString filetxt;
    QString typetxt = QStringLiteral("TEC Fiscal Printer");
    QString location;
    bool multi_print = false;
    bool descreption = false;
    bool print_code_numeric = false;
    bool print_code_ascii = false;
    bool comments = false;
    int currency = 0; // option of the payment frame: 0, 1, 2; -1 none chosen
    bool keyb_locked = false;
    bool dirdep = false;
    bool quantity = false;
    bool ChkAuto = false;
    bool chkspRet = false;
    bool chkDOSf = false;
    QString txtemail;
    bool chkAutomailsend = false;

    // The form as it opens on the settings read from the file. The four
    // start-only values come from the module variables, given here.
    static ParamFormValues fromSettings(const ParamSettings& settings, bool spRet, bool cpDOS,
                                        const QString& eMail, int ZeMail);
};

// OK's first step: an address typed without a port gets the register's TCP port.
QString WithDefaultTcpPort(const QString& comtxt, bool baudHidden);

// The whole param.ini, as the form writes it: Windows-1253, CR LF.
QByteArray writeParamText(const ParamFormValues& form, const QDate& today);

// Writes the file in one go; false when it could not be written.
bool writeParamFile(const QString& path, const ParamFormValues& form, const QDate& today);
