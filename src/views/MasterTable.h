#pragma once

#include "core/Globals.h"
#include "core/Text.h"
#include "store/TableCatalogue.h"
#include "store/TableReader.h"
#include "store/TableRecords.h"

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

/// What one of the master editors edits.
struct MasterKind {
    ViewFlag Flag;
    const char* File;
    const char* Key; ///< the field without which no record is saved
    MessageId KeyEmpty;
    const char* Lookup[2]; ///< the fields by which a record is found
};

/// The rules that a record is held against while it is edited; those of the Quality Check are in
/// quality/TableChecks.h, with what is asked and answered.
struct RecordRules {
    std::vector<int> (*FieldsWithoutRepeats)(std::string_view file);
    Text (*FirstObjection)(std::string_view file, const std::function<std::string(int place)>& cell,
                           const std::function<std::int32_t(int place, std::string_view text)>& otherWith);
};

extern const MasterKind CustomerMaster;
extern const MasterKind ItemMaster;
extern const MasterKind SalesTaxMaster;

/// A master table in the hands of its editor: one record current, and a list of all of them.
///
/// Fields go by their place in the table as it is installed, from 1. Changes and failures as TableRecords;
/// RunTimeFailure 70 when another program holds the table. A table that was changed since by anybody else (a
/// check puts it in order, an import fills it) is opened again before anything is written, and the
/// current record looked for in it: no change ever lands in another record.
class MasterTable {
public:
    /// Texts by the place of their field.
    using Cells = std::map<int, std::string>;

    /// The kind outlives it. Nothing is open yet.
    MasterTable(const MasterKind& kind, const RecordRules& rules);

    /// Opens it at a record, or at the nearest that there is.
    void Open(std::int32_t record);
    void Close() { records_.Close(); }
    bool IsOpen() const { return records_.IsOpen(); }

    std::int32_t RecordCount() const { return records_.RecordCount(); }
    std::int32_t RecordNumber() const { return records_.RecordNumber(); } ///< 0 in an empty table

    /// A field's name as installed. `place` is that of a field, here and below: std::out_of_range else.
    const char* FieldName(int place) const;
    int FieldLength(int place) const; ///< in bytes; 0: the table has no such field
    /// A field of the current record without blanks around; empty when the table lacks it.
    std::string Trimmed(int place) const;
    /// Whether it is the field without which no record is saved.
    bool IsKey(int place) const;

    /// An entry for each record in their order: the two fields of the kind, trimmed, with " : " between.
    const std::vector<std::string>& Lookup() const { return lookup_; }

    /// A record's number or a target of DBFEdit.
    void Go(std::int32_t target) { records_.Go(target); }

    /// The three below are false, nothing changed, when the current record is no longer in the table; the one
    /// that has its number by now is current then.

    /// Changes these fields of the current record and no others; the texts are trimmed.
    bool Write(const Cells& cells);
    /// Adds a blank record behind the last one, and goes to it.
    bool Append();
    /// Removes the current record. The one before it is current then, or the first.
    bool Delete();

    /// Opens a table that somebody else has changed again, and says that it was so; the record is looked
    /// for.
    bool Renew();

    /// What the rules would object to if the current record were saved with these texts, or what
    /// the table would make of them; empty for nothing, and for a record without a key.
    Text Warning(const Cells& cells) const;

private:
    bool Attend();
    void RefuseLocked() const;
    bool IsChanged() const;
    bool Find();
    bool GoToSought(std::int32_t before);
    void ReadLists();
    void NoteChange();
    std::string Entry(std::string_view first, std::string_view second) const;
    std::int32_t OtherWith(int place, std::string_view text) const;

    const MasterKind& kind_;
    RecordRules rules_;
    const TableEntry& entry_;
    TableRecords records_;
    std::unique_ptr<TableReader> file_; ///< as we have left it
    std::vector<std::string> sought_;   ///< the fields of the record that is looked for; empty for none
    std::vector<std::string> lookup_;
    std::map<int, std::vector<std::string>> folded_; ///< the fields in which no text is to come twice
};
