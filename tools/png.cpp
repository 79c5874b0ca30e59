#include "png.h"

#include "error.h"

#include <array>
#include <csetjmp>
#include <exception>
#include <memory>
#include <png.h>

namespace fikleipa::tool {
namespace {

// What the encoder's callbacks share. Nothing may be thrown through the encoder, which is left by a jump.
struct Encoding {
    std::vector<unsigned char> file;
    std::array<char, 128> message{};
};

void keepMessage(png_structp png, png_const_charp message) {
    auto& encoding = *static_cast<Encoding*>(png_get_error_ptr(png));
    std::snprintf(encoding.message.data(), encoding.message.size(), "%s", message);
    png_longjmp(png, 1);
}

void ignore(png_structp /*png*/, png_const_charp /*warning*/) {}

void append(png_structp png, png_bytep bytes, png_size_t count) {
    bool kept = true;
    try {
        auto& file = static_cast<Encoding*>(png_get_io_ptr(png))->file;
        file.insert(file.end(), bytes, bytes + count);
    } catch (const std::exception&) {
        kept = false;
    }
    if (!kept) png_error(png, "not enough memory");
}

void flush(png_structp /*png*/) {}

// Holds nothing that a jump out of the encoder would leave undestroyed.
bool writePicture(png_structp png, png_infop info, const Picture& picture) {
    // NOLINTNEXTLINE(cert-err52-cpp,modernize-avoid-setjmp-longjmp): the encoder's way to report an error
    if (setjmp(png_jmpbuf(png)) != 0) return false;
    const auto [width, height] = picture.size;
    png_set_IHDR(png, info, width, height, static_cast<int>(picture.sampleBits), PNG_COLOR_TYPE_RGB, PNG_INTERLACE_NONE,
                 PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
    png_set_sRGB_gAMA_and_cHRM(png, info, PNG_sRGB_INTENT_PERCEPTUAL);
    png_write_info(png, info);
    const std::size_t rowBytes = picture.bytes.size() / height;
    for (std::size_t y = 0; y < height; ++y) png_write_row(png, picture.bytes.data() + y * rowBytes);
    png_write_end(png, info);
    return true;
}

} // namespace

std::vector<unsigned char> encodePng(const Picture& picture) {
    Encoding encoding;
    png_structp png = png_create_write_struct(PNG_LIBPNG_VER_STRING, &encoding, keepMessage, ignore);
    png_infop info = png != nullptr ? png_create_info_struct(png) : nullptr;
    bool written = false;
    if (info != nullptr) {
        png_set_write_fn(png, &encoding, append, flush);
        written = writePicture(png, info, picture);
    }
    png_destroy_write_struct(&png, &info);
    if (!written)
        fail("cannot make a picture of {}x{}: {}", picture.size.width, picture.size.height, encoding.message.data());
    return std::move(encoding.file);
}

} // namespace fikleipa::tool
