#pragma once

#include <QList>
#include <QLocale>
#include <QString>
#include <QStringList>
#include <array>

// vats.dat: the rates of the register's five VAT categories, little-endian
// doubles from byte 0, category i at (i - 1) * 8. Readers use the first 40
// bytes only; whatever stands behind them is left alone. Nothing is cached:
// every call opens the file.
inline constexpr int kVatCategories = 5;
using VatRates = std::array<double, kVatCategories>;

// 0 good, -1 on a file fault. A missing file is made empty and reads as zeros.
int ReadVatsFile(const QString& path, VatRates& rates);
// Writes every given rate from byte 0; 0 good, -1 on a file fault.
int WriteVatsFile(const QString& path, const QList<double>& rates);
// The rate of category index + 1 (index 0 to 4); 0 when it cannot be read.
double VatRateOfCategory(const QString& path, int index);
// The first category 1 to 5 whose rate, through its plain text and back,
// equals the rate exactly; 0 for none.
int VatCategoryOfRate(const QString& path, double rate, const QLocale& locale = QLocale::system());
// The five boxes of the settings form: each "." becomes "," (written back into
// the box) and the box is read as a number; 0 good, -1 when a box is no number.
int VatBoxesToArray(QStringList& boxes, VatRates& rates, const QLocale& locale = QLocale::system());
// The plain text a box shows for a rate.
QString VatBoxText(double rate, const QLocale& locale = QLocale::system());
