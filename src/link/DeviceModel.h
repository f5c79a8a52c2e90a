#pragma once

#include <QString>

// A register model, known by the first three characters of its
// identification. Models with an edition name accept table commands when they
// are the "Rest" edition, which a probe tells.
struct DeviceModel {
    const char* prefix;
    QString name;
    QString restName; // empty: one edition only

    bool hasEditions() const { return !restName.isEmpty(); }

    // Exact, case-sensitive comparison of the prefix; nullptr when unknown.
    static const DeviceModel* find(const QString& prefix);
};
