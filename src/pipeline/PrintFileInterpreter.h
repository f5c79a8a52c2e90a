#pragma once

#include "config/JobSettings.h"

#include <QString>
#include <QStringList>
#include <functional>

class CardRoads;
class Clock;
class DeviceLink;
class FPrinter;
class Operator;
class ResultSink;
class TableFlows;
struct ModuleVariables;
struct ReceiptState;

// The department of an environmental fee line ("ΛΠΣΜ-13"), or department
// when the text is no fee line.
int FeeDepartment(const QString& text, int department);
// A number as the system writes it: shortest form, the regional decimal mark.
QString NumberText(double value);

// Everything the interpreter needs from the rest of the driver.
struct InterpreterContext {
    ReceiptState& receipt;
    ModuleVariables& vars;
    FPrinter& printer;
    DeviceLink& link;
    Operator& op;
    Clock& clock;
    CardRoads& cards;
    ResultSink& results;      // the job's result file
    QString workingDirectory; // where vats.dat and payeft.dat lie
    // The Z report of the menu (MKZ lines).
    std::function<void()> runDailyZ;
    // The restaurant tables; without them table lines are passed over.
    TableFlows* tables = nullptr;
};

// Walks the lines of one print file, in order, and turns each known tag into
// register operations.
class PrintFileInterpreter {
public:
    PrintFileInterpreter(InterpreterContext context, JobSettings settings);

    // Runs every line; stops early at an exit line. onLine(i) is called
    // before line i is run (the progress indicator and the event loop).
    void run(const QStringList& lines, const std::function<void(int)>& onLine = {});

private:
    enum class Flow { Next, SkipNext, Stop };

    Flow runLine(const QStringList& lines, int i);
    Flow plu(const QStringList& lines, int i);
    void mod(const QString& line);
    void dis(const QString& line);
    void to(const QString& line);
    void pay(const QString& line);
    void can(const QString& line);
    void voi();
    void snd(const QString& line);
    void prg(const QString& line);
    void com(const QString& line);
    void footer(const QString& line, const QString& op);
    void mkz();

    // The table tags (PrintFileTableTags.cpp).
    Flow tableLine(const QString& line);
    Flow tbo(const QString& line);
    Flow tbc(const QString& line);
    Flow tbt(const QString& line);
    Flow tpt(const QString& line);
    Flow tbs(const QString& line);
    void ltb(const QString& line);
    void voiOnTable();
    void payOnTable(qint16 payment);
    // A table number of TBT, TPT or TBS: -1 writes the error line, tells the operator.
    bool tableNumbersGood(qint16 from, qint16 to);
    Flow beginMoveInParts();
    void wrongTableNumberBox();

    Flow specialReturnItem(const QString& nextLine, const QString& description, double vatNumber,
                           int department);
    void sendReceiptCommand(const QString& command);
    void sellItem(const QString& description, double vatNumber, int department);
    double parseNumber(const QString& text) const;
    QString deviceText(const QString& text) const;
    QString vatsPath() const;
    QString payeftPath() const;

    InterpreterContext ctx_;
    JobSettings settings_;
    qint16 paymentNumber_ = 0;
    double paymentAmount_ = 0.0;
    qint32 voidNumber_ = 0;
};
