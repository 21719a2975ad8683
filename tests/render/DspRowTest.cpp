// The row kernels of the display image: every level this processor has gives
// the bytes of the plain form, edge values of the depth arithmetic included;
// and whole pictures built at each level agree.
#include "RenderTestUtil.h"
#include "render/DspRow.hpp"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>

namespace {

// Runs `f` once at each level from the plain one up to the best.
template <class F>
void AtEachLevel(F f)
{
    for (int level = zan_dsp::kPlain; level <= zan_dsp::BestLevel(); ++level) {
        zan_dsp::ForceLevel(level);
        f(level);
    }
    zan_dsp::ForceLevel(-1);
}

CColTbl RandomTable(std::mt19937& rng, int n = 256)
{
    CColTbl t(static_cast<unsigned>(n));
    for (int i = 0; i < n; ++i) {
        const unsigned v = rng();
        t[i] = CRgb(static_cast<BYTE>(v), static_cast<BYTE>(v >> 8), static_cast<BYTE>(v >> 16), static_cast<BYTE>(v >> 24));
    }
    return t;
}

} // namespace

TEST(DspRow, DepthIndexByteEdges)
{
    using zan_dsp::DepthIndexByte;
    EXPECT_EQ(DepthIndexByte(15.0, 0.0, 2.56, 256), 38);
    EXPECT_EQ(DepthIndexByte(1e300, 0.0, 2.56, 256), 255);   // held at the end
    EXPECT_EQ(DepthIndexByte(99.9, 0.0, 2.56, 300), 0);      // 256 of 300: low byte 0
    EXPECT_EQ(DepthIndexByte(-1.0, 0.0, 2.56, 256), 253);    // floor(-2.06) = -3
    EXPECT_EQ(DepthIndexByte(-1e300, 0.0, 2.56, 256), 0);    // below 32 bits
    EXPECT_EQ(DepthIndexByte(std::nan(""), 0.0, 2.56, 256), 0);
    EXPECT_EQ(DepthIndexByte(-2147483647.75, 0.0, 1.0, 256), 0);  // floor -2^31
    EXPECT_EQ(DepthIndexByte(-2147483646.75, 0.0, 1.0, 256), 1);  // floor -2^31 + 1
}

TEST(DspRow, EveryLevelGivesThePlainBytes)
{
    std::mt19937 rng(7);
    const double specials[] = {0.0, -0.0, 1e-300, -1e300, 1e300, 3e9, -3e9, -2147483648.0,
                               std::numeric_limits<double>::quiet_NaN(), std::numeric_limits<double>::infinity(),
                               -std::numeric_limits<double>::infinity()};
    for (int iter = 0; iter < 200; ++iter) {
        const std::size_t n = iter < 8 ? static_cast<std::size_t>(iter * 31 % 200) : rng() % 1100;
        const std::size_t nVec = rng() % 3 ? n : rng() % (n + 1);
        std::vector<BYTE> acc(n), s(n);
        for (auto& v : acc) v = static_cast<BYTE>(rng() % 4 ? rng() % 40 : rng());
        for (auto& v : s) v = static_cast<BYTE>(rng());
        std::vector<double> sz(nVec), dz(nVec);
        for (std::size_t x = 0; x < nVec; ++x) {
            sz[x] = rng() % 16 ? static_cast<double>(static_cast<int>(rng() % 20000) - 5000) / 97.0 : specials[rng() % 11];
            dz[x] = rng() % 16 ? static_cast<double>(static_cast<int>(rng() % 20000) - 5000) / 89.0 : specials[rng() % 11];
        }
        const CColTbl tbl = RandomTable(rng, rng() % 2 ? 256 : 300);
        zan_dsp::Planes planes;
        planes.Set(tbl.Data());
        BYTE lut[256];
        for (int v = 0; v < 256; ++v) lut[v] = static_cast<BYTE>(rng() % 2 ? v : rng());
        zan_dsp::DepthRow d {sz.data(), dz.data(), nVec, (rng() % 1000) / 999.0,
                             static_cast<double>(static_cast<int>(rng() % 100) - 20),
                             rng() % 8 ? (rng() % 5000) / 100.0 - 5.0 : specials[rng() % 11],
                             tbl.GetSize(), tbl.Data(), &planes, lut};

        std::vector<std::vector<CRgb>> colour, depth;
        std::vector<std::vector<BYTE>> maxed;
        AtEachLevel([&](int) {
            std::vector<CRgb> out(n + 1, CRgb(1, 2, 3, 4));
            zan_dsp::ColourRow(acc.data(), n, tbl.Data(), planes, out.data());
            colour.push_back(out);
            std::vector<CRgb> dout(n + 1, CRgb(1, 2, 3, 4));
            zan_dsp::DepthColourRow(acc.data(), n, d, dout.data());
            depth.push_back(dout);
            std::vector<BYTE> m = acc;
            zan_dsp::MaxRow(m.data(), s.data(), n);
            maxed.push_back(m);
        });
        for (std::size_t l = 1; l < colour.size(); ++l) {
            ASSERT_EQ(colour[l], colour[0]) << "iteration " << iter << " level " << l;
            ASSERT_EQ(depth[l], depth[0]) << "iteration " << iter << " level " << l;
            ASSERT_EQ(maxed[l], maxed[0]) << "iteration " << iter << " level " << l;
        }
        // And the plain form is what its description says.
        for (std::size_t x = 0; x < n; ++x) {
            ASSERT_EQ(colour[0][x], tbl[acc[x]]);
            ASSERT_EQ(maxed[0][x], std::max(acc[x], s[x]));
            const unsigned i = lut[acc[x]];
            CRgb want(0, 0, 0, 0);
            if (i > 8) {
                const BYTE b1 = x < nVec ? zan_dsp::DepthIndexByte(dz[x] * d.frac + sz[x], d.dMin, d.scale, d.nc) : 0;
                const unsigned k = std::min(i + 126, 255u);
                const CRgb c = tbl[b1];
                want = CRgb(static_cast<BYTE>(c.r * k / 256), static_cast<BYTE>(c.g * k / 256),
                            static_cast<BYTE>(c.b * k / 256), tbl[static_cast<int>(i)].a);
            }
            ASSERT_EQ(depth[0][x], want) << x;
        }
        ASSERT_EQ(colour[0][n], CRgb(1, 2, 3, 4));  // nothing written past the row
        ASSERT_EQ(depth[0][n], CRgb(1, 2, 3, 4));
    }
}

TEST(DspRow, WidePicturesAreTheSameAtEveryLevel)
{
    std::mt19937 rng(99);
    for (int iter = 0; iter < 20; ++iter) {
        const unsigned nRngs = 50 + rng() % 600, nBrgs = 60 + rng() % 300;
        CColTbl t = RandomTable(rng);
        const int depthCol = static_cast<int>(iter % 2);
        const bool gain = rng() % 2;
        const int resIdx = static_cast<int>(rng() % 5);
        std::vector<std::vector<CRgb>> pics;
        AtEachLevel([&](int) {
            std::mt19937 img(static_cast<unsigned>(iter));  // the same image at each level
            CTgtImg im;
            rt::MakeImage(im, nRngs, nBrgs);
            for (unsigned i = 0; i < nRngs * nBrgs; ++i) im.m_pImg[i] = static_cast<BYTE>(img() % 3 ? img() % 30 : img());
            for (unsigned x = 0; x < nBrgs; ++x) {
                im.m_vStart[x] = CV3(0, 0, (img() % 1000) / 10.0 - 20.0);
                im.m_vEnd[x] = CV3(0, 0, (img() % 1000) / 10.0);
            }
            im.Ping()->m_dispPercent = gain ? 13 : -1;
            im.CreateImg(t, resIdx, depthCol, 0.0, 60.0, true);
            pics.emplace_back(im.m_pDsp, im.m_pDsp + static_cast<std::size_t>(im.m_nBrgs) * im.m_nImgSize);
        });
        for (std::size_t l = 1; l < pics.size(); ++l) ASSERT_EQ(pics[l], pics[0]) << "iteration " << iter;
    }
}
