#pragma once
// CPngWriter: writes RGBA pictures (CRgb pixels, as the display images and
// COffscreenGL hold them) to PNG files, 8 bits a channel, with alpha.
#include "core/platform/CRgb.h"
#include "core/platform/CString.h"

class CPngWriter {
public:
    // Writes `width` x `height` pixels, row by row, to the file `path`
    // (created or replaced). `bottomUp` true: the first row in memory is the
    // bottom of the picture, as OpenGL reads pixels back; false: the top.
    // Returns false for a null buffer, a size below 1 or a file that can't
    // be written; a partly written file is removed.
    static bool Write(const CString& path, const CRgb* pixels, int width, int height, bool bottomUp = false);
};
