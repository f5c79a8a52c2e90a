#pragma once

#include "reports/ZFile.h"

#include <QString>

class DeviceLink;
class FormModel;
class Operator;
class ZMail;
class clsind;
struct ModuleVariables;
struct ReceiptState;

inline const QString kZFileStartText = QStringLiteral("Eναρξη δημιουργίας αρχείου 'Ζ'"); // a Latin E
inline const QString kZFileFailedText = QStringLiteral("Λάθος κατά την δημιουργία του αρχείου 'Ζ'");
inline const QString kZFileDoneText = QStringLiteral("Επιτυχής δημιουργία του αρχείου 'Ζ'");

// The action Zfile: open the link when it is closed, write the Z file, say
// how it went, and mail it when a receiver is set. The link stays open for
// what follows. The mail goes out on its own thread; the register's
// conversation never waits for it.
class ZFileRun {
public:
    ZFileRun(DeviceLink& link, ReceiptState& receipt, ModuleVariables& vars, FormModel& form,
             Operator& person, clsind& progress, QString programDirectory,
             QLocale locale = QLocale::system());

    // Without a mail, a Z file with a receiver set is only written.
    void setMail(ZMail* mail) { mail_ = mail; }

    void Zfile();

    ZFile& builder() { return zfile_; }

private:
    DeviceLink& link_;
    ReceiptState& receipt_;
    ModuleVariables& vars_;
    FormModel& form_;
    Operator& person_;
    ZFile zfile_;
    ZMail* mail_ = nullptr;
};
