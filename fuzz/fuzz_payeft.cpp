// payeft.dat of any bytes. The first two bytes are the payment looked up
// (16 bits, little-endian); the file is the rest.
#include "payments/PaymentMap.h"

#include "support/FuzzScratch.h"

#include "ScriptedOperator.h"

#include <QtEndian>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    if (size < 2)
        return 0;
    const qint16 payment = qFromLittleEndian<qint16>(data);
    const QString path =
        fuzzing::writeScratchFile(QStringLiteral("payeft.dat"), fuzzing::bytesOf(data + 2, size - 2));
    PayEftRecord record;
    record.payId = payment;
    ReadPayEftRecord(path, record);
    ScriptedOperator person;
    PaymentMapLookup(payment, path, person);
    return 0;
}
