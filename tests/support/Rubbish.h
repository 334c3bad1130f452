#pragma once

#include "core/Failure.h"
#include "core/Globals.h"

#include <gtest/gtest.h>

#include <exception>
#include <string>
#include <string_view>
#include <vector>

/// 300 contents of files, the same in every run: plain random bytes, and a good file with bytes
/// changed, parts cut out, repeated or moved, and line ends, NULs and long runs put in.
std::vector<std::string> Rubbish(std::string_view good);

/// Does something with a file that nobody should trust. It may succeed or fail as run-time failures
/// do; anything else, or a file left open, fails the test.
template <typename Deed>
void OnlyRunTimeFailures(Deed&& deed) {
    try {
        deed();
    } catch (const RunTimeFailure&) {
    } catch (const std::exception& other) {
        ADD_FAILURE() << "another exception: " << other.what();
    }
    EXPECT_EQ(Global.Files.Count(), 0) << "a file was left open";
}
