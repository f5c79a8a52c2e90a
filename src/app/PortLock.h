#pragma once

#include <QLockFile>
#include <QString>
#include <memory>

// One kerbano per register: a lock file per port, in the temporary
// directory, held for the life of the process. A second kerbano on the same
// port finds it taken and ends.
class PortLock {
public:
    // The lock file of a [port] value: serial ports by their device, TCP
    // registers by address and port; empty for a value that names none.
    static QString lockPath(const QString& port);

    // True when the lock is held now (or the port names no register).
    bool take(const QString& port);
    // The process holding the port, after a failed take; 0 when unknown.
    qint64 holder() const { return holder_; }

private:
    std::unique_ptr<QLockFile> lock_;
    qint64 holder_ = 0;
};
