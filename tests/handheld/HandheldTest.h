#pragma once

#include "handheld/Commands.h"
#include "handheld/Handheld.h"
#include "handheld/HandheldTable.h"
#include "handheld/Refusal.h"
#include "support/EngineTest.h"

#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

/// A record's fields by name, those that are not blank.
using Fields = std::vector<std::pair<std::string, std::string>>;

/// What a command printed and how it ended.
struct CommandResult {
    Outcome How = Outcome::Done;
    std::string Out, Err;
};

/// A handheld in the test's folder, on 2026-03-05 at eight.
class HandheldTest : public EngineTest {
protected:
    HandheldTest();

    /// Its folder, with the trailing separator.
    std::string Place() const { return Folder() + "handheld/"; }
    static HandheldSettings Anna();
    /// Makes the handheld and opens it.
    Handheld& GivenHandheld(const HandheldSettings& settings = Anna());
    /// Opens it anew, as the next command does.
    Handheld& Again();
    Handheld& Its() { return *handheld_; }

    /// Puts a table on it, with the layout of an office.
    void GivenTable(std::string_view name, const std::vector<Fields>& rows);
    /// Puts a table that it has into records of so many rows each.
    void GivenPacked(std::string_view name, std::uint16_t rows);
    /// All fields of a row that are not blank.
    Fields Row(std::string_view table, std::size_t row);
    std::string Cell(std::string_view table, std::size_t row, std::string_view field);
    std::size_t Count(std::string_view table);

    /// Runs a command on its folder.
    CommandResult Run(const std::vector<std::string>& words);

private:
    std::optional<Handheld> handheld_;
};

/// The words of the Refusal that a deed ends in; a deed that goes well fails the test.
template <typename Deed>
std::string RefusalOf(Deed&& deed) {
    try {
        deed();
    } catch (const Refusal& refusal) {
        return refusal.what();
    }
    ADD_FAILURE() << "nothing was refused";
    return {};
}
