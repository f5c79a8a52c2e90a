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
    if (value < 1 || max_ == 0) {
        form_.setLblProgr(QStringLiteral("-"));
    } else {
        const long percent = std::lround(double(value) / double(max_) * 100.0);
        form_.setLblProgr(QStringLiteral(" Ολοκληρώθηκε το %1%").arg(percent));
    }
    QCoreApplication::processEvents();
}
