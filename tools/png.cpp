#include "png.h"

#include "error.h"

#include <algorithm>
#include <array>
#include <csetjmp>
#include <exception>
#include <memory>
#include <png.h>

namespace fikleipa::tool {
namespace {

// What went wrong, for callbacks to tell. Nothing may be thrown through the codec, which is left by a jump.
using Message = std::array<char, 128>;

void keepMessage(png_structp png, png_const_charp text) {
    auto& message = *static_cast<Message*>(png_get_error_ptr(png));
    std::snprintf(message.data(), message.size(), "%s", text);
    png_longjmp(png, 1);
}

void ignore(png_structp /*png*/, png_const_charp /*warning*/) {}

void append(png_structp png, png_bytep bytes, png_size_t count) {
    bool kept = true;
    try {
        auto& file = *static_cast<std::vector<unsigned char>*>(png_get_io_ptr(png));
        file.insert(file.end(), bytes, bytes + count);
    } catch (const std::exception&) {
        kept = false;
    }
    if (!kept) png_error(png, "not enough memory");
}

void flush(png_structp /*png*/) {}

void take(png_structp png, png_bytep bytes, png_size_t count) {
    auto& file = *static_cast<std::span<const unsigned char>*>(png_get_io_ptr(png));
    if (count > file.size()) png_error(png, "the file ends within the picture");
    std::copy_n(file.begin(), count, bytes);
    file = file.subspan(count);
}

// Until the size of the rows is known. As the others below, holds nothing that a jump would leave undestroyed.
bool readHeader(png_structp png, png_infop info) {
    // NOLINTNEXTLINE(cert-err52-cpp,modernize-avoid-setjmp-longjmp): the codec's way to report an error
    if (setjmp(png_jmpbuf(png)) != 0) return false;
    png_read_info(png, info);
    png_set_expand(png);
    png_set_gray_to_rgb(png);
    png_set_strip_alpha(png);
    png_set_interlace_handling(png);
    png_read_update_info(png, info);
    return true;
}

bool readRows(png_structp png, unsigned char** rows) {
    // NOLINTNEXTLINE(cert-err52-cpp,modernize-avoid-setjmp-longjmp): as above
    if (setjmp(png_jmpbuf(png)) != 0) return false;
    png_read_image(png, rows);
    png_read_end(png, nullptr);
    return true;
}

bool readPicture(png_structp png, png_infop info, Picture& picture) {
    if (!readHeader(png, info)) return false;
    const Size size{png_get_image_width(png, info), png_get_image_height(png, info)};
    frameGeometry(layoutNamed("rgb24"), size); // fails for a size beyond all bounds
    const std::size_t rowBytes = png_get_rowbytes(png, info);
    picture = {size, png_get_bit_depth(png, info), std::vector<unsigned char>(rowBytes * size.height)};
    std::vector<unsigned char*> rows;
    for (std::size_t y = 0; y < size.height; ++y) rows.push_back(picture.bytes.data() + y * rowBytes);
    return readRows(png, rows.data());
}

bool writePicture(png_structp png, png_infop info, const Picture& picture) {
    // NOLINTNEXTLINE(cert-err52-cpp,modernize-avoid-setjmp-longjmp): as above
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
    std::vector<unsigned char> file;
    Message message{};
    png_structp png = png_create_write_struct(PNG_LIBPNG_VER_STRING, &message, keepMessage, ignore);
    png_infop info = png != nullptr ? png_create_info_struct(png) : nullptr;
    bool written = false;
    if (info != nullptr) {
        png_set_write_fn(png, &file, append, flush);
        written = writePicture(png, info, picture);
    }
    png_destroy_write_struct(&png, &info);
    if (!written) fail("cannot make a picture of {}x{}: {}", picture.size.width, picture.size.height, message.data());
    return file;
}

Picture decodePng(std::span<const unsigned char> file, std::string_view name) {
    Message message{};
    png_structp png = png_create_read_struct(PNG_LIBPNG_VER_STRING, &message, keepMessage, ignore);
    png_infop info = png != nullptr ? png_create_info_struct(png) : nullptr;
    Picture picture{};
    bool complete = false;
    try {
        if (info != nullptr) {
            png_set_read_fn(png, &file, take);
            complete = readPicture(png, info, picture);
        }
    } catch (...) {
        png_destroy_read_struct(&png, &info, nullptr);
        throw;
    }
    png_destroy_read_struct(&png, &info, nullptr);
    if (!complete) fail("{} is a broken PNG picture: {}", name, message.data());
    return picture;
}

} // namespace fikleipa::tool
