#pragma once

#include "core/Operator.h"

/// The operator at the screen. Boxes are windows named `MsgBox` with buttons `Yes`, `No` and `Ok`;
/// the line question is a window named `InputBox` with `txtAnswer`, `Ok` and `Cancel`, and the choice of
/// a file one named `FileDialog` with the same three; the printer dialog is one named `PrintDialog` with `Ok`
/// and `Cancel`.
class QtOperator final : public Operator {
public:
    Answer MsgBox(const Text& message, Icon icon, Buttons buttons) override;
    std::optional<std::string> InputBox(const Text& prompt, const std::string& preset) override;
    std::optional<std::string> OpenFile(const FileQuestion& question) override;
    bool Ask(const Question& question) override;
    std::unique_ptr<Printer> PrinterDialog(const Text& document) override;
    bool OpenLink(std::string_view link) override;
    void Beep() override;
};
