#include "compress.h"

#include <ucl/ucl.h>

#include <stdexcept>

namespace kestrin_tools {
namespace {

void Tell(ucl_uint done, ucl_uint, int, void* progress)
{
    (*static_cast<const CompressProgress*>(progress))(done);
}

} // namespace

std::string Compress(const std::vector<std::uint8_t>& bytes, int level,
                     const CompressProgress& progress)
{
    // What cannot be compressed grows by a bit for each byte.
    std::string stream(bytes.size() + bytes.size() / 8 + 256, '\0');
    auto size = static_cast<ucl_uint>(stream.size());
    ucl_progress_callback_t callback = {Tell, const_cast<CompressProgress*>(&progress)};
    const int result =
        ucl_init() == UCL_E_OK
            ? ucl_nrv2b_99_compress(bytes.data(), static_cast<ucl_uint>(bytes.size()),
                                    reinterpret_cast<ucl_byte*>(stream.data()), &size, &callback,
                                    level, nullptr, nullptr)
            : UCL_E_ERROR;
    if (result != UCL_E_OK)
        throw std::runtime_error("the compression failed with error " + std::to_string(result) +
                                 " of UCL");
    stream.resize(size);
    return stream;
}

} // namespace kestrin_tools
