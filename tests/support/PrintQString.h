#pragma once

#include <QString>
#include <ostream>

// Readable failures: gtest prints a QString as its UTF-8 text.
inline void PrintTo(const QString& text, std::ostream* os)
{
    *os << '"' << text.toStdString() << '"';
}
