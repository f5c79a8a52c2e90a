#pragma once

// Device codes the register answers with (their texts live in the driver).
namespace devicecode {

enum : int {
    kWrongFieldCount = 0x01,
    kFieldTooLong = 0x02,
    kWrongFields = 0x05,
    kWrongCommand = 0x06,
    kWrongDepartment = 0x08,
    kWrongVat = 0x09,
    kWrongPayment = 0x0C,
    kReceiptOpen = 0x14,
    kInPayment = 0x15,
    kWrongPrice = 0x18,
    kWrongDiscount = 0x1C,
    kInactivePayment = 0x40,
    kInactiveDepartment = 0x41,
    kNoOpenReceipt = 0x46,
    kDiscountLimit = 0x4A,
    kZeroDiscount = 0x4B,
    kBlankDescription = 0x4C,
    kNegativeTotal = 0x53,
    kNoChangeForPayment = 0x5A,
    kInvalidRefund = 0x6F,
    kInvalidVoid = 0x70,
    kWrongAesKey = 0x7D,
    kNeedQuantity = 0x88,
    kInactiveTable = 0xAF,
    kEftInactive = 0xBC,
    kTableClosureInProgress = 0xC9,
    kNoLinesToTransfer = 0xCA,
    kTableWrongState = 0xCE,
};

} // namespace devicecode
