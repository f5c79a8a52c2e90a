#include "shell/FormModel.h"

void FormModel::update(const std::function<void(FormState&)>& change)
{
    FormState next = state_;
    change(next);
    if (next == state_)
        return;
    const bool statusLine = next.comstattxt != state_.comstattxt;
    state_ = std::move(next);
    if (statusLine)
        emit statusLineChanged(state_.comstattxt);
    emit stateChanged(state_);
}

void FormModel::setComstattxt(const QString& v)
{
    set(&FormState::comstattxt, v);
}

void FormModel::setMenuEnabled(Entry entry, bool enabled)
{
    update([&](FormState& s) { (s.menus.*entry).enabled = enabled; });
}

void FormModel::setMenuChecked(Entry entry, bool checked)
{
    update([&](FormState& s) { (s.menus.*entry).checked = checked; });
}
