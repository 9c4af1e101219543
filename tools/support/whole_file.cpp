#include "whole_file.h"

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>

namespace kestrin_tools {
namespace {

struct CloseFile
{
    void operator()(std::FILE* file) const { std::fclose(file); }
};

[[noreturn]] void Fail(const std::string& path)
{
    throw FileError(path + ": " + std::strerror(errno));
}

/** Writes all of it, whatever pieces the system takes. */
bool WriteAll(int file, const std::string& content)
{
    for (std::size_t done = 0; done < content.size();) {
        const ssize_t count = write(file, content.data() + done, content.size() - done);
        if (count < 0 && errno != EINTR)
            return false;
        done += static_cast<std::size_t>(std::max<ssize_t>(count, 0));
    }
    return true;
}

/** What files that are made without further wishes may be used for. */
mode_t DefaultMode()
{
    const mode_t mask = umask(0);
    umask(mask);
    return 0666 & ~mask;
}

} // namespace

std::string ReadWhole(const std::string& path, std::size_t most)
{
    const std::unique_ptr<std::FILE, CloseFile> file(std::fopen(path.c_str(), "rb"));
    if (!file)
        Fail(path);
    std::string content;
    char buffer[16384];
    while (content.size() < most) {
        const std::size_t wanted = std::min(sizeof buffer, most - content.size());
        const std::size_t count = std::fread(buffer, 1, wanted, file.get());
        content.append(buffer, count);
        if (count < wanted)
            break;
    }
    // A directory opens like a file and fails here.
    if (std::ferror(file.get()))
        Fail(path);
    return content;
}

NewFile::NewFile(const std::string& path, const std::string& content)
    : _path(path), _temporary(path + ".XXXXXX")
{
    struct stat status;
    if (stat(path.c_str(), &status) == 0 && !S_ISREG(status.st_mode))
        throw FileError(path + ": is there already and no file that could be replaced");
    const int file = mkstemp(_temporary.data());
    if (file < 0)
        Fail(path);
    bool written = WriteAll(file, content) && fchmod(file, DefaultMode()) == 0;
    int reason = errno;
    if (close(file) != 0 && written) {
        reason = errno;
        written = false;
    }
    if (!written) {
        std::remove(_temporary.c_str());
        errno = reason;
        Fail(path);
    }
}

NewFile::~NewFile()
{
    if (!_temporary.empty())
        std::remove(_temporary.c_str());
}

void NewFile::Publish()
{
    if (std::rename(_temporary.c_str(), _path.c_str()) != 0)
        Fail(_path);
    _temporary.clear();
}

} // namespace kestrin_tools
