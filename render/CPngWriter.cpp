#include "render/CPngWriter.h"

#include <png.h>

#include <cstring>

bool CPngWriter::Write(const CString& path, const CRgb* pixels, int width, int height, bool bottomUp)
{
    if (!pixels || width < 1 || height < 1) return false;
    png_image img;
    std::memset(&img, 0, sizeof img);
    img.version = PNG_IMAGE_VERSION;
    img.width = static_cast<png_uint_32>(width);
    img.height = static_cast<png_uint_32>(height);
    img.format = PNG_FORMAT_RGBA;
    // A negative stride tells libpng that the buffer starts at the bottom row.
    const png_int_32 stride = static_cast<png_int_32>(width) * 4;
    const int ok = png_image_write_to_file(&img, path.Utf8().c_str(), 0, pixels, bottomUp ? -stride : stride, nullptr);
    png_image_free(&img);
    return ok != 0;
}
