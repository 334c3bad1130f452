#pragma once

#include "core/Operator.h"

#include <deque>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

/// The operator of a test: a list of what is expected to be asked, and the answers. What was not
/// expected fails the test, and so does what never came.
class ScriptedOperator final : public Operator {
public:
    ~ScriptedOperator() override;

    /// What is expected next. A box with one button is answered by itself.
    class Expectation {
    public:
        Expectation(ScriptedOperator& script, std::size_t index) : script_(script), index_(index) {}
        Expectation& Answer(::Answer answer);
        Expectation& Type(std::string text);
        Expectation& With(Icon icon);
        /// The topic of the help that the question offers.
        Expectation& WithHelp(std::string topic);
        /// Called when the box comes, before it is answered.
        Expectation& Then(std::function<void()> deed);

    private:
        ScriptedOperator& script_;
        std::size_t index_;
    };

    Expectation Expect(const Text& text);

    /// A box whose text begins so; for words of the operating system behind it.
    Expectation ExpectBeginning(const Text& text);

    int Beeps() const { return beeps_; }
    bool AllCame() const { return expected_.size() == come_; }

    /// The printer dialog, which is answered by a printer or, with none, by giving up.
    void ExpectPrinterDialog(const Text& document, std::function<std::unique_ptr<Printer>()> printer);

    /// A link that begins so is handed to the desktop, which opens it or does not.
    void ExpectLink(std::string_view beginning, bool opens = true);
    /// All that were, whole.
    const std::vector<std::string>& Links() const { return links_; }

    Answer MsgBox(const Text& message, Icon icon, Buttons buttons) override;
    std::optional<std::string> InputBox(const Text& prompt, const std::string& preset) override;
    /// Expected by its title; the path is what is typed, and typing nothing gives up.
    std::optional<std::string> OpenFile(const FileQuestion& question) override;
    bool Ask(const Question& question) override;
    std::unique_ptr<Printer> PrinterDialog(const Text& document) override;
    bool OpenLink(std::string_view link) override;
    void Beep() override { ++beeps_; }

private:
    struct Expected {
        Text Words;
        bool Whole = true;
        ::Answer Reply = ::Answer::Ok;
        bool Answered = false;
        std::string Typed;
        std::optional<Icon> Picture;
        std::optional<std::string> Topic;
        std::function<void()> Deed;
        std::function<std::unique_ptr<Printer>()> Paper;
    };

    /// The expectation that a text meets; nothing when it meets none, which fails the test.
    const Expected* Take(const Text& text);

    std::vector<Expected> expected_;
    std::size_t come_ = 0;
    int beeps_ = 0;
    std::vector<std::string> links_;
};
