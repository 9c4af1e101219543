/**
 * Judges resource index files, the lists of fonts that the engine opens.
 *
 * The first line of such a file is the number of entries, and each of the lines that follow is an
 * entry "fnt:FILE", FILE relative to the directory of the index file.
 */
#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace kestrin_tools {

enum class Verdict
{
    Good,
    Note,   ///< a limit, or something unusual that does no harm
    Problem ///< a font that cannot be used, or a file that is not taken
};

/** What is said of a line. */
struct Finding
{
    int line; ///< from 1 on; 0 for the file as a whole
    Verdict verdict;
    std::string text;
};

/**
 * Judges every line of an index file. Fonts are opened by FreeType.
 *
 * @return at least one finding for every line the engine reads, in the lines' order
 * @throws FileError when there is no file to read
 */
std::vector<Finding> JudgeIndex(const std::string& path);

std::size_t CountProblems(const std::vector<Finding>& findings);

} // namespace kestrin_tools
