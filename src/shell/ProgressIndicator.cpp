#include "shell/ProgressIndicator.h"

#include "shell/FormModel.h"

#include <QCoreApplication>
#include <cmath>

clsind::clsind(FormModel& form)
    : form_(form)
{
}

void clsind::setValue(qint16 value)
{
    value_ = value;
    QString text = QStringLiteral("-");
    if (value >= 1 && max_ != 0) {
        const long percent = std::lround(double(value) / double(max_) * 100.0);
        text = QStringLiteral(" Ολοκληρώθηκε το %1%").arg(percent);
    }
    form_.update([&](FormState& s) {
        s.progressValue = value;
        s.progressMax = max_;
        s.lblProgr = text;
    });
    QCoreApplication::processEvents();
}
