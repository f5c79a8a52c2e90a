#pragma once

#include "link/DeviceLink.h"

#include <QList>
#include <QString>
#include <deque>
#include <functional>

// A DeviceLink for tests of the layers above the wire: records every command
// and answers from a script. Unscripted commands succeed with an empty reply.
class ScriptedLink final : public DeviceLink {
public:
    struct Sent {
        QString command;
        bool quiet;
        qint16 timeoutSeconds;
        int logMode;
        bool sendOnce;
    };
    struct Answer {
        qint16 status = 0;
        QString reply;
    };

    // Answers in order of sending.
    std::deque<Answer> queue;
    // Consulted first when set: may answer any command (return true when it did).
    std::function<bool(const QString& command, Answer& answer)> responder;

    QList<Sent> sent;
    QList<QPair<qint16, QString>> shownMessages;

    qint16 openStatus = 0;
    QString openReply;
    int opens = 0;
    int closes = 0;
    bool connected = false;
    bool tcp = true;

    QStringList commands() const
    {
        QStringList out;
        for (const auto& s : sent)
            out << s.command;
        return out;
    }

    void ShowDeviceMessage(qint16 status, const QString& reply) override
    {
        shownMessages.append({status, reply});
    }
    void OpenDeviceLink(const QString&, qint16& status, QString& reply, bool) override
    {
        ++opens;
        status = openStatus;
        reply = openReply;
        connected = (status == 0);
    }
    void CloseDeviceLink() override
    {
        if (connected)
            ++closes;
        connected = false;
    }
    bool isConnected() const override { return connected; }
    bool tcpPort() const override { return tcp; }

private:
    DeviceReply doSend(const QString& command, const SendOptions& options) override
    {
        sent.append({command, options.quiet, options.timeoutSeconds == 0 ? qint16(3) : options.timeoutSeconds,
                     options.logMode, options.sendOnce});
        Answer a;
        if (!(responder && responder(command, a)) && !queue.empty()) {
            a = queue.front();
            queue.pop_front();
        }
        if (a.status != 0 && !options.quiet)
            ShowDeviceMessage(a.status, a.reply);
        return DeviceReply::fromStatusAndText(a.status, a.reply);
    }
};
