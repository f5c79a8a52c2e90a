#pragma once

class DeviceLink;
class FPrinter;
class FormModel;
struct ModuleVariables;
struct ReceiptState;

// Timer2: asks the register with "initialize" until it answers. Its tag
// counts the failed searches and is never reset, so after three only a new
// start of the program searches again.
class DeviceSearch {
public:
    enum class Outcome { OffLine, LinkFailed, Silent, Answered };

    static constexpr int kSearchesBeforeOffLine = 3;

    DeviceSearch(FormModel& form, ModuleVariables& vars, ReceiptState& receipt);
    void attach(DeviceLink& link, FPrinter& printer);

    // One tick: opens the link when it is closed, then asks the register.
    Outcome tick();
    int failures() const { return tag_; }

private:
    FormModel& form_;
    ModuleVariables& vars_;
    ReceiptState& receipt_;
    DeviceLink* link_ = nullptr;
    FPrinter* printer_ = nullptr;
    int tag_ = 0;
};
