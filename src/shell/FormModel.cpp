#include "shell/FormModel.h"

void FormModel::set(QString& slot, const QString& v)
{
    if (slot == v)
        return;
    slot = v;
    emit changed();
}

void FormModel::setComstattxt(const QString& v)
{
    if (comstattxt_ == v)
        return;
    comstattxt_ = v;
    emit statusLineChanged(v);
    emit changed();
}

void FormModel::setField(const QString& name, const QString& v)
{
    if (fields_.value(name) == v && fields_.contains(name))
        return;
    fields_.insert(name, v);
    emit changed();
}

void FormModel::setEnabled(const QString& control, bool enabled)
{
    if (isEnabled(control) == enabled)
        return;
    disabled_.insert(control, !enabled);
    emit changed();
}

void FormModel::setChecked(const QString& control, bool checked)
{
    if (isChecked(control) == checked)
        return;
    checked_.insert(control, checked);
    emit changed();
}

void FormModel::setVisible(const QString& control, bool visible)
{
    if (isVisible(control) == visible)
        return;
    hidden_.insert(control, !visible);
    emit changed();
}

void FormModel::setFormShown(bool shown)
{
    if (formShown_ == shown)
        return;
    formShown_ = shown;
    emit changed();
}
