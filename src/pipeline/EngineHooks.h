#pragma once

#include "config/JobSettings.h"

#include <QString>
#include <QStringList>
#include <functional>

// What a job amounted to, as the register tells it at the end of the job.
// The defaults are the "not read" values.
struct DocumentFigures {
    double amount = 0.0;
    qint32 recNumberProgr = -1;
    qint16 recNumberDaily = -1;
    qint16 ordNumber = -1;
};

// The parts of a job that other subsystems provide. Each defaults to
// harmless behaviour, so the job's frame runs on its own.
struct EngineHooks {
    // Form_Load, once the link is open: the register's VAT rates into vats.dat.
    std::function<void()> readDeviceVatRates = [] {};
    // The walk over the print file's lines, in order. lineReached(i) is called
    // as line i is taken up: it moves the progress indicator and lets the
    // event loop breathe.
    using InterpretLines = std::function<void(const QStringList& lines, const JobSettings& settings,
                                              const std::function<void(qsizetype)>& lineReached)>;
    InterpretLines interpretLines = [](const QStringList& lines, const JobSettings&,
                                       const std::function<void(qsizetype)>& lineReached) {
        for (qsizetype i = 0; i < lines.size(); ++i)
            lineReached(i);
    };
    // Behind the last line: a pending card notice, before the 500 ms pause.
    std::function<void()> finishCardPayment = [] {};
    // The card transactions of the receipt as "ccPay" lines.
    std::function<QStringList()> cardPaymentLines = [] { return QStringList(); };
    // The document figures for recStatus and receipt.
    std::function<DocumentFigures()> closeJob = [] { return DocumentFigures(); };
    // The "?/" query behind the closing lines: is the operator busy now?
    std::function<bool()> isOperatorBusy = [] { return false; };
    // mTimer's tray upkeep (system menu, tray tip).
    std::function<void()> trayUpkeep = [] {};
    // The site's batch file, started without waiting for it.
    std::function<void(const QString& path)> startBatchFile;
};
