// Writing PNG files, with libpng's simplified interface.
#include "base/png_file.h"

#include <png.h>

namespace tarn {

bool writePng(std::FILE* file, u32 width, u32 height, std::span<const u8> pixels) {
    if (width == 0 || height == 0 || pixels.size() / 3 / width < height) {
        return false;
    }
    png_image image{};
    image.version = PNG_IMAGE_VERSION;
    image.width = width;
    image.height = height;
    image.format = PNG_FORMAT_RGB;
    return png_image_write_to_stdio(&image, file, 0, pixels.data(), static_cast<png_int_32>(width * 3),
                                    nullptr) != 0;
}

}  // namespace tarn
