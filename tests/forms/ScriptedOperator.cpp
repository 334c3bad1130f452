#include "forms/ScriptedOperator.h"

#include <gtest/gtest.h>

ScriptedOperator::~ScriptedOperator() {
    for (std::size_t i = come_; i < expected_.size(); ++i) {
        ADD_FAILURE() << "never came: " << expected_[i].Words.Utf8();
    }
}

ScriptedOperator::Expectation& ScriptedOperator::Expectation::Answer(::Answer answer) {
    script_.expected_[index_].Reply = answer;
    script_.expected_[index_].Answered = true;
    return *this;
}

ScriptedOperator::Expectation& ScriptedOperator::Expectation::Type(std::string text) {
    script_.expected_[index_].Typed = std::move(text);
    script_.expected_[index_].Answered = true;
    return *this;
}

ScriptedOperator::Expectation& ScriptedOperator::Expectation::With(Icon icon) {
    script_.expected_[index_].Picture = icon;
    return *this;
}

ScriptedOperator::Expectation& ScriptedOperator::Expectation::WithHelp(std::string topic) {
    script_.expected_[index_].Topic = std::move(topic);
    return *this;
}

ScriptedOperator::Expectation& ScriptedOperator::Expectation::Then(std::function<void()> deed) {
    script_.expected_[index_].Deed = std::move(deed);
    return *this;
}

ScriptedOperator::Expectation ScriptedOperator::Expect(const Text& text) {
    Expected next;
    next.Words = text;
    expected_.push_back(next);
    return {*this, expected_.size() - 1};
}

ScriptedOperator::Expectation ScriptedOperator::ExpectBeginning(const Text& text) {
    Expectation expectation = Expect(text);
    expected_.back().Whole = false;
    return expectation;
}

const ScriptedOperator::Expected* ScriptedOperator::Take(const Text& text) {
    if (come_ == expected_.size()) {
        ADD_FAILURE() << "not expected: " << text.Utf8();
        return nullptr;
    }
    const Expected& next = expected_[come_++];
    const std::string& words = next.Words.Utf8();
    const bool meets = next.Whole ? text == next.Words : text.Utf8().compare(0, words.size(), words) == 0;
    EXPECT_TRUE(meets) << "expected: " << words << "\nbut came: " << text.Utf8();
    if (next.Deed) next.Deed();
    return &next;
}

Answer ScriptedOperator::MsgBox(const Text& message, Icon icon, Buttons buttons) {
    const Expected* expected = Take(message);
    if (!expected) return buttons == Buttons::Ok ? Answer::Ok : Answer::No;
    if (expected->Picture) {
        EXPECT_EQ(*expected->Picture, icon) << message.Utf8();
    }
    EXPECT_EQ(expected->Answered, buttons == Buttons::YesNo) << "answered or not: " << message.Utf8();
    return buttons == Buttons::Ok ? Answer::Ok : expected->Reply;
}

std::optional<std::string> ScriptedOperator::InputBox(const Text& prompt, const std::string&) {
    const Expected* expected = Take(prompt);
    if (!expected || expected->Typed.empty()) return std::nullopt;
    return expected->Typed;
}

std::optional<std::string> ScriptedOperator::OpenFile(const FileQuestion& question) {
    return InputBox(question.Title, {});
}

bool ScriptedOperator::Ask(const Question& question) {
    const Expected* expected = Take(question.Message);
    if (expected && expected->Topic) {
        EXPECT_EQ(*expected->Topic, question.HelpTopic) << question.Message.Utf8();
    }
    return expected && expected->Reply != Answer::No;
}

void ScriptedOperator::ExpectPrinterDialog(const Text& document,
                                           std::function<std::unique_ptr<Printer>()> printer) {
    Expect(document);
    expected_.back().Paper = std::move(printer);
}

std::unique_ptr<Printer> ScriptedOperator::PrinterDialog(const Text& document) {
    const Expected* expected = Take(document);
    if (!expected || !expected->Paper) return nullptr;
    return expected->Paper();
}

void ScriptedOperator::ExpectLink(std::string_view beginning, bool opens) {
    ExpectBeginning(Text::Value(beginning)).Answer(opens ? ::Answer::Yes : ::Answer::No);
}

bool ScriptedOperator::OpenLink(std::string_view link) {
    links_.emplace_back(link);
    const Expected* expected = Take(Text::Value(link));
    return expected && expected->Reply == ::Answer::Yes;
}
