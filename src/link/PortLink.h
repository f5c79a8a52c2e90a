#pragma once

#include "link/DeviceLink.h"
#include "link/cPortProp.h"

class Clock;
class CommunicationLog;
class FormModel;
class Operator;
class TransportFactory;
struct ModuleVariables;

// The link to the register: the one port object, the retry loop of
// SendCommand, the opening with identification, and what the operator sees of
// a device status.
class PortLink final : public DeviceLink {
public:
    // A [port] value that names no register: a missing, non-numeric or too
    // high TCP port number. Nothing is shown; the caller handles it like a
    // fault of the settings.
    static constexpr qint16 kStatusBadPortSetting = -13;
    static constexpr int kLogModeResultFile = 0;
    static constexpr int kLogModeProbe = 1;
    static constexpr qint64 kPollIntervalMs = 2000;
    static constexpr qint16 kPollWaitSeconds = 3;
    static constexpr qint16 kPollWaitSecondsEft = 270;
    static constexpr qint16 kOperatorBusyPauseMs = 10000;
    static constexpr int kMessageWidth = 40;

    PortLink(ModuleVariables& vars, Clock& clock, Operator& op, FormModel& form,
             TransportFactory& factory, CommunicationLog& log);
    ~PortLink() override;

    void SendCommand(const QString& command, qint16& status, QString& reply, bool quiet,
                     qint16& timeoutSeconds, int logMode) override;
    using DeviceLink::SendCommand;
    void ShowDeviceMessage(qint16 status, const QString& reply) override;
    void OpenDeviceLink(const QString& port, qint16& status, QString& reply, bool quiet) override;
    void CloseDeviceLink() override;
    bool isConnected() const override { return port_.isConnected; }
    bool tcpPort() const override { return port_.tcpPort; }

    cPortProp& PortObject() { return port_; }

    // One exchange on whichever transport is open, always quiet. sentForm gets
    // the command as it went out: framed on serial, plain on TCP.
    void ExchangeCommand(const QString& command, qint16& status, QString& reply,
                         qint16& timeoutSeconds, QString& sentForm);

    // Asks "a/" and sets DeviceLabel, Label2 and spRet from the model.
    void IdentifyDevice(qint16& status, QString& reply, bool quiet);
    // False when the register accepted the table title and the opening of
    // table 290, i.e. it is the "Rest" edition.
    bool ProbeRestEdition();
    // The "Version Info" menu entry.
    void Ver();
    // Clears IgnoreOperatorBusy, then polls: true when the operator holds the register.
    bool IsOperatorBusy();
    // Waits with the event loop running.
    void WaitPumping(qint64 milliseconds);
    // True while the device-wait window is up for a device status.
    bool WaitFormOpen() const { return waitFormOpen_; }

private:
    void openSerial(const QString& port, const QString& device, qint16& status, QString& reply,
                    bool quiet);
    void openTcp(const QString& address, quint16 tcpPort, qint16& status, QString& reply,
                 bool quiet);
    void runWaitWindow(qint16 status, const QString& reply);
    void appendErrLine(qint16 status, const QString& sentForm);

    ModuleVariables& vars_;
    Clock& clock_;
    Operator& op_;
    FormModel& form_;
    TransportFactory& factory_;
    CommunicationLog& log_;
    cPortProp port_;
    bool waitFormOpen_ = false;
};
