#include "core/Messages.h"
#include "forms/ScriptedOperator.h"

#include <gtest/gtest-spi.h>
#include <gtest/gtest.h>

namespace {

TEST(ScriptedOperatorItself, FailsTheTestOnAQuestionThatWasNotExpected) {
    ScriptedOperator script;

    EXPECT_NONFATAL_FAILURE(script.MsgBox(msg::FileError, Icon::Stop, Buttons::Ok),
                            "not expected: File Error!");
}

TEST(ScriptedOperatorItself, FailsTheTestOnAnExpectedQuestionThatNeverCame) {
    EXPECT_NONFATAL_FAILURE(
        {
            ScriptedOperator script;
            script.Expect(msg::FileError);
        },
        "never came: File Error!");
}

TEST(ScriptedOperatorItself, FailsTheTestOnOtherWordsAndOnAnotherIcon) {
    ScriptedOperator words;
    words.Expect(msg::TablesMissing);
    EXPECT_NONFATAL_FAILURE(words.MsgBox(msg::FileError, Icon::Stop, Buttons::Ok), "but came: File Error!");

    ScriptedOperator icon;
    icon.Expect(msg::FileError).With(Icon::Warning);
    EXPECT_NONFATAL_FAILURE(icon.MsgBox(msg::FileError, Icon::Stop, Buttons::Ok), "File Error!");
}

TEST(ScriptedOperatorItself, FailsTheTestOnAnAnswerToABoxThatAsksNothing) {
    ScriptedOperator script;
    script.Expect(msg::FileError).Answer(Answer::Yes);

    EXPECT_NONFATAL_FAILURE(script.MsgBox(msg::FileError, Icon::Stop, Buttons::Ok), "answered or not");
}

} // namespace
