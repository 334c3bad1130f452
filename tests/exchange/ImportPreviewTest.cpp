#include "exchange/ImportPreview.h"

#include "support/EngineTest.h"
#include "support/Fails.h"

namespace {

using Cells = std::vector<std::string>;

class ImportPreviewTest : public EngineTest {
protected:
    ImportPreview Of(const std::string& content) { return ImportPreview(GivenFile("cust.csv", content)); }
};

TEST_F(ImportPreviewTest, ShowsTheLineAboveAndTheFirstLinesOfData) {
    const auto preview = Of("Code,Name\nA1,Acme\n\nB2,Bolt\nC3,Cog\nD4,Dot\n");

    const PreviewColumns columns = preview.Columns(Delimiter::Csv, 2);

    EXPECT_EQ(columns.Count, 2U);
    ASSERT_EQ(columns.Above.size(), 1U);
    EXPECT_EQ(columns.Above[0].Cells, (Cells{"Code", "Name"}));
    ASSERT_EQ(columns.Data.size(), 3U);
    EXPECT_EQ(columns.Data[0].Number, 2);
    EXPECT_EQ(columns.Data[1].Number, 4);
    EXPECT_EQ(columns.Data[2].Cells, (Cells{"C3", "Cog"}));
    EXPECT_FALSE(columns.StartsWithHeadings);
}

TEST_F(ImportPreviewTest, ALineThatLooksLikeHeadingsIsNoticed) {
    const auto headings = [&](const std::string& content, Delimiter delimiter = Delimiter::Csv) {
        return Of(content).Columns(delimiter, 1).StartsWithHeadings;
    };

    EXPECT_TRUE(headings("Code,Street2\nA1,12 Mill Road\n"));
    EXPECT_FALSE(headings("A1,12 Mill Road\nA2,9 Low Street\n"));
    EXPECT_FALSE(headings("A1,,Acme\nA2,9 Low Street,Bolt\n"));
    EXPECT_FALSE(headings("Code,Name\nA1,Acme\n"));
    EXPECT_FALSE(headings("Code,Street\nA1,12 Mill Road\n", Delimiter::Tab));
    EXPECT_FALSE(headings("Code,Street\n"));
}

TEST_F(ImportPreviewTest, SplitsAsTheImportDoes) {
    const auto preview = Of("\"Smith, John\",12,\"x\"\n");

    const PreviewColumns columns = preview.Columns(Delimiter::CsvQuotes, 1);

    // The comma inside the quotes counts as a column too, as it does when the import counts them.
    EXPECT_EQ(columns.Count, 4U);
    EXPECT_EQ(columns.Data.at(0).Cells, (Cells{"Smith, John", "12", "\"x\"", ""}));
}

TEST_F(ImportPreviewTest, AFileThatEndsBeforeItsDataHasNoColumns) {
    const PreviewColumns columns = Of("Code,Name\n").Columns(Delimiter::Csv, 9);

    EXPECT_EQ(columns.Count, 0U);
    EXPECT_TRUE(columns.Data.empty());
}

TEST_F(ImportPreviewTest, ALongFileIsShownByItsFirstLines) {
    std::string content;
    for (std::size_t k = 0; k < ImportPreview::MaxLines; ++k) content += "a,b\n";

    EXPECT_FALSE(Of(content).HasMore());
    const auto longer = Of(content + "c,d\n");

    EXPECT_TRUE(longer.HasMore());
    EXPECT_EQ(longer.Lines().size(), ImportPreview::MaxLines);
    EXPECT_EQ(longer.Columns(Delimiter::Csv, 501).Data.at(0).Cells, (Cells{"c", "d"}));
}

TEST_F(ImportPreviewTest, AFileInUtf8IsShownInTheCodePage) {
    EXPECT_EQ(Of("Caf\xC3\xA9,1\n").Lines().at(0), "Caf\xE9,1");
}

TEST_F(ImportPreviewTest, AnEndlessLineIsCutAndHarmsNothing) {
    const auto preview = Of(std::string(3'000'000, ',') + "\nA1,Acme\n");

    EXPECT_LE(preview.Lines().at(0).size(), 4000U);
    EXPECT_LE(preview.Columns(Delimiter::Csv, 1).Count, 4001U);
    EXPECT_EQ(preview.Columns(Delimiter::Csv, 2).Data.at(0).Cells, (Cells{"A1", "Acme"}));
}

TEST_F(ImportPreviewTest, AnEndlessFirstLineIsShownWithoutTheMarkOfUtf8) {
    const auto preview = Of("\xEF\xBB\xBF"
                            "Caf\xC3\xA9" +
                            std::string(3'000'000, 'x') + "\nCaf\xC3\xA9\n");

    EXPECT_TRUE(preview.Lines().at(0).starts_with("Caf\xE9xxx"));
    EXPECT_EQ(preview.Lines().at(1), "Caf\xE9");
}

TEST_F(ImportPreviewTest, AFileThatIsNotThereCannotBeShown) {
    EXPECT_EQ(FailureNumber([&] { ImportPreview(Folder() + "gone.csv"); }), 53);
}

} // namespace
