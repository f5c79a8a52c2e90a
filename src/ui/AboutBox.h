#pragma once

#include <QDialog>

// frmAbout: the title, the version as major.minor.revision, and cmdSysInfo,
// which starts the platform's system information tool where there is one.
class AboutBox : public QDialog {
    Q_OBJECT
public:
    explicit AboutBox(QWidget* parent = nullptr);

    // The tool cmdSysInfo starts; empty where the platform has none.
    static QString systemInformationTool();
    static QString unavailableText();

private:
    void startSystemInformation();
};
