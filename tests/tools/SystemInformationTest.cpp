#include "tools/SystemInformation.h"

#include "core/Globals.h"
#include "core/Messages.h"
#include "support/EngineTest.h"
#include "support/Fails.h"
#include "support/RefusingDisk.h"

#include <gtest/gtest.h>

namespace {

class SystemInformationTest : public EngineTest {
protected:
    SystemInformationTest() {
        GivenAppDirectory();
        Facts.ZUKVersion = Given("1.0.0");
        Facts.OSName = Given("Debian");
        Facts.OSVersion = Given("Version 6.1, Build 0");
        Facts.HotsyncVersion = Given("1.0.1");
    }

    static Text Given(std::string_view words) { return Text::Path(words); }

    static std::vector<std::string> Words(const std::vector<Text>& lines) {
        std::vector<std::string> words;
        for (const Text& line : lines) words.push_back(line.Utf8());
        return words;
    }

    std::vector<std::string> Expected() const {
        return {"ZUK Version:                  1.0.0",
                "Operating System Name:        Debian",
                "Operating System Version:     Version 6.1, Build 0",
                "Palm Desktop Version:         ",
                "Hotsync Manager Version:      1.0.1",
                "Application Path:             " + Global.AppPath,
                "Application Data Path:        " + Global.DBFPath,
                "DataIn (Import) Path:         " + Global.DataInPath,
                "DataOut (Export) Path:        " + Global.DataOutPath};
    }

    MachineFacts Facts;
};

TEST_F(SystemInformationTest, EachLineIsALabelBlanksUpToColumn30AndAValue) {
    EXPECT_EQ(Words(SystemInformation(Facts)), Expected());
}

TEST_F(SystemInformationTest, ALabelOf30CharactersOrMoreIsAFailure) {
    const std::string longest(29, 'x');
    Global.Replacements[msg::lblAppPath.Number] = {longest, 0};
    EXPECT_EQ(SystemInformation(Facts)[5].Utf8(), longest + ' ' + Global.AppPath);

    Global.Replacements[msg::lblAppPath.Number] = {longest + 'x', 0};
    const FailureSeen seen = FailureOf([&] { SystemInformation(Facts); });
    EXPECT_EQ(seen.Number, 5);
    EXPECT_NE(seen.Words.find(longest + 'x'), std::string::npos) << seen.Words;
}

TEST_F(SystemInformationTest, LengthsAreThoseOfCharactersAndNotOfTheirBytes) {
    Global.Replacements[msg::lblOSName.Number] = {"Système:", 0};

    EXPECT_EQ(SystemInformation(Facts)[1].Utf8(), "Système:" + std::string(22, ' ') + "Debian");
}

TEST_F(SystemInformationTest, APathWithALineEndStaysOnItsLine) {
    Global.DataInPath = "/tmp/two\nlines/";

    EXPECT_EQ(SystemInformation(Facts)[7].Utf8(), "DataIn (Import) Path:         /tmp/two lines/");
}

TEST_F(SystemInformationTest, TheLogFileHasTheLinesInUtf8) {
    Facts.OSName = Given("Système 日本");
    GivenFile("app/SysInfo.txt", "an older one");

    EXPECT_EQ(WriteSysInfo(Facts), Global.AppPath + "SysInfo.txt");

    std::vector<std::string> expected = Expected();
    expected[1] = "Operating System Name:        Système 日本";
    std::string content;
    for (const std::string& line : expected) content += line + "\r\n";
    EXPECT_EQ(Bytes(Global.AppPath + "SysInfo.txt"), content);
}

TEST_F(SystemInformationTest, ALogFileThatCannotBeWrittenIsAFailureAndTheOldOneStays) {
    GivenFile("app/SysInfo.txt", "an older one");
    RefusingDisk disk(Global.AppPath, Access::Create);
    Global.TheDisk = &disk;

    EXPECT_NE(FailureNumber([&] { WriteSysInfo(Facts); }), 0);

    EXPECT_EQ(Bytes(Global.AppPath + "SysInfo.txt"), "an older one");
}

TEST_F(SystemInformationTest, AMessageHasTheLinesInTheCodePageEachWithItsEnd) {
    EXPECT_EQ(MailBody({Given("Caf\xC3\xA9"), Text(), Given("日")}), "Caf\xE9\r\n\r\n?\r\n");
}

TEST_F(SystemInformationTest, ItsMessageBeginsWithItsTitle) {
    const std::string mail = SystemInformationMail(Facts);

    EXPECT_TRUE(mail.starts_with("ZUK Tramble PC System Information:\r\n"
                                 "ZUK Version:                  1.0.0\r\n"))
        << mail;
    EXPECT_TRUE(mail.ends_with("DataOut (Export) Path:        " + Global.DataOutPath + "\r\n"));
}

} // namespace
