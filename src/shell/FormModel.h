#pragma once

#include "shell/FormState.h"

#include <QObject>
#include <QString>
#include <functional>

// What the main form shows, kept as one FormState. The engine writes it; each
// change goes out whole in stateChanged, so the window can mirror it from
// another thread; headless prints the status line, tests read it.
class FormModel : public QObject {
    Q_OBJECT
public:
    using Entry = MenuEntryState MenuStates::*;

    using QObject::QObject;

    const FormState& state() const { return state_; }

    QString caption() const { return state_.caption; }
    QString comstattxt() const { return state_.comstattxt; }
    QString label2() const { return state_.label2; }
    QString lblreceipt() const { return state_.lblreceipt; }
    QString lblProgr() const { return state_.lblProgr; }
    QString trayTip() const { return state_.trayTip; }

    void setCaption(const QString& v) { set(&FormState::caption, v); }
    void setComstattxt(const QString& v);
    void setLabel2(const QString& v) { set(&FormState::label2, v); }
    void setLblreceipt(const QString& v) { set(&FormState::lblreceipt, v); }
    void setLblProgr(const QString& v) { set(&FormState::lblProgr, v); }
    void setTrayTip(const QString& v) { set(&FormState::trayTip, v); }
    void setCommand1Enabled(bool v) { set(&FormState::command1Enabled, v); }
    void setCommand2Enabled(bool v) { set(&FormState::command2Enabled, v); }
    void setFormShown(bool v) { set(&FormState::formShown, v); }
    void setBaudShown(bool v) { set(&FormState::baudShown, v); }

    void setMenuEnabled(Entry entry, bool enabled);
    void setMenuChecked(Entry entry, bool checked);

    // Several fields at once, sent out as one change.
    void update(const std::function<void(FormState&)>& change);

signals:
    void stateChanged(const FormState& state);
    void statusLineChanged(const QString& text);

private:
    template <typename T>
    void set(T FormState::*field, const T& v)
    {
        update([&](FormState& s) { s.*field = v; });
    }

    FormState state_;
};
