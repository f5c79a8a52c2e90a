#include "link/SerialFrame.h"

#include "protocol/LinkBytes.h"
#include "shell/CodePage.h"

namespace {

// Only blanks are trimmed, not tabs: the register sums every other byte.
QString trimBlanks(const QString& text)
{
    qsizetype from = 0;
    qsizetype to = text.size();
    while (from < to && text.at(from) == u' ')
        ++from;
    while (to > from && text.at(to - 1) == u' ')
        --to;
    return text.mid(from, to - from);
}

} // namespace

int CheckDigits(const QString& text, bool* invalid)
{
    int sum = 0;
    for (const QChar ch : trimBlanks(text)) {
        int code = codepage::win1253Byte(ch);
        if (code < 0) {
            if (invalid)
                *invalid = true;
            code = '?';
        }
        sum += code;
        if (sum >= 256)
            sum -= 256;
    }
    return sum % 100;
}

QString FrameCommand(const QString& command, bool* invalid)
{
    const int digits = CheckDigits(command, invalid);
    return QChar(linkbytes::STX) + command + QString::number(digits).rightJustified(2, u'0')
        + QChar(linkbytes::ETX);
}
