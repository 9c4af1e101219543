/** What a fuzz target consists of, for both of its drivers. */
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include <sys/mman.h>
#include <unistd.h>

/** One run on any bytes. It ends the process when something is wrong; returns 0. */
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace kestrin_test {

/** Files that are accepted, and some that are not, of which others are made. */
std::vector<std::string> FuzzSeeds();

/** A file in memory alone, which is quick, with these bytes; each call takes the one before away.
 */
inline std::string InMemoryFile(const std::uint8_t* data, std::size_t size)
{
    static const int file = memfd_create("input", 0);
    if (ftruncate(file, 0) != 0 || pwrite(file, data, size, 0) != static_cast<ssize_t>(size))
        std::abort();
    return "/proc/self/fd/" + std::to_string(file);
}

} // namespace kestrin_test

/** Ends the process when a run finds what must not be. */
#define FUZZ_REQUIRE(condition)                                                                    \
    do {                                                                                           \
        if (!(condition)) {                                                                        \
            std::fprintf(stderr, "%s:%d: not so: %s\n", __FILE__, __LINE__, #condition);           \
            std::abort();                                                                          \
        }                                                                                          \
    } while (false)
