#pragma once

#include "config/JobSettings.h"
#include "pipeline/DocumentFigures.h"

#include <QString>
#include <QStringList>
#include <functional>

// The parts of a print job that the subsystems below the pipeline provide:
// the interpreter's walk over the lines and the questions to the register
// behind the last line.
class JobParts {
public:
    // Called as line i is taken up: moves the progress indicator and lets
    // the event loop breathe.
    using LineReached = std::function<void(qsizetype i)>;

    virtual ~JobParts() = default;

    // The print file's lines, in order.
    virtual void interpretLines(const QStringList& lines, const JobSettings& settings,
                                const LineReached& lineReached) = 0;
    // Behind the last line: a pending card notice, before the settling pause.
    virtual void finishCardPayment() = 0;
    // The card transactions of the receipt as "ccPay" lines.
    virtual QStringList cardPaymentLines() = 0;
    // The document figures for recStatus and receipt.
    virtual DocumentFigures documentFigures() = 0;
    // The "?/" query behind the closing lines: is the operator busy now?
    virtual bool isOperatorBusy() = 0;
};
