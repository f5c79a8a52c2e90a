#pragma once

#include <QString>
#include <QtGlobal>

class DeviceLink;

// mTable: the two title lines of a table on the register.

// lead, then blanks up to width, then text; "*" when the text does not fit.
QString PadLeftTo(const QString& text, int width, const QString& lead);

// Programs the title of a table: the title is cut to 53 characters, split at
// "~" into two lines, right-aligned to 20 and 32; a blank line goes as one
// blank. The status is left to the caller.
void ProgramTableHeader(DeviceLink& link, qint16 table, const QString& title, qint16& status,
                        QString& reply);
