#pragma once

#include "payments/RegisterPaymentLists.h"

#include <QList>
#include <QString>
#include <QtGlobal>

class DeviceLink;
class Operator;
struct ModuleVariables;

inline const QString kEftSelectTitle = QStringLiteral("Πακέτο συναλλαγών EFTPOS...");
inline const QString kEftSelectReading = QStringLiteral("Αναμονή ανάγνωσης εγγραφών ΦΗΜΑΣ");
inline const QString kEftSelectPrompt = QStringLiteral("Επιλέξτε απο την λίστα την συσκευή EFTPOS");

// frmEFTSelect: the terminal whose package is closed. A window of the GUI,
// or the Operator's list question.
class EftTerminalChoice {
public:
    virtual ~EftTerminalChoice() = default;
    // The dialog stands, its list closed, while the terminals are read.
    virtual void showReading() = 0;
    // The active terminals, each row storing its slot, then the choice
    // (idSelected): the slot, -1 after Cancel, 0 when closed otherwise.
    virtual qint16 idSelected(const QList<ListRow>& rows) = 0;
};

// The day's package of a terminal's transactions, closed by the register on
// one command. The operator picks the terminal among the active ones
// (frmEFTSelect). -1 when the register accepted the command, 0 in every other
// case, a cancelled choice included.
int SendEftBatchCommand(DeviceLink& link, EftTerminalChoice& choice);
// The same, the terminal chosen through the Operator's list question.
int SendEftBatchCommand(DeviceLink& link, Operator& op);

// The menu item s8: opens the link when closed, sends the batch command,
// tells the operator how it went, and closes the link again. Without a
// window the terminal is chosen through the Operator.
void RunEftBatch(DeviceLink& link, Operator& op, const ModuleVariables& vars,
                 EftTerminalChoice* window = nullptr);
