#include "png.h"

#include "error.h"

#include <algorithm>
#include <array>
#include <csetjmp>
#include <exception>
#include <new>
#include <png.h>
#include <span>

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

// The functions that a jump leaves hold nothing that would have to be destroyed.
bool readHeader(png_structp png, png_infop info) {
    // NOLINTNEXTLINE(cert-err52-cpp,modernize-avoid-setjmp-longjmp): the codec's way to report an error
    if (setjmp(png_jmpbuf(png)) != 0) return false;
    // Texts, profiles and the like may be packed a thousandfold; nothing is done with them.
    png_set_keep_unknown_chunks(png, PNG_HANDLE_CHUNK_NEVER, nullptr, -1);
    png_read_info(png, info);
    png_set_expand(png);
    png_set_gray_to_rgb(png);
    png_set_strip_alpha(png);
    png_read_update_info(png, info);
    return true;
}

bool readRow(png_structp png, unsigned char* row) {
    // NOLINTNEXTLINE(cert-err52-cpp,modernize-avoid-setjmp-longjmp): as above
    if (setjmp(png_jmpbuf(png)) != 0) return false;
    png_read_row(png, row, nullptr);
    return true;
}

bool readEnd(png_structp png) {
    // NOLINTNEXTLINE(cert-err52-cpp,modernize-avoid-setjmp-longjmp): as above
    if (setjmp(png_jmpbuf(png)) != 0) return false;
    png_read_end(png, nullptr);
    return true;
}

// Which pixels of a picture one part of it has: every so many from the first on. Interlaced ones come in seven parts.
struct Part {
    Size first;
    Size step;

    Size sizeIn(Size whole) const {
        const auto count = [](std::uint32_t all, std::uint32_t begin, std::uint32_t distance) {
            return all > begin ? dividedUp(all - begin, distance) : 0;
        };
        return {count(whole.width, first.width, step.width), count(whole.height, first.height, step.height)};
    }
};

constexpr std::array kWhole{Part{{0, 0}, {1, 1}}};
constexpr std::array kInterlaced{Part{{0, 0}, {8, 8}}, Part{{4, 0}, {8, 8}}, Part{{0, 4}, {4, 8}}, Part{{2, 0}, {4, 4}},
                                 Part{{0, 2}, {2, 4}}, Part{{1, 0}, {2, 2}}, Part{{0, 1}, {1, 2}}};

// Puts the parts' pixels, one part after the other, where they belong.
std::vector<unsigned char> joined(const std::vector<unsigned char>& parts, Size size, std::size_t pixelBytes) {
    std::vector<unsigned char> picture(parts.size());
    const unsigned char* pixel = parts.data();
    for (const Part& part : kInterlaced) {
        for (std::size_t y = part.first.height; y < size.height; y += part.step.height) {
            for (std::size_t x = part.first.width; x < size.width; x += part.step.width, pixel += pixelBytes)
                std::copy_n(pixel, pixelBytes, picture.data() + (y * size.width + x) * pixelBytes);
        }
    }
    return picture;
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

struct PngReader::Codec {
    explicit Codec(InputFile& source)
        : input(source), png(png_create_read_struct(PNG_LIBPNG_VER_STRING, &message, keepMessage, ignore)),
          info(png != nullptr ? png_create_info_struct(png) : nullptr) {
        if (info != nullptr) png_set_read_fn(png, this, take);
    }
    Codec(const Codec&) = delete;
    Codec& operator=(const Codec&) = delete;
    ~Codec() { png_destroy_read_struct(&png, &info, nullptr); }

    static void take(png_structp png, png_bytep bytes, png_size_t count) {
        auto& self = *static_cast<Codec*>(png_get_io_ptr(png));
        bool complete = false;
        try {
            complete = self.input.read({bytes, count}) == count;
        } catch (...) {
            self.error = std::current_exception();
        }
        if (!complete) png_error(png, "the file ends within the picture");
    }

    void check(bool succeeded) const {
        if (error) std::rethrow_exception(error);
        if (!succeeded) fail("{} is a broken PNG picture: {}", input.name(), message.data());
    }

    InputFile& input;
    Message message{};
    std::exception_ptr error; // of reading the file
    png_structp png;
    png_infop info;
};

PngReader::PngReader(InputFile& input) : codec_(std::make_unique<Codec>(input)) {
    const Codec& codec = *codec_;
    if (codec.info == nullptr) throw std::bad_alloc();
    codec.check(readHeader(codec.png, codec.info));
    size_ = {png_get_image_width(codec.png, codec.info), png_get_image_height(codec.png, codec.info)};
    sampleBits_ = png_get_bit_depth(codec.png, codec.info);
    frameGeometry(layoutNamed(sampleBits_ == 8 ? "rgb24" : "rgb48"), size_); // fails for a size beyond all bounds
}

PngReader::~PngReader() = default;

Picture PngReader::read() {
    const Codec& codec = *codec_;
    const std::size_t pixelBytes = std::size_t{3} * sampleBits_ / 8;
    const bool interlaced = png_get_interlace_type(codec.png, codec.info) != PNG_INTERLACE_NONE;
    const auto parts = interlaced ? std::span<const Part>(kInterlaced) : kWhole;
    std::vector<unsigned char> row(png_get_rowbytes(codec.png, codec.info));
    std::vector<unsigned char> bytes;
    for (const Part& part : parts) {
        const auto [width, height] = part.sizeIn(size_);
        for (std::uint32_t y = 0; width != 0 && y < height; ++y) {
            codec.check(readRow(codec.png, row.data()));
            bytes.insert(bytes.end(), row.begin(), row.begin() + static_cast<std::ptrdiff_t>(width * pixelBytes));
        }
    }
    codec.check(readEnd(codec.png));
    return {size_, sampleBits_, interlaced ? joined(bytes, size_, pixelBytes) : std::move(bytes)};
}

} // namespace fikleipa::tool
