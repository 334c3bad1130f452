#include "handheld/HandheldTest.h"

#include <sstream>

HandheldTest::HandheldTest() {
    Global.Clock = [] { return DateTime{2026, 3, 5, 8, 0, 0}; };
}

HandheldSettings HandheldTest::Anna() {
    HandheldSettings settings;
    settings.User.Name = "Anna Petrow";
    settings.User.UserId = 4711;
    settings.Machine = "M1";
    settings.IdSeed = 0x1000;
    return settings;
}

Handheld& HandheldTest::GivenHandheld(const HandheldSettings& settings) {
    Handheld::Make(Place(), settings);
    return Again();
}

Handheld& HandheldTest::Again() {
    return handheld_.emplace(Place());
}

void HandheldTest::GivenTable(std::string_view name, const std::vector<Fields>& rows) {
    HandheldTable table = HandheldTable::OpenOrMake(handheld_->Store, name, 1, 1);
    for (const Fields& row : rows) {
        std::string fields = table.NewFields();
        for (const auto& [field, value] : row) {
            EXPECT_TRUE(table.HasField(field)) << field;
            table.Put(fields, field, value);
        }
        table.Append(fields);
    }
    handheld_->Store.Save(table.Data());
}

void HandheldTest::GivenPacked(std::string_view name, std::uint16_t rows) {
    Database data = Again().Store.Load(HandheldDatabaseName(name));
    HandheldLayout layout = ReadLayout(data.AppInfo);
    layout.RowsInRecord = rows;
    data.AppInfo = PackLayout(layout);
    std::vector<DatabaseRecord> records;
    for (std::size_t k = 0; k < data.Records.size(); ++k) {
        if (k % rows == 0)
            records.push_back(data.Records[k]);
        else
            records.back().Data += data.Records[k].Data;
    }
    data.Records = records;
    handheld_->Store.Save(data);
}

Fields HandheldTest::Row(std::string_view table, std::size_t row) {
    const HandheldTable read(Again().Store, table);
    Fields fields;
    for (std::size_t at = 0; at < read.Layout().Fields.size(); ++at) {
        const std::string value(read.Get(row, at));
        if (!value.empty()) fields.emplace_back(read.Layout().Fields[at].Name, value);
    }
    return fields;
}

std::string HandheldTest::Cell(std::string_view table, std::size_t row, std::string_view field) {
    const HandheldTable read(Again().Store, table);
    return std::string(read.Get(row, read.Field(field)));
}

std::size_t HandheldTest::Count(std::string_view table) {
    return HandheldTable(Again().Store, table).Count();
}

CommandResult HandheldTest::Run(const std::vector<std::string>& words) {
    std::vector<std::string> arguments{Place()};
    arguments.insert(arguments.end(), words.begin(), words.end());
    std::ostringstream out, err;
    const Outcome how = RunCommand(arguments, {out, err, {}, {}});
    return {how, out.str(), err.str()};
}
