// The row kernels of the display image: every level this processor has gives
// the bytes of the plain form, edge values of the depth arithmetic included;
// and whole pictures built at each level agree.
#include "RenderTestUtil.h"
#include "render/DspRow.hpp"

#include <gtest/gtest.h>

#include <bit>
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

// sameAlpha: one alpha for every entry, as most tables have (the depth
// colouring then takes it without a lookup), except perhaps entries past 256.
CColTbl RandomTable(std::mt19937& rng, int n = 256, bool sameAlpha = false)
{
    CColTbl t(static_cast<unsigned>(n));
    const BYTE alpha = static_cast<BYTE>(rng());
    for (int i = 0; i < n; ++i) {
        const unsigned v = rng();
        t[i] = CRgb(static_cast<BYTE>(v), static_cast<BYTE>(v >> 8), static_cast<BYTE>(v >> 16),
                    sameAlpha && i < 256 ? alpha : static_cast<BYTE>(v >> 24));
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
        // One to three folded lines, some rows apart.
        const unsigned m = 1 + rng() % 3;
        const std::size_t stride = n + rng() % 70;
        std::vector<BYTE> lines(stride * (m - 1) + n + 1), s(n);
        for (auto& v : lines) v = static_cast<BYTE>(rng() % 4 ? rng() % 40 : rng());
        for (auto& v : s) v = static_cast<BYTE>(rng());
        const zan_dsp::Fold fold {lines.data(), stride, m};
        std::vector<BYTE> acc(n);
        for (std::size_t x = 0; x < n; ++x)
            for (unsigned j = 0; j < m; ++j) acc[x] = std::max(acc[x], lines[j * stride + x]);

        zan_dsp::DepthCols cols;
        cols.sz.resize(nVec);
        cols.dz.resize(nVec);
        for (std::size_t x = 0; x < nVec; ++x) {
            cols.sz[x] = rng() % 16 ? static_cast<double>(static_cast<int>(rng() % 20000) - 5000) / 97.0 : specials[rng() % 11];
            cols.dz[x] = rng() % 16 ? static_cast<double>(static_cast<int>(rng() % 20000) - 5000) / 89.0 : specials[rng() % 11];
        }
        const CColTbl tbl = RandomTable(rng, rng() % 2 ? 256 : 300, iter % 2);
        cols.Prepare(static_cast<double>(static_cast<int>(rng() % 100) - 20),
                     rng() % 8 ? (rng() % 5000) / 100.0 - 5.0 : specials[rng() % 11], tbl.GetSize());
        zan_dsp::Planes planes;
        planes.Set(tbl.Data());
        BYTE lut[256];
        for (int v = 0; v < 256; ++v) lut[v] = static_cast<BYTE>(rng() % 2 ? v : rng());
        const zan_dsp::DepthColour d {&cols, tbl.Data(), &planes, lut};
        const unsigned rLast = rng() % 1000;
        const double frac = rLast / 999.0;

        std::vector<std::vector<CRgb>> colour, depth;
        std::vector<std::vector<BYTE>> maxed;
        AtEachLevel([&](int) {
            std::vector<CRgb> out(n + 1, CRgb(1, 2, 3, 4));
            zan_dsp::ColourRows({fold, 1, out.data(), n}, n, tbl.Data(), planes);
            colour.push_back(out);
            std::vector<CRgb> dout(n + 1, CRgb(1, 2, 3, 4));
            zan_dsp::DepthColourRows({fold, 1, dout.data(), n, rLast, 999}, n, d);
            depth.push_back(dout);
            std::vector<BYTE> mx = acc;
            zan_dsp::MaxRow(mx.data(), s.data(), n);
            maxed.push_back(mx);
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
                const BYTE b1 = x < nVec ? zan_dsp::DepthIndexByte(cols.dz[x] * frac + cols.sz[x], cols.dMin, cols.scale, cols.nc) : 0;
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

// The estimates are made eight columns at a time where the processor allows:
// the same floats, bit for bit, as column by column, for ordinary depths, the
// values that aren't numbers or overflow, and w on either side of the limit
// beyond which a column is never sure.
TEST(DspRow, DepthEstimatesAreTheSameAtEveryLevel)
{
    std::mt19937 rng(23);
    const double specials[] = {0.0, -0.0, 1e-310, -1e-310, 1e300, -1e300, 3e38, 1e-40,
                               std::numeric_limits<double>::quiet_NaN(), std::numeric_limits<double>::infinity(),
                               -std::numeric_limits<double>::infinity()};
    auto bits = [](const zan::LineVector<float>& v) {
        std::vector<std::uint32_t> b(v.size());
        for (std::size_t i = 0; i < v.size(); ++i) b[i] = std::bit_cast<std::uint32_t>(v[i]);
        return b;
    };
    for (int iter = 0; iter < 300; ++iter) {
        const std::size_t n = rng() % 70;
        const double dMin = rng() % 8 ? static_cast<int>(rng() % 2000 - 1000) / 7.0 : specials[rng() % 11];
        const double scale = rng() % 8 ? static_cast<int>(rng() % 20000 - 10000) / 313.0 : specials[rng() % 11];
        std::vector<double> sz(n), dz(n);
        for (std::size_t x = 0; x < n; ++x) {
            switch (rng() % 4) {
            case 0:  // a value that isn't ordinary
                sz[x] = specials[rng() % 11];
                dz[x] = rng() % 2 ? specials[rng() % 11] : 1.0;
                break;
            case 1: {  // w at the limit, or one unit either side
                dz[x] = 0.0;
                sz[x] = std::isfinite(scale) && scale != 0.0 ? 16383.0 / std::fabs(scale) - std::fabs(dMin) : 1.0;
                for (int u = static_cast<int>(rng() % 5) - 2; u != 0; u += u > 0 ? -1 : 1)
                    sz[x] = std::nextafter(sz[x], u > 0 ? 1e300 : -1e300);
                break;
            }
            default:
                sz[x] = static_cast<int>(rng() % 200000 - 100000) / 1009.0;
                dz[x] = static_cast<int>(rng() % 200000 - 100000) / 997.0;
            }
        }
        std::vector<std::vector<std::uint32_t>> got;
        AtEachLevel([&](int) {
            zan_dsp::DepthCols c;
            c.sz.assign(sz.begin(), sz.end());
            c.dz.assign(dz.begin(), dz.end());
            c.Prepare(dMin, scale, 256);
            for (const auto* v : {&c.a, &c.bLo, &c.room}) got.push_back(bits(*v));
        });
        for (std::size_t l = 3; l < got.size(); ++l) ASSERT_EQ(got[l], got[l % 3]) << "iteration " << iter << " array " << l % 3;
    }
}

// The vector form estimates the index in single precision and must fall back
// to the exact form wherever the estimate could round across a whole number:
// depths that put t exactly on, or a few units in the last place either side
// of, a whole number, at spans small and large.
TEST(DspRow, DepthIndicesAtWholeNumbersAreExactAtEveryLevel)
{
    std::mt19937 rng(31);
    const CColTbl tbl = RandomTable(rng);
    zan_dsp::Planes planes;
    planes.Set(tbl.Data());
    BYTE lut[256];
    for (int v = 0; v < 256; ++v) lut[v] = static_cast<BYTE>(v);
    constexpr std::size_t n = 64 * 24;
    const std::vector<BYTE> bright(n, 200);
    const zan_dsp::Fold fold {bright.data(), 0, 1};
    struct Span {
        double dMin, dMax;
    };
    const Span spans[] = {{0.0, 30.0}, {-5.0, 12.5}, {100.0, 101.0}, {0.0, 3000.0}, {-1e-3, 1e-3}};
    // Each frac as a row's line over the image's lines.
    const unsigned fracs[][2] = {{0, 1}, {1, 3}, {1, 2}, {1999, 2000}, {1, 1}};
    std::size_t checked = 0;
    for (const Span& sp : spans) {
        const double scale = 256.0 / (sp.dMax - sp.dMin);
        for (const auto& fr : fracs) {
            const double frac = static_cast<double>(fr[0]) / fr[1];
            zan_dsp::DepthCols cols;
            cols.sz.resize(n);
            cols.dz.resize(n);
            for (std::size_t x = 0; x < n; ++x) {
                // The depth at which t is the whole number k, moved by a few ulps.
                const double dz = (static_cast<int>(rng() % 2001) - 1000) / 100.0 / scale;
                const int k = static_cast<int>(rng() % 300) - 20;
                double sz = (k - 0.5) / scale + sp.dMin - dz * frac;
                for (int u = static_cast<int>(rng() % 9) - 4; u != 0; u += u > 0 ? -1 : 1)
                    sz = std::nextafter(sz, u > 0 ? 1e300 : -1e300);
                cols.sz[x] = sz;
                cols.dz[x] = dz;
            }
            cols.Prepare(sp.dMin, scale, tbl.GetSize());
            const zan_dsp::DepthColour d {&cols, tbl.Data(), &planes, lut};
            std::vector<std::vector<CRgb>> out;
            AtEachLevel([&](int) {
                std::vector<CRgb> o(n);
                zan_dsp::DepthColourRows({fold, 1, o.data(), n, fr[0], fr[1]}, n, d);
                out.push_back(o);
            });
            for (std::size_t l = 1; l < out.size(); ++l)
                for (std::size_t x = 0; x < n; ++x)
                    ASSERT_EQ(out[l][x], out[0][x]) << "span " << sp.dMin << ".." << sp.dMax << " frac " << frac << " column " << x;
            checked += n;
        }
    }
    EXPECT_EQ(checked, 25u * n);
}

// Depth that changes smoothly from beam to beam, as a seabed gives it: each
// block of 64 columns then spans few table entries, the case the vector form
// colours from one run of the table. Runs that cross index 0 (negative
// indices keep their low byte), the held end nc - 1, and the 256th entry of a
// longer table are all met.
TEST(DspRow, SmoothDepthAcrossBeamsIsTheSameAtEveryLevel)
{
    std::mt19937 rng(5);
    constexpr std::size_t n = 64 * 20 + 37;
    for (int iter = 0; iter < 60; ++iter) {
        const CColTbl tbl = RandomTable(rng, iter % 3 ? 256 : 300, iter % 4 < 2);
        zan_dsp::Planes planes;
        planes.Set(tbl.Data());
        BYTE lut[256];
        for (int v = 0; v < 256; ++v) lut[v] = static_cast<BYTE>(iter % 2 ? v : std::min(255, v * 3 / 2));
        const unsigned m = 1 + rng() % 3;
        std::vector<BYTE> lines(n * m);
        for (auto& v : lines) v = static_cast<BYTE>(rng() % 5 ? 9 + rng() % 60 : rng() % 12);
        const zan_dsp::Fold fold {lines.data(), n, m};
        // Indices from about -40 to 340 over the row, rising or falling.
        const double dMin = static_cast<int>(rng() % 40) - 10.0, span = 5.0 + rng() % 60;
        const double scale = tbl.GetSize() / span;
        const double idx0 = static_cast<int>(rng() % 380) - 40.0, slope = (static_cast<int>(rng() % 200) - 100) / 400.0;
        zan_dsp::DepthCols cols;
        cols.sz.resize(n);
        cols.dz.resize(n);
        for (std::size_t x = 0; x < n; ++x) {
            const double t = idx0 + slope * static_cast<double>(x);
            cols.sz[x] = (t - 0.5) / scale + dMin;
            cols.dz[x] = (static_cast<int>(rng() % 21) - 10) / 10.0 / scale;
        }
        cols.Prepare(dMin, scale, tbl.GetSize());
        const zan_dsp::DepthColour d {&cols, tbl.Data(), &planes, lut};
        const unsigned rLast = rng() % 2001;
        std::vector<std::vector<CRgb>> out;
        AtEachLevel([&](int) {
            std::vector<CRgb> o(n + 1, CRgb(1, 2, 3, 4));
            zan_dsp::DepthColourRows({fold, 1, o.data(), n, rLast, 2000}, n, d);
            out.push_back(o);
        });
        for (std::size_t l = 1; l < out.size(); ++l)
            for (std::size_t x = 0; x <= n; ++x) ASSERT_EQ(out[l][x], out[0][x]) << "iteration " << iter << " column " << x;
    }
}

// A run of rows gives what its rows give one call each: each row its own
// lines, pixels and depth, at every level, and nothing between the rows.
TEST(DspRow, ARunOfRowsIsItsRowsOneByOne)
{
    std::mt19937 rng(17);
    for (int iter = 0; iter < 24; ++iter) {
        const std::size_t n = 64 * (1 + rng() % 4) + rng() % 64;
        const std::size_t outStride = n + 1 + rng() % 9;
        const unsigned m = 1 + rng() % 3, nRows = 2 + rng() % 9;
        const unsigned nRngs = nRows * m + rng() % 50, rLast = m - 1 + rng() % (nRngs - nRows * m + 1);
        std::vector<BYTE> lines(n * m * nRows);
        for (auto& v : lines) v = static_cast<BYTE>(rng() % 5 ? rng() % 70 : rng());
        const CColTbl tbl = RandomTable(rng, 256, iter % 2);
        zan_dsp::Planes planes;
        planes.Set(tbl.Data());
        BYTE lut[256];
        for (int v = 0; v < 256; ++v) lut[v] = static_cast<BYTE>(std::min(255, v * 5 / 4));
        zan_dsp::DepthCols cols;
        cols.sz.resize(n);
        cols.dz.resize(n);
        for (std::size_t x = 0; x < n; ++x) {
            cols.sz[x] = (rng() % 3000) / 100.0;
            cols.dz[x] = (static_cast<int>(rng() % 4000) - 2000) / 100.0;
        }
        cols.Prepare(0.0, 256 / 30.0, 256);
        const zan_dsp::DepthColour d {&cols, tbl.Data(), &planes, lut};
        const zan_dsp::Fold fold {lines.data(), n, m};

        const CRgb guard(1, 2, 3, 4);
        std::vector<std::vector<CRgb>> pics;
        AtEachLevel([&](int) {
            for (const bool depth : {false, true}) {
                std::vector<CRgb> whole(outStride * nRows, guard), rows(outStride * nRows, guard);
                const zan_dsp::Rows run {fold, nRows, whole.data(), outStride, rLast, nRngs};
                if (depth) zan_dsp::DepthColourRows(run, n, d);
                else zan_dsp::ColourRows(run, n, tbl.Data(), planes);
                for (unsigned j = 0; j < nRows; ++j) {
                    const zan_dsp::Rows one {{lines.data() + j * m * n, n, m}, 1, rows.data() + j * outStride, outStride,
                                             rLast + j * m, nRngs};
                    if (depth) zan_dsp::DepthColourRows(one, n, d);
                    else zan_dsp::ColourRows(one, n, tbl.Data(), planes);
                }
                ASSERT_EQ(whole, rows) << "iteration " << iter << (depth ? " by depth" : " by intensity");
                for (unsigned j = 0; j < nRows; ++j)
                    for (std::size_t x = n; x < outStride; ++x) ASSERT_EQ(whole[j * outStride + x], guard);
                pics.push_back(whole);
            }
        });
        for (std::size_t l = 2; l < pics.size(); ++l) ASSERT_EQ(pics[l], pics[l % 2]) << "iteration " << iter;
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
