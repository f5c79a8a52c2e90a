#pragma once

#include <QMutex>
#include <QStringList>

// Log lines on their way from the engine's thread to the log window. The
// engine only appends under a short lock; the window takes them in batches,
// so a burst of lines costs the exchange next to nothing.
class LogLineQueue {
public:
    void push(const QString& line);
    QStringList take();

private:
    QMutex mutex_;
    QStringList lines_;
};
