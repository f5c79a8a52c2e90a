#pragma once

#include <QString>

// A reply field that holds a whole number, blanks around it allowed.
inline bool IsWholeNumber(const QString& field)
{
    bool ok = false;
    field.trimmed().toLongLong(&ok);
    return ok;
}
