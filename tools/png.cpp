#include "png.h"

#include "error.h"

#include <png.h>

namespace fikleipa::tool {

std::vector<unsigned char> encodePng(Size size, std::span<const RgbBytes> pixels) {
    static_assert(sizeof(RgbBytes) == 3);
    png_image image{};
    image.version = PNG_IMAGE_VERSION;
    image.width = size.width;
    image.height = size.height;
    image.format = PNG_FORMAT_RGB;

    std::vector<unsigned char> file(PNG_IMAGE_PNG_SIZE_MAX(image));
    png_alloc_size_t bytes = file.size();
    if (png_image_write_to_memory(&image, file.data(), &bytes, 0, pixels.data(), 0, nullptr) == 0)
        fail("cannot make a picture of {}x{}: {}", size.width, size.height, &image.message[0]);
    file.resize(bytes);
    return file;
}

} // namespace fikleipa::tool
