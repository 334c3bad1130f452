#pragma once

#include "exchange/OrderCheck.h"
#include "store/CreateTable.h"

#include <initializer_list>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

// What the jobs of the sweep lay into an office before they are disturbed.

/// Enough records for a table to be more than one block of its writer.
inline constexpr int OrderCount = 320;
inline constexpr int LineCount = 1100;

using Cells = std::vector<std::pair<const char*, std::string>>;

/// The path of a table of the office.
std::string Table(const std::string& name);

/// Gives a table of the office these records, and no others. `k` counts from 1.
void Fill(const char* name, int count, Cells (*cells)(int k));

/// Numbers from 0 to `size` - 1 in no order; `size` has no factor in common with 37.
int Shuffled(int k, int size);

/// Orders in no order; the last tenth repeats codes that came before.
std::string OrderCode(int k);
std::string LineKey(int k);

void FillOrders();
void FillTotals(int events);
PCOrders Book();

/// What stands in a field of all records of a table, trimmed.
std::vector<std::string> Column(const char* table, const char* field);

/// Makes a table of other fields in a folder.
void PutInto(const std::string& folder, const char* table, std::initializer_list<FieldDef> fields);

/// Records a totals event; what the operator is told: nothing.
std::string Event(std::string_view event);

/// Orders that a handheld is about to send, and how many.
inline constexpr int OrdersSent = 300;
std::string CodeSent(int k);

/// What a table of the office was before a job, and is to be behind it, for the job's judge.
std::string Old(const std::string& table);
std::string New(const std::string& table);
/// Keeps what a table is and what the job makes of it.
void Keep(const std::string& table, const std::string& made);

/// The steps of a backup, the clock of the office being what it is: it says that it is there when all of its
/// tables are.
std::vector<std::string> StepsOfBackup();

/// The HotSync Manager's, with a trailing separator.
std::string HotSyncFolder();
