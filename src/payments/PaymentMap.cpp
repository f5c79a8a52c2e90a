#include "payments/PaymentMap.h"

#include "shell/Operator.h"

#include "shell/FileProcedures.h"

#include <QFile>
#include <QtEndian>

namespace {


const QString kMapTitle = QStringLiteral("Μύνημα Kerbano");
const QString kMapUnreadable = QStringLiteral("Αδυναμία ανάγνωσης παραμέτρων πληρωμών");

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

PayEftRecord PaymentMapLookup(int payment, const QString& path, Operator& op)
{
    PayEftRecord record;
    record.payId = static_cast<qint16>(payment);
    if (payment < 1 || payment > 32767 || ReadPayEftRecord(path, record) != 0) {
        op.message(kMapTitle, kMapUnreadable, Operator::Icon::Warning);
        record.active = 0;
        record.preCollect = 0;
    }
    return record;
}
