#include "reports/ZFileRun.h"

#include "link/DeviceLink.h"
#include "link/LinkMessageTitle.h"
#include "records/ReceiptState.h"
#include "reports/ZMail.h"
#include "shell/FormModel.h"
#include "shell/ModuleVariables.h"
#include "shell/Operator.h"

#include <QCoreApplication>

namespace {
void showNow(FormModel& form, const QString& text)
{
    form.setComstattxt(text);
    QCoreApplication::processEvents();
}
} // namespace

ZFileRun::ZFileRun(DeviceLink& link, ReceiptState& receipt, ModuleVariables& vars, FormModel& form,
                   Operator& person, clsind& progress, QString programDirectory, QLocale locale)
    : link_(link)
    , receipt_(receipt)
    , vars_(vars)
    , form_(form)
    , person_(person)
    , zfile_(link, receipt, progress, std::move(programDirectory), std::move(locale))
{
}

void ZFileRun::Zfile()
{
    receipt_.LastStatus = 0;
    if (!link_.isConnected())
        link_.OpenDeviceLink(vars_.port, receipt_.LastStatus, receipt_.LastReply, false);
    // The open has told the operator already.
    if (receipt_.LastStatus != 0)
        return;

    showNow(form_, kZFileStartText);
    if (zfile_.BuildZFile() == 0) {
        showNow(form_, kZFileFailedText);
        const QString text = zfile_.failure().isEmpty() ? kZFileFailedText
                                                        : kZFileFailedText + u'\n' + zfile_.failure();
        person_.message(LinkMessageTitle(vars_), text, Operator::Icon::Information);
        return;
    }
    showNow(form_, kZFileDoneText);
    if (mail_)
        mail_->send(vars_.eMail, zfile_.ZFileNumber());
}
