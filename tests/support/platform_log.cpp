#include "platform_log.h"

#include <cstdarg>
#include <cstdio>

struct vrel_debug_category
{
};

namespace kestrin_test {

std::vector<LoggedMessage>& PlatformLog::Messages()
{
    static std::vector<LoggedMessage> messages;
    return messages;
}

std::vector<CreatedCategory>& PlatformLog::Categories()
{
    static std::vector<CreatedCategory> categories;
    return categories;
}

std::vector<std::string> PlatformLog::Texts()
{
    std::vector<std::string> texts;
    for (const LoggedMessage& message : Messages())
        texts.push_back(message.text);
    return texts;
}

} // namespace kestrin_test

using kestrin_test::PlatformLog;

extern "C" {

int __vrel_debug_min = 0;

vrel_debug_category* vrel_debug_category_new(const char* name, unsigned flags,
                                             const char* description)
{
    static vrel_debug_category categories[8];
    PlatformLog::Categories().push_back({name, flags, description});
    return &categories[PlatformLog::Categories().size() % 8];
}

void vrel_debug_log(vrel_debug_category* category, int level, const char* file,
                    const char* function, int line, const char* format, ...)
{
    char text[512];
    va_list arguments;
    va_start(arguments, format);
    std::vsnprintf(text, sizeof text, format, arguments);
    va_end(arguments);
    PlatformLog::Messages().push_back({category, level, file, function, line, text});
}

} // extern "C"
