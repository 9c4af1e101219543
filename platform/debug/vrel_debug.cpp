#include "vrel_debug.h"

#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <string>

struct vrel_debug_category
{
    std::string name;
};

namespace {

int ThresholdFromEnvironment()
{
    const char* value = std::getenv("VREL_DEBUG");
    return value ? static_cast<int>(std::strtol(value, nullptr, 10)) : 0;
}

} // namespace

extern "C" {

int __vrel_debug_min = ThresholdFromEnvironment();

vrel_debug_category* vrel_debug_category_new(const char* name, unsigned, const char*)
{
    return new vrel_debug_category{name ? name : ""};
}

void vrel_debug_log(vrel_debug_category* category, int level, const char* file,
                    const char* function, int line, const char* format, ...)
{
    std::fprintf(stderr, "%s[%d] %s:%d %s: ", category ? category->name.c_str() : "-", level, file,
                 line, function);
    va_list arguments;
    va_start(arguments, format);
    std::vfprintf(stderr, format, arguments);
    va_end(arguments);
}

} // extern "C"
