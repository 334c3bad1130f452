#pragma once

#include "OddHandheld.h"
#include "WireRig.h"

#include <gtest/gtest.h>

#include <QString>
#include <QStringList>

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

/// The real HotSync Manager and what calls it. The handheld carries a table of three rows, NEW; the PC has
/// one of the same name and other rows, OLD.
class WireTest : public ::testing::Test {
protected:
    explicit WireTest(WireRig::Setup setup = {});

    /// A handheld inside the test with the data and the user of the rig's own.
    std::unique_ptr<OddHandheld> Odd();

    /// It calls and goes on until its line is closed; the table is fetched when a session begins.
    WireRig::Outcome Meet(OddHandheld& odd, bool mustBegin = false);
    WireRig::Outcome Meet(OddHandheld& odd, const std::vector<WireRig::Transfer>& transfers, bool mustBegin);

    std::vector<WireRig::Transfer> Fetch() const { return {{true, Target()}}; }
    std::string Target() const { return folder_ + "pc/ZUKVER.DBF"; }
    std::string Next() const { return folder_ + "next/ZUKVER.DBF"; }
    void PutOld() const;

    /// The first column of a table; empty without one.
    static QStringList RowsOf(const std::string& path);
    static QStringList Old() { return {QStringLiteral("old"), QStringLiteral("older")}; }
    static QStringList New() { return {QStringLiteral("100"), QStringLiteral("200"), QStringLiteral("300")}; }

    /// The manager runs, no work file lies anywhere, and the next handheld gets a session.
    void ExpectTheNextIsServed();

    /// What the log has got since this was called last.
    QString NewLog();
    void ExpectLogged(const QString& piece);

    /// The most memory that the manager has had, in megabytes.
    std::int64_t MostMemory() const;

    static void ExpectNoWorkFilesIn(const QString& folder);

    bool leaks_; ///< the programs know which leaks are not theirs
    WireRig rig_;
    std::string folder_;

private:
    qsizetype logged_ = 0;
    int odds_ = 0;
};
