// The device context on real Cairo and Pango surfaces: exact pixel coverage
// of fills and lines, colour order, text placement and clipping, stretching,
// PNG output, and the plain drawing of a panel's controls.
#include "core/platform/CZanWnd.h"
#include "core/platform/Zan.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <vector>

namespace {

struct Pixels {
    int w = 0, h = 0;
    std::vector<CRgb> px;
    explicit Pixels(const CDC& dc) : w(dc.Width()), h(dc.Height()), px(static_cast<std::size_t>(w) * h)
    {
        dc.GetRGBA(px.data());
    }
    const CRgb& at(int x, int y) const { return px[static_cast<std::size_t>(y) * w + x]; }
    // Bounding box of the pixels for which `pred` holds (empty when none).
    template <class P>
    CRect Box(P pred) const
    {
        CRect r(w, h, -1, -1);
        for (int y = 0; y < h; ++y)
            for (int x = 0; x < w; ++x)
                if (pred(at(x, y))) r = CRect(std::min<LONG>(r.left, x), std::min<LONG>(r.top, y),
                                              std::max<LONG>(r.right, x + 1), std::max<LONG>(r.bottom, y + 1));
        return r.right < 0 ? CRect() : r;
    }
};

bool NotBlack(const CRgb& c) { return c.r || c.g || c.b; }
const CRgb kBlack(0, 0, 0, 255);

} // namespace

TEST(CDC, FillsAndLinesCoverExactlyTheirPixelsInFrameworkColourOrder)
{
    CDC dc(20, 10);
    ASSERT_EQ(dc.Width(), 20);
    EXPECT_EQ(Pixels(dc).Box(NotBlack), CRect());  // a new surface is black

    const CBrush red(0x0000FF);  // 0x00BBGGRR: red
    dc.FillRect(CRect(2, 3, 7, 5), &red);
    Pixels p(dc);
    EXPECT_EQ(p.Box(NotBlack), CRect(2, 3, 7, 5));
    EXPECT_EQ(p.at(2, 3), CRgb(255, 0, 0, 255));
    EXPECT_EQ(p.at(6, 4), CRgb(255, 0, 0, 255));
    EXPECT_EQ(dc.GetPixel(6, 4), 0x0000FFu);
    EXPECT_EQ(dc.GetPixel(20, 0), 0xFFFFFFFFu);

    // A null brush, an empty and an inverted rectangle paint nothing.
    dc.FillRect(CRect(0, 0, 20, 10), nullptr);
    const CBrush none;
    dc.FillRect(CRect(0, 0, 20, 10), &none);
    dc.FillRect(CRect(9, 0, 9, 10), &red);
    dc.FillRect(CRect(12, 8, 10, 2), &red);
    EXPECT_EQ(Pixels(dc).Box(NotBlack), CRect(2, 3, 7, 5));

    // Lines stop one pixel short of their end, whichever way they run.
    CDC ln(20, 10);
    CPen blue(PS_SOLID, 1, RGB(0, 0, 255));
    ln.SelectObject(&blue);
    ln.MoveTo(1, 1);
    ln.LineTo(6, 1);
    EXPECT_EQ(Pixels(ln).Box(NotBlack), CRect(1, 1, 6, 2));
    EXPECT_EQ(Pixels(ln).at(1, 1), CRgb(0, 0, 255, 255));
    CDC back(20, 10);
    back.SelectObject(&blue);
    back.MoveTo(6, 8);
    back.LineTo(6, 3);
    EXPECT_EQ(Pixels(back).Box(NotBlack), CRect(6, 4, 7, 9));
    CDC diag(20, 10);
    diag.SelectObject(&blue);
    diag.MoveTo(0, 0);
    diag.LineTo(4, 4);
    const Pixels d(diag);
    EXPECT_EQ(d.Box(NotBlack), CRect(0, 0, 4, 4));
    for (int i = 0; i < 4; ++i) EXPECT_EQ(d.at(i, i), CRgb(0, 0, 255, 255)) << i;
    EXPECT_EQ(d.at(1, 0), kBlack);

    // Viewport origin and clip.
    CDC vc(20, 10);
    vc.SetViewportOrg(10, 2);
    vc.IntersectClipRect(CRect(0, 0, 3, 3));
    vc.FillSolidRect(CRect(-10, -2, 10, 8), RGB(0, 255, 0));
    EXPECT_EQ(Pixels(vc).Box(NotBlack), CRect(10, 2, 13, 5));
    vc.SelectClipRgnAll();
    vc.SetPixel(-10, -2, RGB(1, 2, 3));
    EXPECT_EQ(Pixels(vc).at(0, 0), CRgb(1, 2, 3, 255));
}

TEST(CDC, TextIsDrawnInTheTextColourWhereItsFormatPutsIt)
{
    CDC dc(200, 40);
    dc.SelectObject(&Zan::normalF);
    dc.SetBkMode(TRANSPARENT);
    dc.SetTextColor(0xFF00);  // green
    ASSERT_TRUE(dc.TextOut(10, 5, u"Heading"));
    const Pixels p(dc);
    const CRect ink = p.Box(NotBlack);
    ASSERT_FALSE(ink.IsRectEmpty());
    EXPECT_GE(ink.left, 10);
    EXPECT_LE(ink.left, 12);
    EXPECT_GE(ink.top, 5);
    EXPECT_LE(ink.bottom, 5 + 16);
    // Every inked pixel is a shade of green.
    for (const CRgb& c : p.px) {
        EXPECT_EQ(c.r, 0);
        EXPECT_EQ(c.b, 0);
    }
    const CSize ext = dc.GetTextExtent(u"Heading");
    EXPECT_GT(ext.cx, 30);
    EXPECT_LE(ink.right, 10 + ext.cx + 1);

    // Opaque mode fills the text box with the background colour first.
    CDC op(200, 40);
    op.SetBkColor(RGB(0, 0, 200));
    op.TextOut(0, 0, u"x");
    EXPECT_EQ(Pixels(op).at(0, 0), CRgb(0, 0, 200, 255));
}

TEST(CDC, DrawTextCentresClipsAndEndsTooLongTextWithAnEllipsis)
{
    constexpr UINT kCell = 0x8025;  // centred, single line, end ellipsis
    ASSERT_EQ(kCell, DT_CENTER | DT_VCENTER | DT_SINGLELINE | DT_END_ELLIPSIS);
    CDC dc(300, 40);
    dc.SelectObject(&Zan::normalF);
    dc.SetBkMode(TRANSPARENT);
    dc.SetTextColor(0xAA00);
    CRect cell(100, 10, 200, 28);
    dc.DrawText(u"1500.0", cell, kCell);
    const CRect ink = Pixels(dc).Box(NotBlack);
    ASSERT_FALSE(ink.IsRectEmpty());
    // Centred across and down, within a couple of pixels of glyph bearing.
    EXPECT_NEAR((ink.left + ink.right) / 2.0, 150.0, 2.5);
    EXPECT_NEAR((ink.top + ink.bottom) / 2.0, 19.0, 3.0);

    // Too long for its cell: shortened inside the cell, ending on the
    // ellipsis, where plain clipping would cut a glyph at the edge.
    CDC longDc(300, 40);
    longDc.SelectObject(&Zan::normalF);
    longDc.SetBkMode(TRANSPARENT);
    longDc.SetTextColor(0xAA00);
    CRect narrow(100, 10, 160, 28);
    const CString text = u"52°12'33.123\"N, 004°01'12.456\"E";
    longDc.DrawText(text, narrow, kCell | DT_NOCLIP);
    const CRect shortened = Pixels(longDc).Box(NotBlack);
    EXPECT_GE(shortened.left, 100);
    EXPECT_LE(shortened.right, 160);
    CDC spill(300, 40);
    spill.SelectObject(&Zan::normalF);
    spill.SetBkMode(TRANSPARENT);
    spill.SetTextColor(0xAA00);
    CRect same = narrow;
    spill.DrawText(text, same, DT_CENTER | DT_SINGLELINE | DT_NOCLIP);
    const CRect overflow = Pixels(spill).Box(NotBlack);
    EXPECT_LT(overflow.left, 100);
    EXPECT_GT(overflow.right, 160);

    // DT_CALCRECT measures without drawing; '&' prefixes vanish unless
    // DT_NOPREFIX.
    CDC calc(100, 20);
    CRect r(5, 5, 6, 6);
    const int h = calc.DrawText(u"&Bank", r, DT_CALCRECT | DT_SINGLELINE);
    EXPECT_EQ(Pixels(calc).Box(NotBlack), CRect());
    EXPECT_EQ(r.Height(), h);
    EXPECT_EQ(r.Width(), calc.GetTextExtent(u"Bank").cx);
    CRect r2(5, 5, 6, 6);
    calc.DrawText(u"&Bank", r2, DT_CALCRECT | DT_SINGLELINE | DT_NOPREFIX);
    EXPECT_GT(r2.Width(), r.Width());
}

TEST(CDC, StretchBltCopiesNearestPixelsAndMayReadItsOwnSurface)
{
    CDC src(2, 2);
    src.SetPixel(0, 0, RGB(255, 0, 0));
    src.SetPixel(1, 0, RGB(0, 255, 0));
    src.SetPixel(0, 1, RGB(0, 0, 255));
    src.SetPixel(1, 1, RGB(255, 255, 255));
    CDC dst(10, 10);
    ASSERT_TRUE(dst.StretchBlt(1, 1, 8, 8, &src, 0, 0, 2, 2, SRCCOPY));
    const Pixels p(dst);
    EXPECT_EQ(p.Box(NotBlack), CRect(1, 1, 9, 9));
    EXPECT_EQ(p.at(1, 1), CRgb(255, 0, 0, 255));
    EXPECT_EQ(p.at(4, 4), CRgb(255, 0, 0, 255));
    EXPECT_EQ(p.at(5, 4), CRgb(0, 255, 0, 255));
    EXPECT_EQ(p.at(4, 5), CRgb(0, 0, 255, 255));
    EXPECT_EQ(p.at(8, 8), CRgb(255, 255, 255, 255));
    EXPECT_FALSE(dst.StretchBlt(0, 0, 0, 8, &src, 0, 0, 2, 2, SRCCOPY));
    EXPECT_FALSE(dst.StretchBlt(0, 0, 8, 8, &src, 0, 0, 2, 2, 0x00EE0086));

    // Stretching one pixel of a surface over the rest of the same surface.
    ASSERT_TRUE(dst.StretchBlt(0, 0, 10, 1, &dst, 8, 8, 1, 1, SRCCOPY));
    const Pixels q(dst);
    for (int x = 0; x < 10; ++x) EXPECT_EQ(q.at(x, 0), CRgb(255, 255, 255, 255));

    // The shared header texture: a 16 by 16 grey gradient, lighter on top.
    ASSERT_EQ(Zan::txt.Width(), 16);
    const Pixels t(Zan::txt);
    EXPECT_GT(t.at(0, 0).r, t.at(0, 11).r);
    EXPECT_EQ(t.at(0, 0).r, t.at(0, 0).g);
}

TEST(CDC, SavesPngFiles)
{
    CDC dc(7, 3);
    dc.FillSolidRect(CRect(0, 0, 7, 3), RGB(10, 20, 30));
    const auto path = std::filesystem::temp_directory_path() / "zan_cdc_test.png";
    ASSERT_TRUE(dc.SavePng(CString::FromUtf8(path.string())));
    std::ifstream in(path, std::ios::binary);
    std::vector<unsigned char> head(24);
    in.read(reinterpret_cast<char*>(head.data()), 24);
    ASSERT_TRUE(in);
    const unsigned char sig[8] = {0x89, 'P', 'N', 'G', 0x0D, 0x0A, 0x1A, 0x0A};
    EXPECT_TRUE(std::equal(sig, sig + 8, head.begin()));
    EXPECT_EQ(head[19], 7);  // IHDR width, big-endian
    EXPECT_EQ(head[23], 3);  // IHDR height
    std::filesystem::remove(path);
    EXPECT_FALSE(dc.SavePng(u"/no/such/dir/x.png"));
    CDC none;
    EXPECT_FALSE(none.SavePng(CString::FromUtf8(path.string())));
}

TEST(CDC, APanelWithoutADrawingOfItsOwnShowsItsControls)
{
    CZanWnd p;
    double sos = 1500.0;
    int use = 1;
    p.ShiftY(5, 5);
    p.InsText(60, u"Xd SOS");
    p.InsCtrl(50, 64, sos);
    p.ShiftY(18, 5);
    CZCtrl* chk = p.InsCtrl(112, 256, use);
    chk->m_strLabel = u"Use Manual SOS";
    const auto path = std::filesystem::temp_directory_path() / "zan_panel_test.png";
    ASSERT_TRUE(p.SavePicture(CString::FromUtf8(path.string())));
    EXPECT_TRUE(std::filesystem::exists(path));
    std::filesystem::remove(path);
    ASSERT_EQ(p.m_rect, CRect(0, 0, 122, 44));  // the controls' extent plus 5

    std::vector<CRgb> px(122 * 44);
    ASSERT_TRUE(p.GetRGBA(px.data()));
    auto at = [&](int x, int y) { return px[static_cast<std::size_t>(y) * 122 + x]; };
    const CRgb back(48, 48, 48, 255);
    EXPECT_EQ(at(0, 0), back);  // erased with the panel background
    EXPECT_EQ(at(65, 10), CRgb(0x60, 0x60, 0x60, 255));  // the field's frame
    auto box = [&](CRect r, auto pred) {
        int n = 0;
        for (int y = r.top; y < r.bottom; ++y)
            for (int x = r.left; x < r.right; ++x) n += pred(at(x, y));
        return n;
    };
    // Label text in light grey, the field's value in near white on black,
    // the check box ticked in green.
    EXPECT_GT(box(CRect(5, 5, 65, 21), [](CRgb c) { return c.r > 120 && c.r == c.g; }), 10);
    EXPECT_GT(box(CRect(67, 6, 114, 20), [](CRgb c) { return c.r > 120; }), 10);
    EXPECT_GT(box(CRect(6, 25, 18, 37), [](CRgb c) { return c.g > 150 && c.r < 50; }), 5);
    use = 0;
    p.UpdateCtrls();
    p.RedrawWindow();
    ASSERT_TRUE(p.GetRGBA(px.data()));
    EXPECT_EQ(box(CRect(6, 25, 18, 37), [](CRgb c) { return c.g > 150 && c.r < 50; }), 0);
}
