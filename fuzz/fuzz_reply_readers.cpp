// One reply, decoded once, read by every query's reader and through every
// accessor, whichever command it answers.
#include "protocol/CountersQuery.h"
#include "protocol/CurrentReceiptQuery.h"
#include "protocol/DepartmentQuery.h"
#include "protocol/DeviceReply.h"
#include "protocol/DeviceSerialQuery.h"
#include "protocol/EftOutcomeQuery.h"
#include "protocol/SaleOnTableReply.h"
#include "protocol/TableContentsQuery.h"
#include "protocol/VatTableQuery.h"
#include "protocol/VersionQuery.h"
#include "shell/CodePage.h"

#include "support/FuzzScratch.h"

#include <QLocale>

namespace {

void readEverything(const DeviceReply& reply)
{
    reply.deviceCode();
    for (int statusByte = 1; statusByte <= 2; ++statusByte)
        for (int bit = 0; bit < 8; ++bit)
            reply.statusBitSet(statusByte, bit);
    reply.lastButOneField();
    OutcomeOfStatus(reply.status());

    CountersQuery().read(reply);
    for (const QLocale& locale : {QLocale::c(), QLocale(QLocale::Greek, QLocale::Greece)}) {
        CurrentReceiptQuery receipt;
        receipt.locale = locale;
        receipt.read(reply);
    }
    DepartmentQuery().read(reply);
    DeviceSerialQuery().read(reply);
    EftOutcomeQuery().read(reply);
    SaleOnTableReply::read(reply);
    if (const auto table = TableContentsQuery().read(reply))
        table->amount();
    VatTableQuery().read(reply);
    VersionQuery().read(reply);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    const QString text = codepage::fromWin1253(fuzzing::bytesOf(data, size));
    readEverything(DeviceReply::decode(text, false));
    readEverything(DeviceReply::decode(text, true));
    // As callers that hold a status and a text hand them back.
    readEverything(DeviceReply::fromStatusAndText(0, text));
    return 0;
}
