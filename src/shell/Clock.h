#pragma once

#include <QDateTime>
#include <QString>
#include <QtGlobal>

// Every deadline and wait of the driver goes through a Clock, so that a
// 40-second silence can be played out in a unit test in no time.
class Clock {
public:
    virtual ~Clock() = default;

    // Milliseconds from an arbitrary start; never goes backwards.
    virtual qint64 monotonicMs() const = 0;
    // Blocks the calling thread (the real clock sleeps in the OS).
    virtual void sleepMs(qint64 ms) = 0;
    // Waits while the calling thread's event loop keeps running (WaitPumping).
    virtual void pumpFor(qint64 ms) = 0;
    // Local wall time, for the result file and log stamps.
    virtual QDateTime now() const = 0;

    // "DD/MM/YYYY hh:mm:ss"
    QString stamp() const;
};

class RealClock final : public Clock {
public:
    RealClock();
    qint64 monotonicMs() const override;
    void sleepMs(qint64 ms) override;
    void pumpFor(qint64 ms) override;
    QDateTime now() const override;

private:
    qint64 startNs_;
};

// Time stands still until someone sleeps or advances it.
class VirtualClock final : public Clock {
public:
    explicit VirtualClock(QDateTime wallStart = QDateTime(QDate(2026, 1, 2), QTime(10, 20, 30)));
    qint64 monotonicMs() const override { return nowMs_; }
    void sleepMs(qint64 ms) override { advance(ms); }
    void pumpFor(qint64 ms) override;
    QDateTime now() const override { return wallStart_.addMSecs(nowMs_); }

    void advance(qint64 ms);
    qint64 totalSleptMs() const { return nowMs_; }

private:
    QDateTime wallStart_;
    qint64 nowMs_ = 0;
};
