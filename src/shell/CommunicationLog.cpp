#include "shell/CommunicationLog.h"

#include "shell/CodePage.h"
#include "shell/ModuleVariables.h"

#include <QDir>
#include <QFile>

CommunicationLog::CommunicationLog(const QString& programDirectory, const ModuleVariables& vars,
                                   QObject* parent)
    : QObject(parent)
    , vars_(vars)
    , filePath_(QDir(programDirectory).filePath(QStringLiteral("kerbanoLog.txt")))
{
}

void CommunicationLog::PrintCombine(const QString& text)
{
    if (!vars_.DebugEnabled)
        return;
    if (fileEnabled_) {
        QFile file(filePath_);
        if (file.open(QIODevice::WriteOnly | QIODevice::Append))
            file.write(codepage::toWin1253(text) + "\r\n");
    }
    emit lineLogged(text);
}
