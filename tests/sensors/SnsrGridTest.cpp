// The sensor grid panel: its table and layout, its option, what messages do
// to texts and counts, and what it paints on a real Cairo surface, in the
// list form and in the grid form.
#include <zandata/ZanData.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <future>
#include <memory>
#include <vector>

namespace {

const CRgb kBlack(0, 0, 0, 255);
const CRgb kBack(48, 48, 48, 255);  // Zan::backB
const CRgb kRule(96, 96, 96, 255);  // Zan::darkL

struct Shot {
    int w, h;
    std::vector<CRgb> px;
    explicit Shot(const CWnd& wnd) : w(wnd.m_rect.Width()), h(wnd.m_rect.Height()), px(static_cast<std::size_t>(w) * h)
    {
        EXPECT_TRUE(wnd.GetRGBA(px.data()));
    }
    const CRgb& at(int x, int y) const { return px[static_cast<std::size_t>(y) * w + x]; }
    template <class P>
    int Count(const CRect& r, P pred) const
    {
        int n = 0;
        for (int y = r.top; y < r.bottom; ++y)
            for (int x = r.left; x < r.right; ++x) n += pred(at(x, y)) ? 1 : 0;
        return n;
    }
    bool Uniform(const CRect& r, const CRgb& c) const
    {
        return Count(r, [&](const CRgb& p) { return p == c; }) == r.Width() * r.Height();
    }
};

// The bounding box of the pixels that differ between two shots.
CRect Diff(const Shot& a, const Shot& b)
{
    CRect r(a.w, a.h, -1, -1);
    for (int y = 0; y < a.h; ++y)
        for (int x = 0; x < a.w; ++x)
            if (!(a.at(x, y) == b.at(x, y)))
                r = CRect(std::min<LONG>(r.left, x), std::min<LONG>(r.top, y), std::max<LONG>(r.right, x + 1),
                          std::max<LONG>(r.bottom, y + 1));
    return r.right < 0 ? CRect() : r;
}

bool Green(const CRgb& c) { return c.g > 90 && c.r < 40 && c.b < 40; }
bool LightGrey(const CRgb& c) { return c.r > 110 && c.r == c.g && c.g == c.b; }

CSnsrSOS Sos(float v, BYTE bank = 0)
{
    CSnsrSOS r;
    r.m_sos = v;
    r.m_bank = bank;
    return r;
}

} // namespace

TEST(SnsrGrid, ConstructorFillsTheTableAndLaysItOutOnce)
{
    const int listening = CZanWnd::s_snsrRx.GetCount();
    CSnsrGrid g;
    EXPECT_EQ(g.m_strName, u"Sensor");
    EXPECT_EQ(g.m_nFlag, 1);
    EXPECT_EQ(g.m_nBanks, 8);
    EXPECT_EQ(g.m_gridLeft, 24u);
    EXPECT_EQ(g.m_gridTop, 18u);
    EXPECT_EQ(g.m_gridRowH, 18u);
    EXPECT_EQ(CZanWnd::s_snsrRx.GetTail(), &g);
    EXPECT_EQ(CZanWnd::s_infoRx.GetTail(), &g);
    EXPECT_EQ(CZanWnd::s_snsrRx.GetCount(), listening + 1);

    const BYTE show[20] = {0, 1, 1, 1, 1, 0, 1, 1, 1, 0, 1, 1, 0, 0, 1, 0, 1, 1, 1, 0};
    const DWORD colW[20] = {0, 183, 57, 183, 57, 0, 57, 123, 57, 0, 130, 273, 0, 0, 363, 0, 363, 363, 363, 0};
    const DWORD colX[21] = {0,   0,    183,  240,  423,  480,  480,  537,  660,  717, 717,
                            847, 1120, 1120, 1120, 1483, 1483, 1846, 2209, 2572, 2572};
    const DWORD rowY[20] = {5, 5, 23, 41, 59, 77, 77, 95, 113, 131, 131, 149, 167, 167, 167, 185, 185, 203, 221, 239};
    // Black from the first shown type, alternating; unshown types take the
    // next shown type's brush.
    const char* brush = "kkbkbkkbkbbkbbbkkbkb";
    for (int t = 0; t < 20; ++t) {
        EXPECT_EQ(g.m_show[t], show[t]) << t;
        EXPECT_EQ(g.m_colW[t], colW[t]) << t;
        EXPECT_EQ(g.m_colX[t], colX[t]) << t;
        EXPECT_EQ(g.m_rowY[t], rowY[t]) << t;
        EXPECT_EQ(g.m_rowBrush[t], brush[t] == 'k' ? &Zan::blackB : &Zan::backB) << t;
        for (int b = 0; b < 8; ++b) {
            EXPECT_EQ(g.m_count[t][b], 0u);
            EXPECT_TRUE(g.m_text[t][b].IsEmpty());
        }
    }
    EXPECT_EQ(g.m_colX[20], colX[20]);

    EXPECT_EQ(g.GetRect(1, 0), CRect(27, 20, 204, 34));
    EXPECT_EQ(g.GetRect(2, 3), CRect(210, 74, 261, 88));
    EXPECT_EQ(g.GetRect(19, 7), CRect(2599, 146, 2593, 160));  // a column of width 0

    // Made by its class name, and gone from the lists when destroyed.
    std::unique_ptr<CObject> made(CRuntimeClass::CreateObject(CString(u"CSnsrGrid")));
    ASSERT_NE(dynamic_cast<CSnsrGrid*>(made.get()), nullptr);
    EXPECT_TRUE(made->IsKindOf(CZanWnd::GetThisClass()));
    EXPECT_EQ(CZanWnd::s_snsrRx.GetCount(), listening + 2);
    made.reset();
    EXPECT_EQ(CZanWnd::s_snsrRx.GetCount(), listening + 1);
}

TEST(SnsrGrid, OptionNBanksTakesOnlyAWholeIntegerCappedAtEight)
{
    CSnsrGrid g;
    g.SetOption(u"nBanks", u"12");
    EXPECT_EQ(g.m_nBanks, 8);
    g.SetOption(u"nBanks", u"4");
    EXPECT_EQ(g.m_nBanks, 4);
    for (const char16_t* bad : {u"3x", u"5 ", u"", u"x3", u"-", u" "}) {
        g.SetOption(u"nBanks", bad);
        EXPECT_EQ(g.m_nBanks, 4) << CString(bad);
    }
    g.SetOption(u"nbanks", u"2");  // the key's case counts
    g.SetOption(u"Banks", u"2");
    EXPECT_EQ(g.m_nBanks, 4);
    g.SetOption(u"nBanks", u" +6");  // leading space and sign are the integer's
    EXPECT_EQ(g.m_nBanks, 6);
    g.SetOption(u"nBanks", u"-3");  // no lower limit
    EXPECT_EQ(g.m_nBanks, -3);
    g.SetOption(u"nBanks", u"99999999999999");
    EXPECT_EQ(g.m_nBanks, 8);
    g.SetOption(u"nBanks", u"1");
    EXPECT_EQ(g.m_nBanks, 1);
}

TEST(SnsrGrid, SensorMessagesStoreTextAndCountOnlyForShownTypesAndBanks)
{
    CSnsrGrid g;
    g.SetOption(u"nBanks", u"4");
    CSnsrSOS sos = Sos(1480.25f, 3);
    CZanWnd::SnsrMsg(0, &sos);
    EXPECT_EQ(g.m_text[6][3], u"1480.2");  // CSnsrSOS's own text, "%1.1f"
    EXPECT_EQ(g.m_count[6][3], 1u);
    sos.m_sos = 1490.0f;
    g.OnSnsrMsg(77, &sos);  // the code plays no part
    EXPECT_EQ(g.m_text[6][3], u"1490.0");
    EXPECT_EQ(g.m_count[6][3], 2u);

    // A bank at or beyond m_nBanks is ignored.
    CSnsrSOS far = Sos(1500.0f, 7);
    g.OnSnsrMsg(0, &far);
    far.m_bank = 4;
    g.OnSnsrMsg(0, &far);
    EXPECT_EQ(g.m_count[6][7], 0u);
    EXPECT_EQ(g.m_count[6][4], 0u);

    // A type that isn't shown changes nothing, neither text nor count:
    // Articulation (5), Raw (0), whatever m_show says for 0, and ids
    // beyond the table.
    CSnsrArt art;
    art.m_angle = 12.0f;
    g.OnSnsrMsg(0, &art);
    EXPECT_EQ(g.m_count[5][0], 0u);
    EXPECT_TRUE(g.m_text[5][0].IsEmpty());
    g.m_show[0] = 1;
    CSnsrInf raw;
    raw.m_raw = u"$GPGGA";
    g.OnSnsrMsg(0, &raw);
    EXPECT_EQ(g.m_count[0][0], 0u);
    raw.m_type = 20;
    g.OnSnsrMsg(0, &raw);
    raw.m_type = 255;
    g.OnSnsrMsg(0, &raw);
    g.OnSnsrMsg(0, nullptr);

    // A shown plain record shows its raw text (type 16, "Annotate").
    raw.m_type = 16;
    raw.m_bank = 0;
    g.OnSnsrMsg(0, &raw);
    EXPECT_EQ(g.m_text[16][0], u"$GPGGA");
    EXPECT_EQ(g.m_count[16][0], 1u);

    int total = 0;
    for (auto& row : g.m_count)
        for (DWORD c : row) total += static_cast<int>(c);
    EXPECT_EQ(total, 3);
}

TEST(SnsrGrid, InformationMessagesClearOnlyOnTheirCodes)
{
    CSnsrGrid g;
    CSnsrSOS sos = Sos(1500.0f);
    auto fill = [&] {
        g.OnSnsrMsg(0, &sos);
        ASSERT_EQ(g.m_count[6][0], 1u);
        ASSERT_FALSE(g.m_text[6][0].IsEmpty());
    };
    fill();
    g.OnInfoMsg(101, reinterpret_cast<void*>(2));
    g.OnInfoMsg(101, nullptr);
    g.OnInfoMsg(102, reinterpret_cast<void*>(1));
    EXPECT_EQ(g.m_count[6][0], 1u);
    ASSERT_TRUE(g.Create(CRect(0, 0, 300, 100)));
    g.UpdateWindow();
    EXPECT_FALSE(g.GetUpdateRect(nullptr));
    CZanWnd::InfoMsg(101, reinterpret_cast<void*>(1));
    EXPECT_EQ(g.m_count[6][0], 0u);
    EXPECT_TRUE(g.m_text[6][0].IsEmpty());
    EXPECT_TRUE(g.GetUpdateRect(nullptr));  // invalidated, to be repainted
    g.UpdateWindow();

    CZanStateMsg st;
    g.m_count[6][0] = 0;
    g.ClearStrings();
    sos.m_sos = 1501.0f;
    fill();
    st.m_bClearAll = 1;
    st.m_nState = 2;  // above 1: nothing
    g.OnInfoMsg(4000, &st);
    EXPECT_EQ(g.m_count[6][0], 1u);
    st.m_bClearAll = 0;
    st.m_bClearCounts = 1;
    st.m_nState = 1;  // counts only
    g.OnInfoMsg(4000, &st);
    EXPECT_EQ(g.m_count[6][0], 0u);
    EXPECT_EQ(g.m_text[6][0], u"1501.0");
    EXPECT_TRUE(g.GetUpdateRect(nullptr));
    g.m_count[6][0] = 5;
    st.m_bClearAll = 1;
    st.m_nState = -4;  // first word wins over the second
    g.OnInfoMsg(4000, &st);
    EXPECT_EQ(g.m_count[6][0], 0u);
    EXPECT_TRUE(g.m_text[6][0].IsEmpty());
    g.m_count[6][0] = 5;
    st.m_bClearAll = st.m_bClearCounts = 0;
    st.m_nState = 0;
    g.OnInfoMsg(4000, &st);
    EXPECT_EQ(g.m_count[6][0], 5u);
    g.OnInfoMsg(4000, nullptr);
    // The record's mutex is left free for others.
    EXPECT_TRUE(std::async(std::launch::async, [&] {
                    const BOOL got = st.m_lock.Lock(0);
                    if (got) st.m_lock.Unlock();
                    return got;
                }).get());
}

TEST(SnsrGrid, AHiddenPanelCountsWithoutPainting)
{
    CSnsrGrid g;
    g.SetOption(u"nBanks", u"3");
    ASSERT_TRUE(g.Create(CRect(0, 0, 800, 90)));
    g.UpdateWindow();
    g.ShowWindow(SW_HIDE);
    const Shot before(g);
    CSnsrSOS sos = Sos(1488.0f, 1);
    CZanWnd::SnsrMsg(0, &sos);
    EXPECT_EQ(g.m_count[6][1], 1u);
    EXPECT_EQ(g.m_text[6][1], u"1488.0");
    EXPECT_EQ(Diff(before, Shot(g)), CRect());
    EXPECT_EQ(g.m_nPaints, 1);

    // A panel without a window counts too.
    CSnsrGrid bare;
    bare.OnSnsrMsg(0, &sos);
    EXPECT_EQ(bare.m_count[6][1], 1u);
}

TEST(SnsrGrid, ListFormPaintsBandsInTheTwoBrushesWithGreenValues)
{
    CSnsrGrid g;
    g.SetOption(u"nBanks", u"1");
    CSnsrSOS sos = Sos(1480.0f);
    g.OnSnsrMsg(0, &sos);
    const int W = 600, H = 270;
    ASSERT_TRUE(g.Create(CRect(0, 0, W, H)));
    g.UpdateWindow();
    const Shot s(g);

    int bands = 0;
    for (int t = 1; t < 20; ++t) {
        if (!g.m_show[t]) continue;
        ++bands;
        const int y = static_cast<int>(g.m_rowY[t]);
        const CRgb fill = g.m_rowBrush[t] == &Zan::blackB ? kBlack : kBack;
        // The band from x = 5 to the width less 5, where no text goes.
        EXPECT_TRUE(s.Uniform(CRect(5, y, 24, y + 18), fill)) << t;
        EXPECT_TRUE(s.Uniform(CRect(W - 30, y, W - 5, y + 18), fill)) << t;
        // The type name in light grey at 25.
        EXPECT_GT(s.Count(CRect(25, y, 124, y + 18), LightGrey), 10) << t;
    }
    EXPECT_EQ(bands, 13);
    // Band colours alternate: black first.
    EXPECT_EQ(s.at(10, 6), kBlack);
    EXPECT_EQ(s.at(10, 24), kBack);
    // The panel's own background outside the bands.
    EXPECT_TRUE(s.Uniform(CRect(0, 0, 5, H), kBack));
    EXPECT_TRUE(s.Uniform(CRect(W - 5, 0, W, H), kBack));
    EXPECT_TRUE(s.Uniform(CRect(0, 0, W, 5), kBack));
    // The 13th band is black: no closing band below it.
    EXPECT_EQ(g.m_rowBrush[18], &Zan::blackB);
    EXPECT_TRUE(s.Uniform(CRect(5, 239, W - 5, 257), kBack));

    // The value of the SOS band in green at 250, its count "(1)" in grey at
    // 125; the other bands have neither.
    const int y6 = static_cast<int>(g.m_rowY[6]);
    EXPECT_GT(s.Count(CRect(250, y6, 330, y6 + 18), Green), 20);
    EXPECT_EQ(s.Count(CRect(0, 0, W, H), Green), s.Count(CRect(250, y6, W, y6 + 18), Green));
    EXPECT_GT(s.Count(CRect(125, y6, 160, y6 + 18), LightGrey), 5);
    EXPECT_EQ(s.Count(CRect(125, y6 + 18, 250, H), LightGrey), 0);

    // With the last shown type hidden, the list ends on a grey band (type
    // 17) and closes with a black one (the layout itself stays).
    g.m_show[18] = 0;
    g.RedrawWindow();
    const Shot c(g);
    EXPECT_TRUE(c.Uniform(CRect(5, 203, 24, 221), kBack));
    EXPECT_TRUE(c.Uniform(CRect(5, 221, W - 5, 239), kBlack));
    EXPECT_TRUE(c.Uniform(CRect(5, 239, W - 5, H), kBack));
}

TEST(SnsrGrid, ListFormMessageRepaintsOnlyItsBandFromTheCount)
{
    CSnsrGrid g;
    g.SetOption(u"nBanks", u"1");
    const int W = 500;
    ASSERT_TRUE(g.Create(CRect(0, 0, W, 260)));
    g.UpdateWindow();
    const Shot before(g);
    CSnsrAlt alt;
    alt.m_alt = 12.5f;
    CZanWnd::SnsrMsg(0, &alt);
    const Shot after(g);
    const int y = static_cast<int>(g.m_rowY[8]);
    const CRect changed = Diff(before, after);
    EXPECT_GE(changed.left, 125);
    EXPECT_GE(changed.top, y);
    EXPECT_LE(changed.bottom, y + 18);
    // To the panel's right edge, the margin included.
    EXPECT_EQ(after.at(W - 1, y + 1), g.m_rowBrush[8] == &Zan::blackB ? kBlack : kBack);
    EXPECT_GT(after.Count(CRect(250, y, W, y + 18), Green), 10);
    EXPECT_GT(after.Count(CRect(125, y, 160, y + 18), LightGrey), 5);
    EXPECT_EQ(g.m_nPaints, 1);  // painted directly, not through a repaint
}

TEST(SnsrGrid, GridFormPaintsHeaderBodyRulesAndRepaintsOneCellPerMessage)
{
    CSnsrGrid g;
    g.SetOption(u"nBanks", u"4");
    const int W = 2620, H = 110;
    ASSERT_TRUE(g.Create(CRect(0, 0, W, H)));
    g.UpdateWindow();
    const Shot s(g);
    const int right = 24 + 2572, bottom = 4 * 18 + 18;

    // Header strip stretched from the header texture: grey, lighter on top.
    EXPECT_EQ(s.at(3, 1).r, s.at(3, 1).g);
    EXPECT_GT(s.at(3, 1).r, s.at(3, 16).r);
    EXPECT_GT(s.at(3, 16).r, 48);
    // Body black, rules and edges in the dark pen, background beyond.
    EXPECT_EQ(s.at(100, 40), kBlack);
    EXPECT_EQ(s.at(2, 36), kRule);           // rule of bank 1 across the label column
    EXPECT_EQ(s.at(2000, 72), kRule);        // rule of bank 3
    EXPECT_EQ(s.at(10, bottom), kRule);      // bottom edge from x = 0
    EXPECT_EQ(s.at(right, 50), kRule);       // right edge
    EXPECT_EQ(s.at(24 + 183, 60), kRule);    // column rule of type 2
    EXPECT_EQ(s.at(24 + 1483, 5), kRule);    // column rule of type 16, through the header
    EXPECT_EQ(s.at(right + 5, 50), kBack);
    EXPECT_EQ(s.at(100, bottom + 5), kBack);
    // Bank labels "1".."4" and type names in light text; no value yet.
    for (int b = 0; b < 4; ++b)
        EXPECT_GT(s.Count(CRect(0, 18 * b + 19, 24, 18 * b + 36), [](const CRgb& c) { return c.r > 100; }), 3) << b;
    EXPECT_GT(s.Count(g.GetRect(1, -1), [](const CRgb& c) { return c.r > 150; }), 20);
    EXPECT_EQ(s.Count(CRect(0, 0, W, H), Green), 0);

    // One message: its cell and nothing else changes.
    CSnsrSOS sos = Sos(1477.5f, 2);
    CZanWnd::SnsrMsg(0, &sos);
    const Shot after(g);
    const CRect cell = g.GetRect(6, 2);
    const CRect changed = Diff(s, after);
    ASSERT_FALSE(changed.IsRectEmpty());
    EXPECT_GE(changed.left, cell.left);
    EXPECT_GE(changed.top, cell.top);
    EXPECT_LE(changed.right, cell.right);
    EXPECT_LE(changed.bottom, cell.bottom);
    EXPECT_GT(after.Count(cell, Green), 10);
    EXPECT_EQ(g.m_nPaints, 1);

    // A full repaint paints the same cell the same way.
    g.RedrawWindow();
    EXPECT_EQ(Diff(after, Shot(g)), CRect());

    // A text too long for its cell ends in an ellipsis inside the cell.
    CSnsrPos pos;
    pos.m_geo = CV3(4.0203, 52.2092, 0.0);
    pos.m_bank = 1;
    g.OnSnsrMsg(0, &pos);
    const CRect pcell = g.GetRect(1, 1);
    const Shot p(g);
    EXPECT_GT(p.Count(pcell, Green), 10);
    const CRect pchanged = Diff(after, p);
    EXPECT_GE(pchanged.left, pcell.left);
    EXPECT_LE(pchanged.right, pcell.right);
}

TEST(SnsrGrid, AssignmentCopiesFieldsNotListMembership)
{
    CSnsrGrid a, b;
    a.SetOption(u"nBanks", u"2");
    CSnsrSOS sos = Sos(1450.0f, 1);
    a.OnSnsrMsg(0, &sos);
    a.m_show[4] = 0;
    a.m_strTitle = u"Sensors";
    const int listening = CZanWnd::s_snsrRx.GetCount();
    b = a;
    EXPECT_EQ(b.m_nBanks, 2);
    EXPECT_EQ(b.m_text[6][1], u"1450.0");
    EXPECT_EQ(b.m_count[6][1], 1u);
    EXPECT_EQ(b.m_show[4], 0);
    EXPECT_EQ(b.m_strTitle, u"Sensors");
    EXPECT_EQ(CZanWnd::s_snsrRx.GetCount(), listening);
    b.m_text[6][1] = u"x";
    EXPECT_EQ(a.m_text[6][1], u"1450.0");
    a.ClearCounts();
    EXPECT_EQ(b.m_count[6][1], 1u);
}

TEST(SnsrGrid, ADestroyedPanelReceivesNoFurtherMessage)
{
    auto* g = new CSnsrGrid;
    g->SetOption(u"nBanks", u"2");
    ASSERT_TRUE(g->Create(CRect(0, 0, 400, 80)));
    CSnsrSOS sos = Sos(1500.0f);
    CZanWnd::SnsrMsg(0, &sos);
    EXPECT_EQ(g->m_count[6][0], 1u);
    const int listening = CZanWnd::s_snsrRx.GetCount();
    const int informed = CZanWnd::s_infoRx.GetCount();
    delete g;  // its own destructor does nothing for the lists
    EXPECT_EQ(CZanWnd::s_snsrRx.GetCount(), listening - 1);
    EXPECT_EQ(CZanWnd::s_infoRx.GetCount(), informed - 1);
    // Under the address sanitizer any call into the dead panel would fail.
    CZanWnd::SnsrMsg(0, &sos);
    CZanWnd::InfoMsg(101, reinterpret_cast<void*>(1));
    CZanWnd::DataMsg(12001, nullptr);
}
