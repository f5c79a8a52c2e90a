#pragma once

#include "RegisterMemory.h"

#include <QDateTime>
#include <QStringList>
#include <deque>

// The register itself: command text in, reply text out, and what it printed.
// No I/O here; the wire, the faults and the files live around it.
class EcrModel {
public:
    struct Outcome {
        QString reply;       // "00/00/00/..." without any framing
        QStringList printed; // lines the printer put on paper
    };

    explicit EcrModel(RegisterMemory& memory);

    Outcome execute(const QString& command, const QDateTime& now);

    // What the card terminal answers to the next card payments, in turn.
    // With nothing queued the terminal approves.
    void queueCardOutcome(const QString& text) { cardOutcomes_.push_back(text); }

    const RegisterMemory& memory() const { return m_; }

private:
    struct Ctx; // one command in hand
    QString dispatch(Ctx& c);

    QString cmdStatus(Ctx& c);
    QString cmdSale(Ctx& c);
    QString cmdDiscount(Ctx& c);
    QString cmdPayment(Ctx& c);
    QString cmdCardQuery(Ctx& c);
    QString cmdComment(Ctx& c);
    QString cmdVoid(Ctx& c);
    QString cmdReport(Ctx& c);
    QString cmdTable(Ctx& c);
    QString cmdTableOpen(Ctx& c, int table);
    QString cmdTablePrepare(Ctx& c, int table);
    QString cmdTablePay(Ctx& c, int table);
    QString cmdTableMove(Ctx& c);
    QString cmdTableItemMove(Ctx& c);
    QString cmdTableContents(Ctx& c, int table);
    QString cmdProgramPayment(Ctx& c);
    QString cmdTaxServer(Ctx& c);

    QString pay(Ctx& c, int number, qint64 amount, const QString& text, int terminal);
    void openReceipt(Ctx& c, int kind, int table);
    void closeReceipt(Ctx& c);
    void endVisit(Ctx& c);
    qint64 receiptTotal() const;
    qint64 receiptPaid() const;
    void printReceiptBody(Ctx& c);
    void printZ(Ctx& c, const DayFigures& f, const QString& title);
    int vatIndexOf(qint64 rateHundredths) const;

    RegisterMemory& m_;
    std::deque<QString> cardOutcomes_;
};
