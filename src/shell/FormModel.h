#pragma once

#include <QHash>
#include <QObject>
#include <QString>

// What the main form shows. The engine writes it; the window mirrors it,
// headless prints the status line, tests read it.
class FormModel : public QObject {
    Q_OBJECT
public:
    using QObject::QObject;

    QString caption() const { return caption_; }
    QString comstattxt() const { return comstattxt_; }
    QString label2() const { return label2_; }
    QString lblreceipt() const { return lblreceipt_; }
    QString lblProgr() const { return lblProgr_; }
    QString trayTip() const { return trayTip_; }

    void setCaption(const QString& v) { set(caption_, v); }
    void setComstattxt(const QString& v);
    void setLabel2(const QString& v) { set(label2_, v); }
    void setLblreceipt(const QString& v) { set(lblreceipt_, v); }
    void setLblProgr(const QString& v) { set(lblProgr_, v); }
    void setTrayTip(const QString& v) { set(trayTip_, v); }

    // The settings shown on the form: serialtxt, baudtxt, filetxt, ecrtxt,
    // desctxt, commentstxt, currtxt.
    QString field(const QString& name) const { return fields_.value(name); }
    void setField(const QString& name, const QString& v);

    // Buttons (Command1, Command2) and menu entries (help, Ver, reports,
    // mZREp, pStart, pStop, paramEFT, Settings, ...): enabled unless told.
    bool isEnabled(const QString& control) const { return !disabled_.value(control, false); }
    void setEnabled(const QString& control, bool enabled);
    bool isChecked(const QString& control) const { return checked_.value(control, false); }
    void setChecked(const QString& control, bool checked);
    bool isVisible(const QString& control) const { return !hidden_.value(control, false); }
    void setVisible(const QString& control, bool visible);

    bool formShown() const { return formShown_; }
    void setFormShown(bool shown);

signals:
    void changed();
    void statusLineChanged(const QString& text);

private:
    void set(QString& slot, const QString& v);

    QString caption_;
    QString comstattxt_;
    QString label2_ = QStringLiteral("...");
    QString lblreceipt_;
    QString lblProgr_;
    QString trayTip_;
    QHash<QString, QString> fields_;
    QHash<QString, bool> disabled_;
    QHash<QString, bool> checked_;
    QHash<QString, bool> hidden_;
    bool formShown_ = true;
};
