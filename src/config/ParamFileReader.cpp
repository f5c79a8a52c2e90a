#include "config/ParamFileReader.h"

#include "shell/FileProcedures.h"

#include <QFile>
#include <QRegularExpression>

namespace {

struct Key {
    const char* name;
    int column; // 1-based
    int length;
    QString ParamSettings::*text = nullptr;
    QString JobSettings::*job = nullptr;
    bool startOnly = false;
};

const Key kKeys[] = {
    {"[port]", 8, 20, &ParamSettings::port, nullptr, false},
    {"[baud]", 8, 6, &ParamSettings::baud, nullptr, false},
    {"[file]", 8, 30, nullptr, &JobSettings::file, false},
    {"[code]", 8, 3, nullptr, &JobSettings::code, false},
    {"[ecrt]", 8, 5, nullptr, &JobSettings::ecrt, false},
    {"[multi type]", 14, 4, nullptr, &JobSettings::multiType, false},
    {"[time]", 8, 5, nullptr, &JobSettings::time, false},
    {"[print_desc]", 14, 4, nullptr, &JobSettings::printDesc, false},
    {"[print_code]", 14, 6, nullptr, &JobSettings::printCode, false},
    {"[comments]", 12, 4, nullptr, &JobSettings::comments, false},
    {"[currency]", 12, 1, nullptr, &JobSettings::currency, false},
    {"[keyb_off]", 12, 4, nullptr, &JobSettings::keybOff, false},
    {"[dir_depa]", 12, 4, nullptr, &JobSettings::dirDepa, false},
    {"[quantity]", 12, 4, nullptr, &JobSettings::quantity, false},
    {"[spRet   ]", 12, 4, &ParamSettings::spRet, nullptr, true},
    {"[cpDOS   ]", 12, 4, &ParamSettings::cpDOS, nullptr, true},
    {"[eMail   ]", 12, 255, &ParamSettings::eMail, nullptr, true},
    {"[ZeMail  ]", 12, 4, &ParamSettings::ZeMail, nullptr, true},
    {"[location]", 12, 99, nullptr, &JobSettings::location, false},
};

const QString kAutoStartPrefix = QStringLiteral("[AUTOSTAR]");
const QString kAutoStartYes = QStringLiteral("[AUTOSTAR]=YES");

void readLine(const QString& line, ParamReader reader, ParamSettings& s)
{
    for (const Key& key : kKeys) {
        if (!line.startsWith(QLatin1String(key.name)))
            continue;
        if (key.startOnly && reader == ParamReader::Tick)
            return;
        const QString value = line.mid(key.column - 1, key.length);
        if (key.text)
            s.*key.text = value;
        else
            s.job.*key.job = value;
        return;
    }
    if (reader == ParamReader::Start && line.left(kAutoStartPrefix.size()).toUpper() == kAutoStartPrefix)
        s.autoStart = line.left(kAutoStartYes.size()).toUpper() == kAutoStartYes;
}

} // namespace

bool ParamSettings::flagValue(const QString& text)
{
    const QString t = text.trimmed();
    bool numeric = false;
    const double n = t.toDouble(&numeric);
    if (numeric)
        return n != 0.0;
    return t.compare(QLatin1String("true"), Qt::CaseInsensitive) == 0;
}

int ParamSettings::wholeNumberValue(const QString& text)
{
    static const QRegularExpression leadingNumber(QStringLiteral("^\\s*([+-]?\\d+)"));
    const auto m = leadingNumber.match(text);
    return m.hasMatch() ? m.captured(1).toInt() : 0;
}

ParamSettings readParamText(const QString& text, ParamReader reader)
{
    ParamSettings settings;
    static const QRegularExpression lineEnd(QStringLiteral("\r\n|\r|\n"));
    for (const QString& line : text.split(lineEnd))
        readLine(line, reader, settings);
    return settings;
}

bool readParamFile(const QString& path, ParamReader reader, ParamSettings& settings)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        settings = ParamSettings{};
        return false;
    }
    file.close();
    settings = readParamText(mFile::ReadWholeFile(path), reader);
    return true;
}
