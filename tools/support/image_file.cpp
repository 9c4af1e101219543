#include "image_file.h"

#include "whole_file.h"

#include "DFB/image_decode_p.h"

#include <algorithm>

namespace kestrin_tools {
namespace {

using zelxxx::StreamEnd;
using zelxxx::StreamResult;

constexpr int byte_depth = 8;

const std::uint8_t* BytesOf(const std::string& text)
{
    return reinterpret_cast<const std::uint8_t*>(text.data());
}

std::string Bytes(std::uint64_t count)
{
    return std::to_string(count) + (count == 1 ? " byte" : " bytes");
}

/** Fills in the header; false when there is nothing to go on with. */
bool ReadHeader(const std::string& file, ImageReport& report)
{
    if (file.size() < image_header_size) {
        report.damage.push_back("the header is cut short: it takes 8 bytes and the file has " +
                                std::to_string(file.size()));
        return false;
    }
    const auto number = [&](std::size_t at) {
        return BytesOf(file)[at] | BytesOf(file)[at + 1] << 8;
    };
    report.width = number(0);
    report.height = number(2);
    report.depth = number(4);
    report.frames = number(6);
    const auto row =
        static_cast<std::uint64_t>(report.depth) * static_cast<std::uint64_t>(report.width) >> 3;
    report.unpacked =
        row * static_cast<std::uint64_t>(report.height) * static_cast<std::uint64_t>(report.frames);
    return true;
}

/** Judges the header's numbers; false when the engine would not look at the stream. */
bool JudgeHeader(ImageReport& report)
{
    const struct
    {
        int value;
        const char* name;
    } numbers[] = {{report.width, "the width"},
                   {report.height, "the height"},
                   {report.depth, "the number of bits per pixel"},
                   {report.frames, "the number of frames"}};
    for (const auto& number : numbers) {
        if (number.value == 0)
            report.damage.push_back(std::string(number.name) + " is 0");
    }
    if (!report.damage.empty())
        return false;
    if (report.unpacked == 0)
        report.damage.push_back("a row of " + std::to_string(report.width) + " pixels of " +
                                std::to_string(report.depth) + " bits has not one byte");
    if (report.unpacked > image_size_limit)
        report.damage.push_back("it would unpack to " + Bytes(report.unpacked) +
                                ", more than the " + std::to_string(image_size_limit) +
                                " that are loaded");
    const bool loaded = report.damage.empty();
    if (report.depth != byte_depth)
        report.damage.push_back("it has " + std::to_string(report.depth) +
                                " bits per pixel, and pixels are shown as bytes, 8 bits each");
    for (const int side : {report.width, report.height}) {
        if (side > image_side_limit)
            report.damage.push_back("a side has " + std::to_string(side) +
                                    " pixels, and coordinates end at 32767");
    }
    return loaded;
}

/** What stopped the decompressor, in words. */
std::string NameOf(const StreamResult& result, std::size_t stream_size)
{
    const std::string place = " after " + Bytes(result.read) + " of the compressed pixels, " +
                              Bytes(result.written) + " of the picture";
    // The engine's buffer goes on with zeros behind the file's end.
    if (result.end == StreamEnd::DataEnds || result.read > stream_size)
        return "the file ends before the end marker of its compressed pixels: it is cut short, "
               "after " +
               Bytes(result.written) + " of the picture";
    switch (result.end) {
    case StreamEnd::OutputFull:
        return "a pixel too many" + place + ": there is more than the header says";
    case StreamEnd::CopyTooLong:
        return "a repetition beyond the end of the picture" + place;
    case StreamEnd::CopyTooFar:
        return "a repetition of what is before the start of the picture" + place;
    default:
        return "bits that are no code" + place;
    }
}

void JudgeStream(const std::string& file, ImageReport& report)
{
    const std::size_t stream_size = file.size() - image_header_size;
    // Decoded as the engine does: in a buffer of the whole file's length, zero at its end.
    const std::string stream =
        file.substr(image_header_size) + std::string(image_header_size, '\0');
    const auto room = static_cast<std::size_t>(report.unpacked);
    const StreamResult result = zelxxx::DecodeStream(BytesOf(stream), stream.size(), nullptr, room);
    if (result.end != StreamEnd::Marker) {
        report.damage.push_back(NameOf(result, stream_size));
        return;
    }
    if (result.written < room) {
        report.damage.push_back("the compressed pixels end after " + Bytes(result.written) +
                                " where the header promises " + std::to_string(room));
        return;
    }
    if (result.written > room)
        report.notes.push_back("the compressed pixels have one byte more than the header says");
    if (result.read < stream_size)
        report.notes.push_back(Bytes(stream_size - result.read) +
                               " behind the end marker are not read");
    if (!report.damage.empty())
        return;
    report.image = {report.width, report.height, report.frames, {}};
    report.image.pixels.resize(room);
    zelxxx::DecodeStream(BytesOf(stream), stream.size(), report.image.pixels.data(), room);
}

} // namespace

const std::size_t image_size_limit = zelxxx::kMostImageBytes;

ImageReport InspectImage(const std::string& path)
{
    ImageReport report;
    std::string file;
    try {
        file = ReadWhole(path);
    } catch (const FileError& error) {
        throw ImageFileError(error.what());
    }
    report.size = file.size();
    if (ReadHeader(file, report) && JudgeHeader(report))
        JudgeStream(file, report);
    return report;
}

IndexedImage ReadImage(const std::string& path)
{
    ImageReport report = InspectImage(path);
    if (!report.damage.empty())
        throw ImageFileError(path + ": no image file, or damaged: " + report.damage.front());
    return std::move(report.image);
}

kestrin_display::ArgbImage FrameOf(const IndexedImage& image, int frame, const Palette& palette)
{
    kestrin_display::ArgbImage picture(image.width, image.height);
    const auto first =
        image.pixels.begin() + static_cast<std::ptrdiff_t>(image.FrameSize()) * frame;
    std::transform(first, first + static_cast<std::ptrdiff_t>(image.FrameSize()),
                   picture.pixels.begin(), [&](std::uint8_t index) { return palette[index]; });
    return picture;
}

std::string PackImage(const IndexedImage& image, const std::string& stream)
{
    std::vector<std::uint8_t> pixels(image.pixels.size());
    const StreamResult result =
        zelxxx::DecodeStream(BytesOf(stream), stream.size(), pixels.data(), pixels.size());
    if (result.end != StreamEnd::Marker || result.read != stream.size() ||
        result.written != pixels.size() || pixels != image.pixels)
        throw ImageFileError("the compressed pixels do not unpack to the picture");
    std::string file;
    for (const int number : {image.width, image.height, byte_depth, image.frames}) {
        file.push_back(static_cast<char>(number & 0xff));
        file.push_back(static_cast<char>(number >> 8));
    }
    return file + stream;
}

} // namespace kestrin_tools
