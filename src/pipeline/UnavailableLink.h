#pragma once

#include "link/DeviceLink.h"

class Operator;
struct ModuleVariables;

// Stands in for the register link until the real one is wired in: it never
// opens and every command goes unanswered.
class UnavailableLink final : public DeviceLink {
public:
    UnavailableLink(Operator& person, const ModuleVariables& vars);

    void SendCommand(const QString& command, qint16& status, QString& reply, bool quiet,
                     qint16& timeoutSeconds, int logMode) override;
    void ShowDeviceMessage(qint16 status, const QString& reply) override;
    void OpenDeviceLink(const QString& port, qint16& status, QString& reply, bool quiet) override;
    void CloseDeviceLink() override {}
    bool isConnected() const override { return false; }
    bool tcpPort() const override { return false; }

    using DeviceLink::SendCommand;

private:
    Operator& person_;
    const ModuleVariables& vars_;
};
