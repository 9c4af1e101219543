#include "display_setup.h"

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <stdexcept>
#include <system_error>

#include <unistd.h>

namespace kestrin_display {
namespace {

namespace fs = std::filesystem;

bool HoldsModule(const fs::path& directory)
{
    std::error_code ignored;
    return fs::exists(directory / "systems" / "libdirectfb_kestrin_screen.so", ignored);
}

} // namespace

SetupResult UseScreenFile(const std::string& screen_file, int width, int height)
{
    if (std::getenv("DFBARGS") != nullptr)
        return SetupResult::KeptUserArguments;

    const std::string arguments = ScreenFileArguments(screen_file, width, height);
    const fs::path directory = fs::absolute(screen_file).parent_path();
    if (access(directory.c_str(), W_OK | X_OK) != 0)
        throw std::runtime_error("cannot make screen file " + screen_file + ": " +
                                 std::strerror(errno));
    setenv("DFBARGS", arguments.c_str(), 1);
    return SetupResult::Applied;
}

std::string ScreenFileArguments(const std::string& screen_file, int width, int height)
{
    constexpr int limit = static_cast<int>(screen_side_limit);
    if (width < 1 || width > limit || height < 1 || height > limit)
        throw std::invalid_argument("screen size " + std::to_string(width) + "x" +
                                    std::to_string(height) + " is not between 1x1 and " +
                                    std::to_string(limit) + "x" + std::to_string(limit));

    const std::string modules = FindModuleDirectory();
    for (const std::string& path : {screen_file, modules}) {
        if (path.find(',') != std::string::npos)
            throw std::invalid_argument("DirectFB takes no path with a comma: " + path);
    }

    // Layer 1 is set up at once: clients that release it and take it again then always find it
    // configured. DirectFB's own signal handlers, leak report and optimised copying stay out of the
    // way of debuggers, sanitizers and clients' own handlers.
    std::string arguments =
        "system=kestrin_screen,module-dir=" + modules + ",fbdev=" + screen_file +
        ",mode=" + std::to_string(width) + "x" + std::to_string(height) +
        ",init-layer=1,no-banner,quiet=info,quiet=unimplemented,no-deinit-check,no-sighandler,"
        "no-cursor,memcpy=libc";
    if (const char* options = std::getenv("KESTRIN_DISPLAY_OPTIONS"); options && *options != '\0')
        arguments += std::string(",") + options;
    return arguments;
}

std::string FindModuleDirectory()
{
    std::error_code ignored;
    const fs::path program = fs::read_symlink("/proc/self/exe", ignored);

    for (fs::path directory = program.parent_path(); !directory.empty();
         directory = directory.parent_path()) {
        for (const char* place : {"directfb-modules", KESTRIN_INSTALLED_MODULE_DIR}) {
            if (HoldsModule(directory / place))
                return (directory / place).string();
        }
        if (directory == directory.root_path())
            break;
    }
    if (HoldsModule(KESTRIN_INSTALL_PREFIX "/" KESTRIN_INSTALLED_MODULE_DIR))
        return KESTRIN_INSTALL_PREFIX "/" KESTRIN_INSTALLED_MODULE_DIR;
    throw std::runtime_error("the display module was not found in the directories above " +
                             program.string() +
                             ": build the target kestrin_screen_module or install kestrin");
}

} // namespace kestrin_display
