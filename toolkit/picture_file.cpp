#include "picture_file_p.h"

#include "vrel_kestrin_graphic.h"

#include <cerrno>
#include <csetjmp>
#include <cstdio>
#include <cstring>
#include <new>

#include <sys/stat.h>

#include <jerror.h>
#include <jpeglib.h>
#include <png.h>

namespace zelxxx {

namespace {

constexpr std::size_t kBytesPerColor = 4;
constexpr long kMostJpegMemory = 1L << 28;
/** No deflate stream unpacks to more than this many times its length. */
constexpr std::size_t kMostDeflateRatio = 1032;
/** Of an image file: four numbers of 16 bits. */
constexpr std::size_t kHeaderSize = 8;

struct CloseFile
{
    void operator()(std::FILE* file) const { std::fclose(file); }
};
using File = std::unique_ptr<std::FILE, CloseFile>;

std::unique_ptr<UInt8[]> Allocate(std::size_t size)
{
    return std::unique_ptr<UInt8[]>(new (std::nothrow) UInt8[size]());
}

const char kNoMemory[] = "there is not enough memory for it";

bool BeginsWith(const FileContent& file, const char* signature, std::size_t length)
{
    return file.size >= length && std::memcmp(file.bytes.get(), signature, length) == 0;
}

std::string SizeProblem(std::size_t width, std::size_t height, std::size_t frames)
{
    if (width == 0 || height == 0 || frames == 0)
        return "has no pixels";
    // Sides are checked before they are multiplied.
    if (width <= kMostSide && height <= kMostSide && width * height <= kMostPixels / frames)
        return {};
    return "has " + (frames == 1 ? "" : std::to_string(frames) + " frames of ") +
           std::to_string(width) + " x " + std::to_string(height) + " pixels; the limits are " +
           std::to_string(kMostSide) + " a side and " + std::to_string(kMostPixels) + " in all";
}

/** Makes room for a picture of acceptable size. */
std::string Prepare(PictureFile* picture)
{
    std::string problem = SizeProblem(picture->width, picture->height, picture->frames);
    if (!problem.empty())
        return problem;
    picture->pixels = Allocate(picture->FramePixels() * picture->frames *
                               (picture->indexed ? 1 : kBytesPerColor));
    return picture->pixels ? std::string() : kNoMemory;
}

// ---- PNG

/** Whether all chunks are there, up to the last one: libpng does without that. */
bool ReachesPngEnd(const FileContent& file)
{
    constexpr std::size_t kChunkFrame = 12; // length, name and checksum
    std::size_t at = 8;
    while (at + kChunkFrame <= file.size) {
        const UInt8* chunk = file.bytes.get() + at;
        const std::size_t length = std::size_t{chunk[0]} << 24 | std::size_t{chunk[1]} << 16 |
                                   std::size_t{chunk[2]} << 8 | chunk[3];
        if (std::memcmp(chunk + 4, "IEND", 4) == 0)
            return at + length + kChunkFrame <= file.size;
        at += length + kChunkFrame;
    }
    return false;
}

std::string ReadPngPixels(const FileContent& file, png_image* image, PictureFile* picture)
{
    picture->width = image->width;
    picture->height = image->height;
    picture->frames = 1;
    // A pixel takes a bit at least. Checked before room is made for what cannot be there.
    const std::size_t least = std::size_t{image->width} * image->height / 8 / kMostDeflateRatio;
    if (SizeProblem(image->width, image->height, 1).empty() && least > file.size)
        return "the PNG is too short for its size";
    std::string problem = Prepare(picture);
    if (!problem.empty())
        return problem;
    image->format = PNG_FORMAT_RGBA;
    if (!png_image_finish_read(image, nullptr, picture->pixels.get(), 0, nullptr))
        return std::string("damaged PNG: ") + image->message;
    return {};
}

std::string UnpackPng(const FileContent& file, PictureFile* picture)
{
    if (!ReachesPngEnd(file))
        return "the PNG is cut short";
    png_image image = {};
    image.version = PNG_IMAGE_VERSION;
    if (!png_image_begin_read_from_memory(&image, file.bytes.get(), file.size))
        return std::string("damaged PNG: ") + image.message;
    std::string problem = ReadPngPixels(file, &image, picture);
    png_image_free(&image);
    return problem;
}

// ---- JPEG

/** libjpeg's state, with the place to return to when it meets an error, and what that was. */
struct JpegReader
{
    jpeg_decompress_struct info;
    jpeg_error_mgr errors;
    std::jmp_buf failed;
    char message[JMSG_LENGTH_MAX];
};

void JpegFailed(j_common_ptr info)
{
    auto* reader = static_cast<JpegReader*>(info->client_data);
    info->err->format_message(info, reader->message);
    std::longjmp(reader->failed, 1);
}

/** Warnings tell of damaged data, for which libjpeg would make up pixels; some are only pedantic.
 */
void JpegWarned(j_common_ptr info, int level)
{
    switch (info->err->msg_code) {
    case JWRN_ADOBE_XFORM:
    case JWRN_BOGUS_ICC:
    case JWRN_EXTRANEOUS_DATA:
    case JWRN_JFIF_MAJOR:
        return;
    default:
        if (level < 0)
            JpegFailed(info);
    }
}

void JpegIsSilent(j_common_ptr) {}

// libjpeg leaves these functions by a jump: nothing in them may have a destructor.

bool ReadJpegHeader(JpegReader* reader, const UInt8* data, std::size_t size)
{
    if (setjmp(reader->failed))
        return false;
    jpeg_create_decompress(&reader->info);
    reader->info.mem->max_memory_to_use = kMostJpegMemory;
    jpeg_mem_src(&reader->info, data, static_cast<unsigned long>(size));
    jpeg_read_header(&reader->info, TRUE);
    reader->info.out_color_space = JCS_EXT_RGBA; // opaque
    return true;
}

bool ReadJpegRows(JpegReader* reader, UInt8* rgba)
{
    if (setjmp(reader->failed))
        return false;
    jpeg_start_decompress(&reader->info);
    const std::size_t row_bytes = std::size_t{reader->info.output_width} * kBytesPerColor;
    while (reader->info.output_scanline < reader->info.output_height) {
        JSAMPROW row = rgba + reader->info.output_scanline * row_bytes;
        jpeg_read_scanlines(&reader->info, &row, 1);
    }
    jpeg_finish_decompress(&reader->info);
    return true;
}

std::string UnpackJpeg(const FileContent& file, PictureFile* picture)
{
    JpegReader reader = {};
    reader.info.err = jpeg_std_error(&reader.errors);
    reader.info.client_data = &reader;
    reader.errors.error_exit = JpegFailed;
    reader.errors.emit_message = JpegWarned;
    reader.errors.output_message = JpegIsSilent;
    std::string problem;
    bool whole = ReadJpegHeader(&reader, file.bytes.get(), file.size);
    if (whole) {
        picture->width = reader.info.image_width;
        picture->height = reader.info.image_height;
        picture->frames = 1;
        problem = Prepare(picture);
        whole = problem.empty() && ReadJpegRows(&reader, picture->pixels.get());
    }
    jpeg_destroy_decompress(&reader.info);
    if (!whole && problem.empty())
        problem = std::string("damaged JPEG: ") + reader.message;
    return problem;
}

// ---- Image files

std::string UnpackImageFile(const FileContent& file, PictureFile* picture)
{
    const auto number = [&](std::size_t offset) {
        return std::size_t{file.bytes[offset]} | std::size_t{file.bytes[offset + 1]} << 8;
    };
    if (file.size < kHeaderSize || number(4) != 8)
        return "is neither a PNG nor a JPEG nor an image file of 8 bits a pixel";
    picture->width = number(0);
    picture->height = number(2);
    picture->frames = number(6);
    picture->indexed = true;
    std::string problem = SizeProblem(picture->width, picture->height, picture->frames);
    if (!problem.empty())
        return problem;
    // What the stream holds is known before room is made for it.
    const std::size_t size = picture->FramePixels() * picture->frames;
    const UInt8* stream = file.bytes.get() + kHeaderSize;
    const std::size_t length = file.size - kHeaderSize;
    if (zelDecodeImageData(stream, length, nullptr, size) < size)
        return "the image file is damaged or cut short";
    problem = Prepare(picture);
    if (problem.empty())
        zelDecodeImageData(stream, length, picture->pixels.get(), size);
    return problem;
}

} // namespace

std::string ReadWholeFile(const char* name, FileContent* file)
{
    struct stat status = {};
    if (stat(name, &status) != 0)
        return std::strerror(errno);
    // Before it is opened: to open a pipe would wait for its writer.
    if (!S_ISREG(status.st_mode))
        return "is not a regular file";
    const auto size = static_cast<std::size_t>(status.st_size);
    if (size > kMostFileBytes)
        return "has " + std::to_string(size) + " bytes; " + std::to_string(kMostFileBytes) +
               " is the limit";
    const File stream(std::fopen(name, "rb"));
    if (!stream)
        return std::strerror(errno);
    file->bytes = Allocate(size + 1);
    if (!file->bytes)
        return kNoMemory;
    errno = 0;
    file->size = std::fread(file->bytes.get(), 1, size, stream.get());
    if (file->size < size)
        return errno != 0 ? std::strerror(errno) : "became shorter while it was read";
    return {};
}

std::string UnpackPicture(const FileContent& file, PictureFile* picture)
{
    *picture = PictureFile();
    PictureFile unpacked;
    std::string problem;
    if (BeginsWith(file, "\x89PNG\r\n\x1a\n", 8))
        problem = UnpackPng(file, &unpacked);
    else if (BeginsWith(file, "\xff\xd8\xff", 3))
        problem = UnpackJpeg(file, &unpacked);
    else
        problem = UnpackImageFile(file, &unpacked);
    if (problem.empty())
        *picture = std::move(unpacked);
    return problem;
}

} // namespace zelxxx
