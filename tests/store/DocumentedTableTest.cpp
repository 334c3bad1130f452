#include "support/DocumentedBytes.h"
#include "support/EngineTest.h"

namespace {

class DocumentedTable : public EngineTest {};

TEST_F(DocumentedTable, TheWorkedExampleIsTheInstalledTable) {
    const std::string documented = DocumentedBytes(std::string(TRAMBLE_SOURCE) + "/docs/files.md");

    EXPECT_EQ(documented, Bytes(std::string(TRAMBLE_INSTALLED) + "/Install/ZUKVER.dbf"));
}

} // namespace
