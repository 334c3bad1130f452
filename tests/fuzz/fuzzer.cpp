// One target as a program of libFuzzer; FUZZ_TARGET is its name.

#include "fuzz/Targets.h"

#include <cstddef>
#include <cstdint>
#include <exception>
#include <iostream>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    static const FuzzTarget& Target = [&]() -> const FuzzTarget& {
        for (const FuzzTarget& target : FuzzTargets()) {
            if (target.Name == FUZZ_TARGET) return target;
        }
        std::terminate();
    }();
    try {
        Target.Run({reinterpret_cast<const char*>(bytes), size});
    } catch (const std::exception& broken) {
        std::cerr << "broken: " << broken.what() << std::endl;
        throw;
    }
    return 0;
}
