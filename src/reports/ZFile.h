#pragma once

#include "reports/ZFileLayout.h"

#include <QLocale>
#include <QString>

class DeviceLink;
class clsind;
struct ReceiptState;

// Reads the day's figures of the last Z from the register and appends them
// to Zfiles/Z<nnnn>.out in the program's directory. Everything is read
// before a byte is written, so a refused query leaves no file; a write that
// fails halfway is taken back, so no half copy stands behind a whole one.
class ZFile {
public:
    enum class Fault {
        None,
        Query,  // the register refused or answered what cannot be read
        Folder, // Zfiles cannot be made
        File,   // the file cannot be opened or written
    };

    // The queries of one run and the progress scale they move.
    static constexpr int kQueries = 26;
    static constexpr qint16 kProgressMax = 45;

    ZFile(DeviceLink& link, ReceiptState& receipt, clsind& progress, QString programDirectory,
          QLocale locale = QLocale::system());

    // -1 when the file was written, 0 when it was not.
    int BuildZFile();

    // The Z number of the last run as the register gave it; kept for the mail.
    const QString& ZFileNumber() const { return zFileNumber_; }
    Fault fault() const { return fault_; }
    // What went wrong with the folder or the file, in Greek; empty otherwise.
    const QString& failure() const { return failure_; }
    // The file of the last run once its Z number was read.
    const QString& path() const { return path_; }

private:
    template <typename Query>
    auto ask(const Query& query);
    bool readFigures(ZFigures& figures);
    bool write(const QStringList& lines);
    int fail(Fault fault, const QString& failure = QString());

    DeviceLink& link_;
    ReceiptState& receipt_;
    clsind& progress_;
    QString programDirectory_;
    QLocale locale_;
    QString zFileNumber_;
    QString path_;
    Fault fault_ = Fault::None;
    QString failure_;
};
