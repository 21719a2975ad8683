// The panels' shared drawing objects of Zan.
#include "core/platform/Zan.h"

CBrush Zan::blackB(RGB(0, 0, 0));
CBrush Zan::backB(RGB(48, 48, 48));
CFont Zan::normalF(12, FW_NORMAL);
CFont Zan::largeF(14, FW_NORMAL);
CFont Zan::boldF(12, FW_BOLD);
CPen Zan::darkL(PS_SOLID, 1, RGB(96, 96, 96));
CDC Zan::txt(16, 16);

namespace {
// The header texture: rows from a lighter grey at the top to a darker one at
// the bottom, so a header strip stretched from it reads as raised.
const bool s_txtPainted = [] {
    for (int y = 0; y < Zan::txt.Height(); ++y) {
        const BYTE v = static_cast<BYTE>(88 - 2 * y);
        Zan::txt.FillSolidRect(CRect(0, y, Zan::txt.Width(), y + 1), RGB(v, v, v));
    }
    return true;
}();
} // namespace
