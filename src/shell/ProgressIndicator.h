#pragma once

#include <QtGlobal>

class FormModel;

// clsind: the progress of the job in hand, shown in lblProgr. Writing Value
// is the one place where a print job lets the event loop breathe.
class clsind {
public:
    explicit clsind(FormModel& form);

    qint16 Value() const { return value_; }
    void setValue(qint16 value);
    qint16 Max() const { return max_; }
    void setMax(qint16 max) { max_ = max; }

private:
    FormModel& form_;
    qint16 value_ = 0;
    qint16 max_ = 0;
};
