#pragma once

#include "hotsync/TableTransfer.h"
#include "store/TableRewrite.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

/// A table on its way from a handheld into its file. Until Put the old one stands there, and one that is not
/// put is forgotten. Memory holds the ink of its signatures, and no record.
///
/// Fails as TableRewrite, with PalmFailure for bytes that are no record of the layout, and with
/// TransferFailure for a table that is larger than it may be.
class FetchedTable {
public:
    struct Origin {
        std::string Database; ///< its name on the handheld
        HandheldLayout Layout;
        std::uint16_t Records; ///< of the database; each may hold several rows
        std::uint64_t Largest; ///< so many bytes of records and ink at most
    };

    /// `path` as TableTransfer::Upload tells.
    FetchedTable(std::string_view path, Origin origin);
    FetchedTable(const FetchedTable&) = delete;
    FetchedTable& operator=(const FetchedTable&) = delete;

    /// The next record of the database. One that is marked as deleted is counted, and not looked into.
    void Take(const DatabaseRecord& whole);

    /// The signatures go to the disk, and then the table into its place. Once, and last.
    TableTransfer::Result Put();

private:
    struct Signature {
        std::string Path;
        Ink Drawing;
    };
    /// The table that is being built, and the places of the handheld's fields in it.
    struct Columns {
        TableRewrite Table;
        std::vector<int> Places; ///< empty: the handheld's fields as they are
    };

    static Columns ColumnsFor(std::string_view path, const HandheldLayout& from);
    std::uint64_t LeastRows() const;
    std::uint64_t CheckedSize(std::uint64_t bytes) const;
    void Append(std::string_view fields);
    void TakeSignature(HandheldRecord& record);

    std::string path_;
    Origin origin_;
    RowReader reader_;
    std::uint64_t bytes_; ///< of LeastRows rows and the ink
    Columns columns_;
    TableTransfer::Result result_;
    std::vector<Signature> signatures_;
    std::int32_t homeless_ = 0; ///< signatures of orders whose code is no name for a file
    std::string firstHomeless_; ///< the code of the first of them; UTF-8
};
