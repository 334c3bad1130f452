#pragma once

#include "palm/Database.h"
#include "support/Lots.h"

#include <gtest/gtest.h>

#include <exception>
#include <string>
#include <string_view>

/// Bytes from hex digits; blanks and bars between them are for the reader.
std::string Hex(std::string_view digits);

/// Numbers at random, the ends of their range more often than chance has them.
std::uint8_t AnyU8(Lots& lots);
std::uint16_t AnyU16(Lots& lots);
std::uint32_t AnyU32(Lots& lots);

/// A text of `shortest` to `longest` bytes without NUL.
std::string AnyText(Lots& lots, int shortest, int longest);

/// A database of either kind within its limits, as one is that was read from a file.
Database AnyDatabase(Lots& lots);

/// What a deed is refused with. A deed that goes well, or fails in another way, fails the test.
template <typename Deed>
std::string Refusal(Deed&& deed) {
    try {
        deed();
    } catch (const PalmFailure& failure) {
        return failure.what();
    } catch (const std::exception& other) {
        ADD_FAILURE() << "another exception: " << other.what();
        return {};
    }
    ADD_FAILURE() << "nothing was refused";
    return {};
}

/// True when a deed went well, false when it was refused. Any other failure fails the test.
template <typename Deed>
bool GoesWell(Deed&& deed) {
    try {
        deed();
        return true;
    } catch (const PalmFailure&) {
    } catch (const std::exception& other) {
        ADD_FAILURE() << "another exception: " << other.what();
    }
    return false;
}
