#pragma once

#include "config/MailSettings.h"
#include "config/ParamFileWriter.h"

#include <QDialog>
#include <functional>

class QCheckBox;
class QComboBox;
class QLineEdit;
class QRadioButton;
class QTabWidget;

// The values param.ini does not hold for the form: the four start-only
// settings as the running program has them.
struct StartOnlySettings {
    bool spRet = false;
    bool cpDOS = false;
    QString eMail;
    int ZeMail = 0;
};

// Where the form reads and writes.
struct SettingsFiles {
    QString param; // param.ini
    QString vats;  // vats.dat
    QString mail;  // mail.ini
};

// frmparam: param.ini, the five VAT rates and, on a tab of its own, mail.ini.
// Kαταχώρηση checks what was typed, writes the files and ends the program;
// Eπαναφορά reads the files again. Nothing is written until every check holds.
class ParamWindow : public QDialog {
    Q_OBJECT
public:
    // How a message reaches the person: a message box, or a test's record.
    using Tell = std::function<void(const QString& title, const QString& text, bool critical)>;

    ParamWindow(SettingsFiles files, StartOnlySettings startOnly, QWidget* parent = nullptr);

    void setTell(Tell tell) { tell_ = std::move(tell); }

    // The controls as the files say (the opening, and restore).
    void load();
    ParamFormValues values() const;
    void setValues(const ParamFormValues& values);
    QStringList vatBoxes() const;
    MailSettings mailValues() const;

    // Kαταχώρηση. True when everything was written and the program is to end.
    bool save();

    // A control by its name (comtxt, baudtxt, txtVatRate(0), smtpHost, OK, ...).
    QWidget* control(const QString& name) const;

signals:
    // Saved: the program ends, to be started again with the new settings.
    void savedEndProgram();

private:
    QWidget* buildSettingsTab();
    QWidget* buildMailTab();
    void restore();
    bool baudHidden() const;
    void portChanged(const QString& text);
    void emailChanged(const QString& text);
    QString inputProblem() const;
    void say(const QString& title, const QString& text, bool critical);
    template <typename W>
    W* named(W* widget, const char* name);

    SettingsFiles files_;
    StartOnlySettings startOnly_;
    Tell tell_;
    QTabWidget* tabs_;

    QLineEdit* comtxt_;
    QComboBox* baudtxt_;
    QLineEdit* filetxt_;
    QComboBox* typetxt_;
    QLineEdit* location_;
    QCheckBox* multi_print_;
    QCheckBox* dirdep_;
    QCheckBox* descreption_;
    QCheckBox* print_code_numeric_;
    QCheckBox* print_code_ascii_;
    QCheckBox* comments_;
    QRadioButton* total_[3];
    QCheckBox* quantity_;
    QCheckBox* keyb_locked_;
    QCheckBox* ChkAuto_;
    QCheckBox* chkspRet_;
    QCheckBox* chkDOSf_;
    QLineEdit* txtemail_;
    QCheckBox* chkAutomailsend_;
    QLineEdit* txtVatRate_[5];

    QLineEdit* smtpHost_;
    QLineEdit* smtpPort_;
    QComboBox* smtpSecurity_;
    QLineEdit* smtpUser_;
    QLineEdit* smtpPassword_;
    QLineEdit* smtpFrom_;
};
