/**
 * Random numbers for tests that can be run again.
 *
 *     SeededRandom random;                 // KESTRIN_TEST_SEED replaces the seed
 *     const int x = random.Between(-5, 5); // both ends included
 *
 * Without the variable every run takes the same seed, so that a test does not fail by chance in
 * somebody else's hands. As long as the object lives, every failure is reported with the seed.
 */
#pragma once

#include <cstdint>
#include <cstdlib>
#include <random>
#include <string>

#include <gtest/gtest.h>

namespace kestrin_test {

class SeededRandom
{
public:
    explicit SeededRandom(std::uint32_t seed = 20030415)
        : _seed(FromEnvironment("KESTRIN_TEST_SEED", seed)), _engine(_seed),
          _trace(__FILE__, __LINE__, "run again with KESTRIN_TEST_SEED=" + std::to_string(_seed))
    {
    }

    std::uint32_t Seed() const { return _seed; }

    /** A number from `low` to `high`, both included. */
    std::int64_t Between(std::int64_t low, std::int64_t high)
    {
        // Not a standard distribution: those differ between libraries.
        const auto range = static_cast<std::uint64_t>(high) - static_cast<std::uint64_t>(low) + 1U;
        const std::uint64_t offset = range == 0 ? _engine() : _engine() % range;
        return static_cast<std::int64_t>(static_cast<std::uint64_t>(low) + offset);
    }

    bool Chance(int percent) { return Between(1, 100) <= percent; }

    /** For standard algorithms. */
    std::mt19937_64& Engine() { return _engine; }

    /** How many rounds to run: `count`, or as many as KESTRIN_TEST_ROUNDS says. */
    static int Rounds(int count)
    {
        return static_cast<int>(
            FromEnvironment("KESTRIN_TEST_ROUNDS", static_cast<std::uint32_t>(count)));
    }

private:
    static std::uint32_t FromEnvironment(const char* name, std::uint32_t otherwise)
    {
        const char* text = std::getenv(name);
        return text ? static_cast<std::uint32_t>(std::strtoul(text, nullptr, 10)) : otherwise;
    }

    std::uint32_t _seed;
    std::mt19937_64 _engine;
    testing::ScopedTrace _trace;
};

} // namespace kestrin_test
