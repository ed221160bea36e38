#include <csetjmp>
#include <cstring>
#include <new>

#include <png.h>

#include "Platform/Base/LocalizedText.h"
#include "Platform/Picture/Picture.h"

namespace Vn::Picture {

namespace {

constexpr char c_operation[] = "write the picture";

struct Target {
    std::string * bytes;
    bool isOutOfMemory = false;
};

void append(png_structp png, png_bytep data, png_size_t size) {
    auto * const target = static_cast<Target *>(png_get_io_ptr(png));
    try {
        target->bytes->append(reinterpret_cast<char const *>(data), size);
        return;
    } catch (std::bad_alloc const &) {
        target->isOutOfMemory = true;
    }
    png_error(png, "out of memory");
}

void flush(png_structp) {}
[[noreturn]] void fail(png_structp png, png_const_charp) { png_longjmp(png, 1); }
void ignore(png_structp, png_const_charp) {}

// Everything that libpng jumps out of stands here, and owns nothing.
bool write(png_structp png, png_infop info, Picture const & picture, Target & target) {
    if (setjmp(png_jmpbuf(png))) return false;
    png_set_write_fn(png, &target, &append, &flush);
    png_set_IHDR(png, info, picture.width, picture.height, 8, PNG_COLOR_TYPE_RGB,
                 PNG_INTERLACE_NONE, PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
    png_set_sRGB(png, info, PNG_sRGB_INTENT_PERCEPTUAL);
    // What they are by default may change with the library.
    png_set_compression_level(png, 6);
    png_set_filter(png, PNG_FILTER_TYPE_BASE, PNG_FILTER_SUB);
    png_write_info(png, info);
    for (unsigned row = 0; row < picture.height; ++row)
        png_write_row(png, picture.pixels.data() + std::size_t{3} * picture.width * row);
    png_write_end(png, nullptr);
    return true;
}

} // namespace

Status toPng(Picture const & picture, std::string & bytes) {
    if (picture.width == 0 || picture.height == 0 ||
        picture.pixels.size() != std::size_t{3} * picture.width * picture.height)
        return Status::invalidArgument(c_operation, {}, localized("it has no pixels"));
    std::string written;
    Target target{&written};
    png_structp png = png_create_write_struct(PNG_LIBPNG_VER_STRING, nullptr, &fail, &ignore);
    png_infop info = png ? png_create_info_struct(png) : nullptr;
    bool const isWritten = info && write(png, info, picture, target);
    png_destroy_write_struct(&png, &info);
    if (!isWritten) return Status::outOfMemory(c_operation);
    bytes = std::move(written);
    return Status::success();
}

} // namespace Vn::Picture
