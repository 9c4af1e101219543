/** A directory for the files of a test, removed with everything in it. */
#pragma once

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <string>
#include <string_view>
#include <system_error>

namespace kestrin_test {

class TempDirectory
{
public:
    TempDirectory()
    {
        std::string name = std::filesystem::temp_directory_path() / "kestrin-test-XXXXXX";
        if (mkdtemp(name.data()) == nullptr)
            throw std::runtime_error("cannot make " + name + ": " + std::strerror(errno));
        _path = name;
    }
    ~TempDirectory()
    {
        std::error_code ignored;
        std::filesystem::remove_all(_path, ignored);
    }
    TempDirectory(const TempDirectory&) = delete;
    TempDirectory& operator=(const TempDirectory&) = delete;

    /** The path of a name in the directory, without a slash at its end. */
    std::string Path(std::string_view name) const { return (_path / name).string(); }

    /** Writes a file, making directories as needed, and returns its path. */
    std::string Write(std::string_view name, std::string_view content) const
    {
        const std::filesystem::path path = _path / name;
        std::filesystem::create_directories(path.parent_path());
        std::ofstream file(path, std::ios::binary);
        file.write(content.data(), static_cast<std::streamsize>(content.size()));
        if (!file.flush())
            throw std::runtime_error("cannot write " + path.string());
        return path.string();
    }

private:
    std::filesystem::path _path;
};

} // namespace kestrin_test
