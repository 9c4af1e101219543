/**
 * Random numbers that can be had again.
 *
 *     SeededRandom random;
 *     SCOPED_TRACE(random.Trace());       // a failure names the seed
 *     int x = random.Between(-5, 300);
 *
 * KESTRIN_TEST_SEED=<number> in the environment repeats a run; without it every run takes the same
 * seed, so that a test does not fail by chance in somebody else's hands.
 */
#pragma once

#include <cstdint>
#include <cstdlib>
#include <random>
#include <string>

namespace kestrin_test {

class SeededRandom
{
public:
    SeededRandom() : _seed(SeedFromEnvironment()), _engine(_seed) {}

    /** What to put into SCOPED_TRACE. */
    std::string Trace() const { return "KESTRIN_TEST_SEED=" + std::to_string(_seed); }

    /** A number from `least` to `most`, both included. */
    std::int64_t Between(std::int64_t least, std::int64_t most)
    {
        return std::uniform_int_distribution<std::int64_t>(least, most)(_engine);
    }

    /** For standard algorithms. */
    std::mt19937_64& Engine() { return _engine; }

private:
    static std::uint64_t SeedFromEnvironment()
    {
        const char* seed = std::getenv("KESTRIN_TEST_SEED");
        return seed ? std::strtoull(seed, nullptr, 10) : 20030415;
    }

    std::uint64_t _seed;
    std::mt19937_64 _engine;
};

} // namespace kestrin_test
