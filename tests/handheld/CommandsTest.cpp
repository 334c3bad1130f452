#include "handheld/HandheldTest.h"

#include "handheld/CommandTable.h"
#include "support/FaultyDisk.h"

#include <sstream>

namespace {

class CommandsTest : public HandheldTest {
protected:
    static CommandResult Say(const std::vector<std::string>& words) {
        std::ostringstream out, err;
        const Outcome how = RunCommand(words, {out, err, {}, {}});
        return {how, out.str(), err.str()};
    }
};

TEST_F(CommandsTest, ANewHandheldHasItsUserAndItsIds) {
    const CommandResult result =
        Run({"new", "--user", "J\xC3\xB6rg", "--id", "99", "--machine", "M7", "--memory", "50000"});

    EXPECT_EQ(result.Out, "A handheld stands in " + Place() + ", user J\xC3\xB6rg, id 99\n") << result.Err;
    EXPECT_EQ(Again().Settings.User.Name, "J\xF6rg");
    EXPECT_EQ(Its().Settings.User.UserId, 99U);
    EXPECT_EQ(Its().Settings.Machine, "M7");
    EXPECT_EQ(Its().Store.Memory(), 50000U);
    EXPECT_EQ(Run({"new", "--no-user"}).Err, "handheld: there is a handheld in " + Place() + " already\n");
}

TEST_F(CommandsTest, AnIdThatIsNotGivenIsMadeFromTheName) {
    Run({"new", "--user", "Anna"});
    const std::uint32_t anna = Again().Settings.User.UserId;
    EXPECT_NE(anna, 0U);

    std::ostringstream out, err;
    RunCommand({Folder() + "other", "new", "--user", "Berta"}, {out, err, {}, {}});

    EXPECT_NE(Handheld(Folder() + "other").Settings.User.UserId, anna);
}

TEST_F(CommandsTest, AHandheldWithoutAUserHasTheIdZero) {
    EXPECT_EQ(Run({"new", "--no-user"}).How, Outcome::Done);

    EXPECT_EQ(Again().Settings.User.UserId, 0U);
    EXPECT_EQ(Its().Settings.User.Name, "");
    EXPECT_EQ(Its().Settings.Memory, 16U << 20);
}

TEST_F(CommandsTest, ANewHandheldsOptionsAreChecked) {
    for (const std::vector<std::string>& words : {std::vector<std::string>{"new"},
                                                  {"new", "--user", "A", "--no-user"},
                                                  {"new", "--no-user", "--id", "3"},
                                                  {"new", "--user", " "},
                                                  {"new", "--user", std::string(41, 'x')},
                                                  {"new", "--user", "A", "--id", "4294967296"},
                                                  {"new", "--user", "A", "--machine", "TOOLONG"},
                                                  {"new", "--user", "A", "--memory", "0"},
                                                  {"new", "--user", "A", "extra"}}) {
        EXPECT_EQ(Run(words).How, Outcome::Misused);
    }
    EXPECT_FALSE(Exists(Place() + "Handheld.txt"));
}

TEST_F(CommandsTest, HelpTellsEveryCommandAndThatItStandsIn) {
    const CommandResult all = Say({"help"});

    EXPECT_EQ(all.How, Outcome::Done);
    EXPECT_NE(all.Out.find("stands in for a handheld"), std::string::npos);
    for (const CommandDef& command : AllCommands()) {
        EXPECT_NE(all.Out.find("handheld FOLDER " + std::string(command.Name)), std::string::npos);
        const CommandResult one = Say({"help", std::string(command.Name)});
        EXPECT_EQ(one.How, Outcome::Done);
        EXPECT_NE(one.Out.find(command.Help), std::string::npos);
        for (const OptionDef& option : command.Options) {
            EXPECT_NE(one.Out.find(option.Name), std::string::npos) << option.Name;
        }
    }
    EXPECT_EQ(Say({"help", "fly"}).How, Outcome::Misused);
}

TEST_F(CommandsTest, WhatIsNoCommandIsToldSo) {
    EXPECT_EQ(Say({}).How, Outcome::Misused);
    EXPECT_EQ(Say({Folder()}).How, Outcome::Misused);
    EXPECT_EQ(Say({Folder(), "fly"}).Err.substr(0, 34), "handheld: there is no command fly\n");
    EXPECT_EQ(Say({Folder() + "nowhere", "info"}).How, Outcome::Failed);
    EXPECT_EQ(Say({Folder(), "info"}).How, Outcome::Failed);
    EXPECT_FALSE(Exists(Folder() + "nowhere"));
}

TEST_F(CommandsTest, InfoTellsWhoItIs) {
    GivenHandheld();
    GivenTable("ZUKLINK", {{{"LK_HOTSYNC", "anna petrow"}, {"LK_MACH_ID", "A7"}, {"LK_LSTONUM", "0041"}}});

    EXPECT_EQ(Run({"info"}).Out, "This stands in for a handheld; no real one is behind it.\n"
                                 "User:            Anna Petrow\n"
                                 "User id:         4711\n"
                                 "Machine id:      A7\n"
                                 "Last order:      A70041\n"
                                 "Last HotSync:    never\n"
                                 "Last good one:   never\n"
                                 "Last desktop id: 0\n"
                                 "Memory:          16777216 bytes, " +
                                     std::to_string(Again().Store.Used()) +
                                     " used\n"
                                     "Databases:       1\n"
                                     "Clock:           2026-03-05 08:00:00\n");
}

TEST_F(CommandsTest, AProgramFileIsInstalledAndListed) {
    GivenHandheld();
    Database program;
    program.Name = "Tramble";
    program.Flags = ResourceDatabase;
    program.Version = 3;
    program.Type = FourCharacters("appl");
    program.Creator = FourCharacters("ZUK2");
    program.Resources = {{FourCharacters("code"), 1, "abc"}};
    const std::string bytes = WriteDatabase(program);
    const std::string file = GivenFile("Tramble.prc", bytes);

    EXPECT_EQ(Run({"install", file}).Out, "Tramble: 1 resources\n");

    EXPECT_EQ(Bytes(Place() + "databases/Tramble.prc"), bytes);
    EXPECT_EQ(Run({"programs"}).Out, "Tramble: version 3, type appl, creator ZUK2, 1 resources, " +
                                         std::to_string(bytes.size()) + " bytes\n1 program files\n");
    EXPECT_EQ(Run({"tables"}).Out, "0 tables\n");
}

TEST_F(CommandsTest, RecordsWithoutAnIdGetOneWhenTheyAreInstalled) {
    GivenHandheld();
    Database database;
    database.Name = "Memo";
    database.Records = {{0, 0, 0, "a"}, {0, 0, 0x1001, "b"}, {0, 0, 0x1001, "c"}};

    Run({"install", GivenFile("memo.pdb", WriteDatabase(database))});

    const std::vector<DatabaseRecord> records = Again().Store.Load("Memo").Records;
    ASSERT_EQ(records.size(), 3U);
    EXPECT_EQ(records[0].Id, 0x1002U);
    EXPECT_EQ(records[1].Id, 0x1001U);
    EXPECT_EQ(records[2].Id, 0x1003U);
}

TEST_F(CommandsTest, OfSeveralFilesNoneIsInstalledWhenOneIsDamaged) {
    GivenHandheld();
    Database database;
    database.Name = "Memo";
    const std::string good = GivenFile("good.pdb", WriteDatabase(database)),
                      bad = GivenFile("bad.pdb", "rubbish");

    const CommandResult result = Run({"install", good, bad});

    EXPECT_EQ(result.How, Outcome::Failed);
    EXPECT_NE(result.Err.find("bad.pdb: handheld database: cut off"), std::string::npos) << result.Err;
    EXPECT_TRUE(Again().Store.Entries().empty());
    EXPECT_EQ(Run({"install", Folder() + "missing.pdb"}).How, Outcome::Failed);
}

TEST_F(CommandsTest, ATableIsShownByEitherName) {
    GivenHandheld();
    GivenTable("ZUKVER", {{{"V_MAJOR", "100"}}});

    EXPECT_EQ(Run({"show", "zukver"}).Out, "ZUKVER, record 1\n  V_MAJOR     100\nZUKVER: 1 records\n");
    EXPECT_EQ(Run({"show", "VER"}).Out, Run({"show", "ZUKVER"}).Out);
    EXPECT_EQ(Run({"version"}).Out, "100\n");
    EXPECT_EQ(Run({"show", "ZUKPAY"}).Err, "handheld: the handheld has no table ZUKPAY (TZUK20000_ZUKPAY)\n");
}

TEST_F(CommandsTest, ATableAsTextHasItsFieldsNamesFirstAndQuotesWhatNeedsIt) {
    GivenHandheld();
    GivenTable("ZUKPAY", {{{"PAY_CODE", "V,1"}, {"PAY_CDESC", "\"Visa\" \xC4"}}});

    EXPECT_EQ(Run({"show", "PAY", "--csv"}).Out,
              "PAY_CODE,PAY_REF,PAY_CDESC,PAY_CDET\n\"V,1\",,\"\"\"Visa\"\" \xC3\x84\",\n");
}

TEST_F(CommandsTest, TablesAreListedAlsoThoseThatAreNotWhole) {
    GivenHandheld();
    GivenTable("ZUKVER", {{{"V_MAJOR", "100"}}});
    Database part = Its().Store.Load("TZUK20000_ZUKVER");
    part.Name = "TZUK20000_ZUKCUST~";
    Its().Store.Save(part);

    const std::string bytes = std::to_string(DatabaseStore::BytesOf(part)) + " bytes";
    EXPECT_EQ(Run({"tables"}).Out, "ZUKCUST: 1 records, " + bytes +
                                       ", left from a HotSync that did not end\nZUKVER: 1 records, " + bytes +
                                       "\n2 tables\n");
}

TEST_F(CommandsTest, ADamagedTableIsToldWithItsRecord) {
    GivenHandheld();
    GivenTable("ZUKVER", {{{"V_MAJOR", "100"}}});
    Database table = Its().Store.Load("TZUK20000_ZUKVER");
    table.Records.push_back({0, 0, 9, "short"});
    Its().Store.Save(table);

    EXPECT_EQ(Run({"version"}).Err,
              "handheld: TZUK20000_ZUKVER, record 2: record of a table: cut off: 10 bytes wanted, 5 there\n");
}

TEST_F(CommandsTest, AFolderIsLockedForTheLengthOfACommand) {
    GivenHandheld();
    std::ostringstream out, err;
    int holders = 0;
    const auto lock = [&](const std::string& folder) {
        EXPECT_EQ(folder, Place());
        if (holders > 0) throw Refusal("another command is using it");
        ++holders;
        return std::shared_ptr<void>(&holders, [](int* count) { --*count; });
    };
    const auto press = [&](Handheld&, const HotSyncJob&, std::ostream&) {
        EXPECT_EQ(RunCommand({Place(), "info"}, {out, err, lock, {}}), Outcome::Failed);
        return Outcome::Done;
    };

    EXPECT_EQ(RunCommand({Place(), "hotsync", "localhost"}, {out, err, lock, press}), Outcome::Done);

    EXPECT_EQ(err.str(), "handheld: another command is using it\n");
    EXPECT_EQ(holders, 0);
}

TEST_F(CommandsTest, ADamagedTableKeepsNoHandheldFromAHotSync) {
    GivenHandheld();
    GivenTable("ZUKAUDHH", {});
    GivenTable("ZUKLINK", {{{"LK_HOTSYNC", "Anna Petrow"}, {"LK_LSTONUM", "12A"}}});
    std::ostringstream out, err;
    bool isPressed = false;
    const auto press = [&](Handheld&, const HotSyncJob&, std::ostream&) {
        isPressed = true;
        return Outcome::Done;
    };

    EXPECT_EQ(RunCommand({Place(), "hotsync", "desk"}, {out, err, {}, press}), Outcome::Done);

    EXPECT_TRUE(isPressed);
    EXPECT_EQ(err.str(),
              "handheld: the totals are not written: ZUKLINK, record 1: LK_LSTONUM is no number of up to 8 "
              "digits: \"12A\"\n");
}

TEST_F(CommandsTest, AFullDiskKeepsNoHandheldFromBringingItsOrdersHome) {
    GivenHandheld();
    GivenTable("ZUKAUDHH", {});
    FaultyDisk disk(1);
    std::ostringstream out, err;
    bool isPressed = false;
    const auto press = [&](Handheld&, const HotSyncJob&, std::ostream&) {
        isPressed = true;
        return Outcome::Done;
    };
    Global.TheDisk = &disk;

    EXPECT_EQ(RunCommand({Place(), "hotsync", "desk"}, {out, err, {}, press}), Outcome::Done);

    Global.TheDisk = &NativeDisk();
    EXPECT_TRUE(isPressed);
    EXPECT_EQ(err.str().substr(0, 39), "handheld: the totals are not written: D") << err.str();
}

TEST_F(CommandsTest, AnAddressWithColonsStandsInBrackets) {
    GivenHandheld();
    std::ostringstream out, err;
    std::string asked;
    const auto press = [&](Handheld&, const HotSyncJob& job, std::ostream&) {
        asked = job.Host + " " + std::to_string(job.Port);
        return Outcome::Done;
    };
    const auto hotsync = [&](const std::string& where) {
        return RunCommand({Place(), "hotsync", where}, {out, err, {}, press});
    };

    EXPECT_EQ(hotsync("[::1]"), Outcome::Done);
    EXPECT_EQ(asked, "::1 14238");
    EXPECT_EQ(hotsync("[fe80::2]:5000"), Outcome::Done);
    EXPECT_EQ(asked, "fe80::2 5000");
    for (const char* where : {"::1", "[::1", "[]", "[::1]5000", "[::1]:"})
        EXPECT_EQ(hotsync(where), Outcome::Misused) << where;
}

TEST_F(CommandsTest, HotSyncIsPressedAsItIsAskedFor) {
    GivenHandheld();
    GivenTable("ZUKAUDHH", {});
    HotSyncJob asked;
    std::ostringstream out, err;
    const auto press = [&](Handheld& handheld, const HotSyncJob& job, std::ostream&) {
        asked = job;
        EXPECT_TRUE(handheld.Store.Has("TZUK20000_ZUKAUDHH"));
        return Outcome::Cut;
    };
    const auto hotsync = [&](std::vector<std::string> words) {
        words.insert(words.begin(), {Place(), "hotsync"});
        return RunCommand(words, {out, err, {}, press});
    };

    EXPECT_EQ(hotsync({"desk:5000", "--lookup", "office", "--lookup-port", "7", "--cancel-after", "9",
                       "--cut-after", "12", "--slow", "300", "--split", "--patience", "4"}),
              Outcome::Cut);
    EXPECT_EQ(asked.Host, "desk");
    EXPECT_EQ(asked.Port, 5000U);
    EXPECT_EQ(asked.Lookup, "office");
    EXPECT_EQ(asked.LookupPort, 7U);
    EXPECT_EQ(asked.CancelAfter, 9U);
    EXPECT_EQ(asked.CutAfter, 12U);
    EXPECT_EQ(asked.BytesPerSecond, 300U);
    EXPECT_TRUE(asked.Split);
    EXPECT_EQ(asked.Patience, 4);
    EXPECT_EQ(Cell("ZUKAUDHH", 0, "TH_EVENT"), "HOTSYNC");
    hotsync({"desk"});
    EXPECT_EQ(asked.Port, 14238U);
    EXPECT_EQ(asked.CutAfter, std::nullopt);
    for (const char* where : {"desk:0", "desk:x", ":5000", "desk:70000"})
        EXPECT_EQ(hotsync({where}), Outcome::Misused);
    EXPECT_EQ(hotsync({"desk", "--slow", "0"}), Outcome::Misused);
}

} // namespace
