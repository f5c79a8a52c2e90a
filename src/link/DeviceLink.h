#pragma once

#include <QString>
#include <QtGlobal>

// The one road to the register. The real link frames and sends over serial or
// TCP; tests put a scripted link in its place.
class DeviceLink {
public:
    virtual ~DeviceLink() = default;

    // Sends one command and leaves the outcome in status (0 success, a device
    // code, or a negative link failure) and reply (the reply without control
    // bytes, or the message). quiet: nothing shown, nothing retried.
    // timeoutSeconds: the wait for ENQ on serial; 0 means 3 and is written back.
    // logMode 0: a failure leaves an "Err = " line in the result file.
    virtual void SendCommand(const QString& command, qint16& status, QString& reply, bool quiet,
                             qint16& timeoutSeconds, int logMode) = 0;

    // What the operator sees of a status: a message box, or the device-wait
    // window that polls until the register clears.
    virtual void ShowDeviceMessage(qint16 status, const QString& reply) = 0;

    // Opens the link named by [port] ("comN", a "/dev/" path, or address:port)
    // and identifies the register; failures come back as status and text and
    // have been shown to the operator unless quiet.
    virtual void OpenDeviceLink(const QString& port, qint16& status, QString& reply, bool quiet) = 0;
    virtual void CloseDeviceLink() = 0;
    virtual bool isConnected() const = 0;
    // True while the open link is TCP.
    virtual bool tcpPort() const = 0;

    // The usual call: not quiet, the default ENQ wait, logged to the result file.
    void SendCommand(const QString& command, qint16& status, QString& reply, bool quiet = false,
                     int logMode = 0)
    {
        qint16 timeoutSeconds = 0;
        SendCommand(command, status, reply, quiet, timeoutSeconds, logMode);
    }
};
