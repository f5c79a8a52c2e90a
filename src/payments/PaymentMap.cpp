#include "payments/PaymentMap.h"

#include "shell/Operator.h"

#include "shell/FileProcedures.h"

#include <QFile>
#include <QtEndian>

namespace {


const QString kMapTitle = QStringLiteral("Μύνημα Kerbano");
const QString kMapUnreadable = QStringLiteral("Αδυναμία ανάγνωσης παραμέτρων πληρωμών");
const QString kRecordOutOfRange =
    QStringLiteral("Λάθος παράμετροι πληρωμής %1 στο payeft.dat: η πληρωμή γίνεται χωρίς EFTPOS");

constexpr qint16 kFlagOn = -1;

bool isFlag(qint16 value)
{
    return value == kFlagOn || value == 0;
}

qint64 slotOffset(qint16 payId)
{
    return (qint64(payId) - 1) * kPayEftSlotSize;
}

QByteArray encode(const PayEftRecord& r)
{
    QByteArray bytes(PayEftRecord::kSize, '\0');
    const qint16 fields[] = {r.payId, r.ecrPayment, r.ecrEft, r.active,
                             r.preCollect, r.retries, r.altPayment};
    for (int i = 0; i < 7; ++i)
        qToLittleEndian<qint16>(fields[i], bytes.data() + 2 * i);
    return bytes;
}

void decode(const QByteArray& bytes, PayEftRecord& r)
{
    qint16* fields[] = {&r.payId, &r.ecrPayment, &r.ecrEft, &r.active,
                        &r.preCollect, &r.retries, &r.altPayment};
    for (int i = 0; i < 7; ++i)
        *fields[i] = qFromLittleEndian<qint16>(bytes.constData() + 2 * i);
}

} // namespace

int ReadPayEftRecord(const QString& path, PayEftRecord& record)
{
    if (record.payId < 1)
        return -1;
    QFile file(path);
    if (!mFile::OpenCreatingForRead(file))
        return -1;
    QByteArray bytes(PayEftRecord::kSize, '\0');
    const qint64 offset = slotOffset(record.payId);
    if (offset < file.size()) {
        if (!file.seek(offset))
            return -1;
        const QByteArray held = file.read(PayEftRecord::kSize);
        if (held.isNull() && file.error() != QFileDevice::NoError)
            return -1;
        bytes.replace(0, held.size(), held); // a short slot reads zeros behind its end
    }
    decode(bytes, record);
    return 0;
}

int WritePayEftRecord(const QString& path, const PayEftRecord& record)
{
    if (record.payId < 1)
        return -1;
    QFile file(path);
    if (!file.open(QIODevice::ReadWrite))
        return -1;
    QByteArray slot = encode(record);
    slot.append(QByteArray(kPayEftSlotSize - PayEftRecord::kSize, '\0'));
    if (!file.seek(slotOffset(record.payId)))
        return -1;
    return file.write(slot) == slot.size() ? 0 : -1;
}

bool CardRecordInRange(const PayEftRecord& r, int payment)
{
    if (!r.isActive())
        return true;
    return r.active == kFlagOn && isFlag(r.preCollect) && r.payId == payment
        && r.ecrPayment >= 0 && r.ecrPayment <= kRegisterPayments
        && r.ecrEft >= 0 && r.ecrEft <= kRegisterTerminals
        && r.retries >= 0 && r.retries <= kMaxCardRetries
        && r.altPayment >= 0 && r.altPayment <= kRegisterPayments;
}

PayEftRecord PaymentMapLookup(int payment, const QString& path, Operator& op)
{
    PayEftRecord record;
    record.payId = static_cast<qint16>(payment);
    QString fault;
    if (payment < 1 || payment > 32767 || ReadPayEftRecord(path, record) != 0)
        fault = kMapUnreadable;
    else if (!CardRecordInRange(record, payment))
        fault = kRecordOutOfRange.arg(payment);
    if (!fault.isEmpty()) {
        op.message(kMapTitle, fault, Operator::Icon::Warning);
        record.active = 0;
        record.preCollect = 0;
    }
    return record;
}
