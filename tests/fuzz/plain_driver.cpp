/**
 * Runs a fuzz target without a fuzzer: its seeds, every truncation of the small ones and, as often
 * as KESTRIN_TEST_ROUNDS says, a seed with bytes changed, put in or taken out.
 *
 *     image_file_corpus              runs them
 *     image_file_corpus DIRECTORY    writes the seeds there, for libFuzzer to begin with
 */
#include "fuzz_target.h"
#include "seeded_random.h"

#include <cstdio>
#include <filesystem>
#include <fstream>

using kestrin_test::SeededRandom;

namespace {

constexpr std::size_t kSmall = 400;

void Run(const std::string& input)
{
    // Of its exact size, for AddressSanitizer to see what is read beyond.
    const std::vector<std::uint8_t> bytes(input.begin(), input.end());
    LLVMFuzzerTestOneInput(bytes.data(), bytes.size());
}

std::string Changed(std::string input, SeededRandom& random)
{
    for (auto changes = random.Between(1, 4); changes > 0 && !input.empty(); --changes) {
        const auto place = static_cast<std::size_t>(
            random.Between(0, static_cast<std::int64_t>(input.size()) - 1));
        const auto byte = static_cast<char>(random.Between(0, 255));
        switch (random.Between(0, 5)) {
        case 0:
            input.insert(place, 1, byte);
            break;
        case 1:
            input.erase(place, 1);
            break;
        case 2:
            input[place] = byte;
            break;
        default:
            input[place] = static_cast<char>(input[place] ^ 1 << random.Between(0, 7));
            break;
        }
    }
    return input;
}

int Write(const std::vector<std::string>& seeds, const std::filesystem::path& directory)
{
    std::filesystem::create_directories(directory);
    for (std::size_t i = 0; i < seeds.size(); ++i) {
        std::ofstream file(directory / ("seed" + std::to_string(i)), std::ios::binary);
        if (!(file << seeds[i]).flush())
            return 1;
    }
    return 0;
}

} // namespace

int main(int argc, char** argv)
{
    const std::vector<std::string> seeds = kestrin_test::FuzzSeeds();
    if (argc > 1)
        return Write(seeds, argv[1]);
    for (const std::string& seed : seeds) {
        Run(seed);
        for (std::size_t length = 0; seed.size() <= kSmall && length < seed.size(); ++length)
            Run(seed.substr(0, length));
    }
    SeededRandom random;
    const int rounds = SeededRandom::Rounds(1000);
    for (int round = 0; round < rounds; ++round) {
        const auto which = random.Between(0, static_cast<std::int64_t>(seeds.size()) - 1);
        Run(Changed(seeds[static_cast<std::size_t>(which)], random));
    }
    // Standard output may be the target's and closed.
    std::fprintf(stderr, "%zu seeds and %d rounds of KESTRIN_TEST_SEED=%u\n", seeds.size(), rounds,
                 random.Seed());
    return 0;
}
