#include "store/DBFEdit.h"
#include "store/TableLock.h"
#include "store/TableRewrite.h"
#include "store/TableScan.h"
#include "support/EngineTest.h"
#include "support/Rubbish.h"
#include "support/TableMaker.h"

namespace {

class HostileTablesTest : public EngineTest {
protected:
    static std::string Good() {
        TableMaker maker({{"C_CODE", 'C', 10}, {"C_BAL", 'N', 8, 2}, {"C_SINCE", 'D', 8}});
        for (int k = 0; k < 6; ++k) {
            maker.Row({"C" + std::to_string(k), std::to_string(k * 3), "2026010" + std::to_string(k)},
                      k % 2 == 0 ? ' ' : '*');
        }
        return maker.Bytes();
    }

    /// Does something with each rubbish table in turn.
    template <typename Deed>
    void WithEach(Deed&& deed) {
        for (const std::string& content : Rubbish(Good())) {
            const std::string path = GivenFile("T.DBF", content);
            OnlyRunTimeFailures([&] { deed(path); });
        }
        EXPECT_FALSE(Exists(Folder() + "T.idx"));
        EXPECT_FALSE(Exists(Folder() + "T.DBF.zuk~"));
    }
};

TEST_F(HostileTablesTest, ARecordAtATime) {
    WithEach([](const std::string& path) {
        DBFEdit table;
        try {
            table.FileOpen(path);
            for (std::int32_t k = 1; k <= table.RecordCount; ++k) {
                table.Go(k);
                for (int field = 0; field <= table.NoFields(); ++field) {
                    table.WriteData(FieldKey(field), table.GetData(FieldKey(field)) + "1");
                }
                table.UpDate();
            }
            table.Go(DBFEdit::Last);
            table.KillEOFFlag();
            table.Go(DBFEdit::Append);
            if (table.RecordCount < 20) table.SortFile(FieldKey("C"), 0);
            table.Go(DBFEdit::First);
            table.DeleteRecord();
            table.ReIndex(path);
        } catch (...) {
            table.CloseAllFiles();
            throw;
        }
    });
}

TEST_F(HostileTablesTest, AWholeTableForward) {
    WithEach([](const std::string& path) {
        TableScan scan(path);
        while (scan.Next()) {
            for (int field = 0; field <= scan.Layout().FieldCount(); ++field) scan.Trimmed(field);
        }
        scan.Trailing();
    });
}

TEST_F(HostileTablesTest, ANewContentInTheTablesPlace) {
    WithEach([](const std::string& path) {
        const std::vector<std::string> first{"A", "1", "2026-11-15"};
        ShiftDown(path, first);
        CompactTable(path);
        EmptyTable(path);
        TableRewrite table(path);
        table.Append();
        for (int field = 1; field <= table.Layout().FieldCount(); ++field) table.Write(field, "2026-11-15");
        table.Commit();
        EXPECT_EQ(TableScan(path).RecordCount(), 1);
    });
}

TEST_F(HostileTablesTest, AMemoFile) {
    std::string memo(2048, '\0');
    memo.replace(512 + 8, 3, "INK");
    memo[512 + 5] = 3;
    Global.AppPath = Folder();
    for (const std::string& content : Rubbish(memo)) {
        const std::string path = GivenFile("T.DBT", content);
        OnlyRunTimeFailures([&] {
            DBFEdit table;
            for (const int block : {-1, 0, 1, 3, 0x7FFFFFFF}) table.GetDBTImage(path, block);
        });
    }
}

} // namespace
