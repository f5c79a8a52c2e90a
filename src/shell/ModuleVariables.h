#pragma once

#include <QString>
#include <QtGlobal>

// Why the process is ending before its time. Once set, no new job starts and
// the job in hand stops at its next line.
enum class StopCause {
    None,
    Signal,    // asked to end (SIGTERM, SIGINT)
    WaitLimit, // the register stayed busy longer than the life may wait
};

// The process-wide variables of the driver. One instance, owned by the Engine
// and handed by reference to whoever needs it; they survive from job to job.
struct ModuleVariables {
    QString ResultPath;                             // the job's result file; none before the first job
    QString JobTag = QStringLiteral("Unknown");    // tag value of the job
    QString DeviceLabel;                            // model and serial of the register
    bool DebugEnabled = false;                      // communication log on
    bool IgnoreOperatorBusy = false;                // operator status bit not a busy state
    bool EftBusy = false;                           // a card payment is in progress
    bool EftFallbackUsed = false;                   // the alternative payment replaced a card payment
    StopCause Stop = StopCause::None;               // set once the process is to end
    qint64 WaitLimitMs = 0;                         // longest wait of one command on a busy register; 0 none

    // Read from param.ini at start only.
    bool spRet = false;   // special returns folded with their mod line
    bool cpDOS = false;   // print file texts are in the DOS code page
    QString eMail;        // receiver of the Z file
    int ZeMail = 0;       // 1: Z file after every Z report

    // The link settings, [port] and [baud], re-read at every tick.
    QString port;
    QString baud;
};
