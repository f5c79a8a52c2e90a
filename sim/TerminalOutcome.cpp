#include "TerminalOutcome.h"

namespace {
// What the terminals of the register report when no money was taken. The
// no-contact text may carry more behind it.
const char* const kRefusals[] = {
    "TRANSACTION WAS DECLINED",
    "DECLINED BY THE TERMINAL",
    "DECLINED BY THE HOST",
    "COMMUNICATION PROBLEM",
    "BANK'S HOST UNREACHABLE",
    "TRANSACTION FAILED - POS ERROR",
    "PROTOCOL NOT SUPPORTED",
    "DUPLICATE REQUEST RECEIVED",
    "SYNTAX ERROR IN REQUEST",
    "INVALID CURRENCY",
    "INTERNAL POS ERROR",
    "INVALID COMMAND",
    "WRONG PARAMETER",
    "POS IS BUSY",
    "ECR-POS DISCONNECTION",
    "USER CANCELLATION OR TIMEOUT",
    "ECR INACTIVE EFTPOS",
    "RECEIVE:WRONG CMD RECEIVED",
    "SEND:ENCRYPTION ERROR",
    "MAC ERROR",
    "CONNECTION CLOSED-ABORTED BY POS",
};
} // namespace

namespace terminaltext {
bool isRefusal(const QString& text)
{
    if (text.startsWith(kNoContact))
        return true;
    for (const char* refusal : kRefusals)
        if (text == QLatin1String(refusal))
            return true;
    return false;
}
} // namespace terminaltext

TerminalOutcome TerminalOutcome::approve(const QString& text)
{
    TerminalOutcome o;
    o.text = text;
    return o;
}

TerminalOutcome TerminalOutcome::decline(const QString& text)
{
    TerminalOutcome o;
    o.approved = false;
    o.text = text;
    return o;
}

TerminalOutcome TerminalOutcome::ofText(const QString& text)
{
    return terminaltext::isRefusal(text) ? decline(text) : approve(text);
}
