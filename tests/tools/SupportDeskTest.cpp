#include "tools/SupportDesk.h"

#include "core/Failure.h"
#include "support/EngineTest.h"
#include "support/Fails.h"
#include "support/Rubbish.h"

#include <gtest/gtest.h>

namespace {

class SupportDeskTest : public EngineTest {
protected:
    SupportDeskTest() { GivenAppDirectory(); }

    void GivenSupport(const std::string& content) {
        GivenFile(Global.AppPath.substr(Folder().size()) + "Support.ini", content);
    }
};

TEST_F(SupportDeskTest, WithoutAFileThereIsNoAddress) {
    const SupportDesk desk = ReadSupportDesk();

    EXPECT_EQ(desk.Address, "");
    EXPECT_EQ(desk.Web, "");
}

TEST_F(SupportDeskTest, ReadsTheExampleOfTheDocumentation) {
    std::string example;
    for (std::string line : Lines(std::string(TRAMBLE_SOURCE) + "/docs/files.md")) {
        const bool isPart = line.find("[Support]") != std::string::npos ||
                            line.find("desk@") != std::string::npos || line.find("Web=") != std::string::npos;
        if (line.starts_with("    ") && isPart) example += line.substr(4) + "\r\n";
    }
    GivenSupport(example);

    const SupportDesk desk = ReadSupportDesk();

    EXPECT_EQ(desk.Address, "desk@example.com");
    EXPECT_EQ(desk.Web, "https://example.com/tramble");
}

TEST_F(SupportDeskTest, KeysAreTakenInAnyCaseAndOtherLinesArePassedOver) {
    GivenSupport("; ours\nADDRESS= one@a.b,two@c.d \n[Else]\nweb=HTTP://host:80/?q=1\nColour=red\n");

    EXPECT_EQ(ReadSupportDesk().Address, "one@a.b,two@c.d");
    EXPECT_EQ(ReadSupportDesk().Web, "HTTP://host:80/?q=1");
}

TEST_F(SupportDeskTest, WhatIsNoAddressIsToldWithFileLineAndReason) {
    for (const char* wrong :
         {"desk", "@b.c", "a@", "a@b@c", "a b@c.d", "a@b.c?Body=x", "a@b.c&CC=d", "a@b.c,", "a@b.c%0A"}) {
        GivenSupport("[Support]\nAddress=" + std::string(wrong) + "\n");
        const FailureSeen seen = FailureOf(ReadSupportDesk);
        EXPECT_EQ(seen.Number, 13);
        EXPECT_NE(seen.Words.find("Support.ini, line 2: no mail address"), std::string::npos) << wrong;
    }
}

TEST_F(SupportDeskTest, OnlyPagesOfTheWebAreTaken) {
    for (const char* wrong : {"example.com", "file:///etc/passwd", "https://", "https:// a", "http://-x",
                              "javascript:alert(1)", "https://a/\"b", "https://caf\xE9"}) {
        GivenSupport("Web=" + std::string(wrong) + "\n");
        const FailureSeen seen = FailureOf(ReadSupportDesk);
        EXPECT_EQ(seen.Number, 13);
        EXPECT_NE(seen.Words.find("Support.ini, line 1: no web address"), std::string::npos) << wrong;
    }
}

TEST_F(SupportDeskTest, AFileOfRubbishIsAFailureOrNoAddress) {
    for (const std::string& content :
         Rubbish("[Support]\r\nAddress=desk@example.com\r\nWeb=https://example.com/\r\n")) {
        GivenSupport(content);
        OnlyRunTimeFailures([] {
            const SupportDesk desk = ReadSupportDesk();
            EXPECT_EQ(desk.Address.find_first_of(" ?&#\r\n"), std::string::npos);
            EXPECT_EQ(desk.Web.find_first_of(" \r\n"), std::string::npos);
        });
    }
}

} // namespace
