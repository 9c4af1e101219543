#include "tdebug.h"

#include <cstdio>

namespace zelxxx {

vrel_debug_category* kestrin_debug = nullptr;

void ReportDfbFailure(const char* file, int line, const char* call, DFBResult result)
{
    std::fprintf(stderr, "%s <%d>:\n\t", file, line);
    DirectFBErrorFatal(call, result);
}

void zelError(const Error& error)
{
    error.Output();
}

void EOutOfMemory::Output() const
{
    zelDebugMessage("out of memory");
}

void EFileFailure::Output() const
{
    zelDebugMessage("failed to open file: ");
    zelDebugMessage(_file_name);
}

void EResourceFailure::Output() const
{
    zelDebugMessage("failed to load resource object with index ");
    zelDebugMessage(_res_index);
}

void EGraphicFailure::Output() const
{
    zelDebugMessage("graphic engine returned error code ");
    zelDebugMessage(_error_code);
    switch (_error_type) {
    case Allocation:
        zelDebugMessage(" when allocating resource");
        break;
    case CreateFont:
        zelDebugMessage(" when creating font");
        break;
    default:
        break;
    }
}

} // namespace zelxxx
