#include "ui/AboutBox.h"

#include "ui/KerbanoIcon.h"

#include <QCoreApplication>
#include <QDialogButtonBox>
#include <QLabel>
#include <QMessageBox>
#include <QProcess>
#include <QPushButton>
#include <QStandardPaths>
#include <QVBoxLayout>
#include <QVersionNumber>

namespace {
QString versionText()
{
    const QVersionNumber v = QVersionNumber::fromString(QCoreApplication::applicationVersion());
    return QStringLiteral("Version %1.%2.%3").arg(v.majorVersion()).arg(v.minorVersion()).arg(v.microVersion());
}
} // namespace

AboutBox::AboutBox(QWidget* parent)
    : QDialog(parent)
{
    setObjectName(QStringLiteral("frmAbout"));
    setWindowTitle(QStringLiteral("Περι Kerbano"));
    setWindowIcon(KerbanoIcon());
    auto* layout = new QVBoxLayout(this);
    auto* title = new QLabel(QStringLiteral("Kerbano"), this);
    title->setObjectName(QStringLiteral("lblTitle"));
    QFont big = title->font();
    big.setBold(true);
    big.setPointSize(big.pointSize() + 6);
    title->setFont(big);
    auto* version = new QLabel(versionText(), this);
    version->setObjectName(QStringLiteral("lblVersion"));
    layout->addWidget(title);
    layout->addWidget(version);
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok, this);
    QPushButton* sysInfo = buttons->addButton(QStringLiteral("System Info..."), QDialogButtonBox::ActionRole);
    sysInfo->setObjectName(QStringLiteral("cmdSysInfo"));
    layout->addWidget(buttons);
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(sysInfo, &QPushButton::clicked, this, &AboutBox::startSystemInformation);
}

QString AboutBox::systemInformationTool()
{
#ifdef Q_OS_WIN
    return QStandardPaths::findExecutable(QStringLiteral("msinfo32"));
#else
    for (const char* tool : {"hardinfo", "gnome-system-monitor", "ksysguard"}) {
        const QString path = QStandardPaths::findExecutable(QString::fromLatin1(tool));
        if (!path.isEmpty())
            return path;
    }
    return QString();
#endif
}

QString AboutBox::unavailableText()
{
    return QStringLiteral("System Information Is Unavailable At This Time");
}

void AboutBox::startSystemInformation()
{
    const QString tool = systemInformationTool();
    if (tool.isEmpty() || !QProcess::startDetached(tool, {}))
        QMessageBox::information(this, windowTitle(), unavailableText());
}
