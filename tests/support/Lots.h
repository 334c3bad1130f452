#pragma once

#include "support/TableMaker.h"

#include <random>
#include <string>
#include <vector>

/// Tables and values at random, the same ones for the same seed.
class Lots {
public:
    explicit Lots(unsigned seed) : random_(seed) {}

    /// 0 to `limit` - 1.
    int Below(int limit) { return static_cast<int>(random_() % static_cast<unsigned>(limit)); }

    /// So many bytes, none below `lowest`.
    std::string Bytes(int length, int lowest = 0);

    /// What might stand in a field, now and then longer than it.
    std::string Value(char type, int length);

    /// Up to 60 fields of all kinds, some without length.
    std::vector<TableMaker::Column> Columns();

    /// Up to 300 records, deleted ones among them, with bytes behind the fields and behind the table.
    TableMaker Table(const std::vector<TableMaker::Column>& columns);

private:
    std::mt19937 random_;
};

/// A table's bytes up to and with the one behind the last counted record, a blank when it is missing.
std::string UpToTheEnd(std::string bytes);
