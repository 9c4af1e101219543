/**
 * Files read and written as a whole.
 */
#pragma once

#include <cstddef>
#include <stdexcept>
#include <string>

namespace kestrin_tools {

/** A file cannot be read or written; what() names it and the reason. */
class FileError : public std::runtime_error
{
public:
    using std::runtime_error::runtime_error;
};

/** What a file holds, or its first bytes if it has more than `most`. Directories have nothing. */
std::string ReadWhole(const std::string& path, std::size_t most = static_cast<std::size_t>(-1));

/**
 * A file that appears under its name when it is complete: until then its content is in a temporary
 * file beside it, which goes with the object.
 */
class NewFile
{
public:
    /** Writes the temporary file. Directories and devices cannot be replaced. */
    NewFile(const std::string& path, const std::string& content);
    ~NewFile();
    NewFile(const NewFile&) = delete;
    NewFile& operator=(const NewFile&) = delete;

    /** Gives the file its name; one that had it is replaced. */
    void Publish();

private:
    std::string _path;
    std::string _temporary; ///< empty once published
};

} // namespace kestrin_tools
