// Whole-image arithmetic of CTgtImg: normalisation, 16 to 8 bit compression,
// phase and amplitude, and pixel arithmetic on one or two images.
//
// Every float-to-sample conversion truncates towards zero and keeps the low
// bits of the result; the operations clamp only where their comment says.
#include "image/CTgtImg.h"

#include "core/platform/ML.h"
#include "core/platform/Zan.h"
#include "ping/CArrType.h"
#include "ping/CPing.h"
#include "processing/ImgMath.hpp"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <vector>

using imgmath::ToByte;
using imgmath::ToWord;

namespace {

// Samples of a 16-bit plane, read little-endian whatever the alignment.
inline unsigned Word(const BYTE* p, size_t i) { return p[2 * i] | (p[2 * i + 1] << 8); }
inline void PutWord(BYTE* p, size_t i, WORD v)
{
    p[2 * i] = static_cast<BYTE>(v);
    p[2 * i + 1] = static_cast<BYTE>(v >> 8);
}

}  // namespace

// ---------------------------------------------------------------- normalisation

void CTgtImg::Normalise16(int useCols)
{
    if (m_nRngs == 0 || m_nQIWidth == 0 || !m_pQI) return;
    // Rows are m_nBrgs samples apart; a plane too small for that is left alone.
    const size_t rows = m_nRngs, cols = m_nBrgs;
    if (cols == 0 || rows * cols * 2 > static_cast<size_t>(m_nQIWidth) * rows) return;

    const std::uint32_t g = static_cast<std::uint32_t>(static_cast<std::int32_t>(Ping()->m_bfGain));
    std::vector<BYTE> copy(m_pQI, m_pQI + static_cast<size_t>(m_nQIWidth) * rows);
    std::vector<std::uint32_t> rowMax(rows, 65535), rowRaw(rows, 65535), colMax(cols, 65535);

    for (size_t r = 0; r < rows; ++r)
        for (size_t c = 0; c < cols; ++c) {
            const std::uint32_t v = Word(copy.data(), r * cols + c) * g;
            rowRaw[r] = std::max(rowRaw[r], v);
            rowMax[r] = std::max(rowMax[r], v);
        }
    if (Ping()->m_nrmSpread != 0)
        for (size_t r = 0; r < rows; ++r) {
            if (r >= 1) rowMax[r] = std::max(rowMax[r], rowRaw[r - 1]);
            if (r + 1 < rows) rowMax[r] = std::max(rowMax[r], rowRaw[r + 1]);
        }
    if (useCols != 0 && rows > 50)
        for (size_t r = 0; r + 50 < rows; ++r)
            for (size_t c = 0; c < cols; ++c) colMax[c] = std::max(colMax[c], Word(copy.data(), r * cols + c) * g);

    const double gd = static_cast<double>(g);
    for (size_t r = 0; r < rows; ++r)
        for (size_t c = 0; c < cols; ++c) {
            const double den = static_cast<double>(std::max(rowMax[r], colMax[c]));
            const double s = Word(copy.data(), r * cols + c);
            PutWord(m_pQI, r * cols + c, ToWord(s * gd * 65535.0 / den));
        }
}

void CTgtImg::Normalise8(int useCols)
{
    if (m_nRngs == 0 || m_nQIWidth == 0 || !m_pQI) return;
    Alloc(m_nRngs, m_nQIWidth / 2);
    if (!m_pImg || m_nBrgs == 0) return;
    imgmath::Normalise8(m_pQI, m_pImg, m_nRngs, m_nBrgs, Ping()->m_bfGain, Ping()->m_nrmSpread != 0, useCols != 0);
}

void CTgtImg::Norm16to8(double)
{
    if (m_nRngs == 0 || m_nQIBytes == 0 || m_nQIWidth == 0 || !m_pQI) return;
    const short gain = Ping()->m_bfGain;
    // A gain of 255 or more gives 255; a negative one stands (and lets every
    // sample through).
    const int minI = gain >= 255 ? 255 : gain;
    const size_t n = m_nQIBytes / 2;
    const unsigned maxI = imgmath::MaxWord(m_pQI, n);
    Alloc(m_nRngs, m_nQIWidth / 2);
    // The plane is one flat run; the 8-bit plane takes the same indices as far
    // as it reaches.
    if (m_pImg) imgmath::Stretch16to8(m_pQI, m_pImg, std::min<size_t>(n, m_nImgBytes), minI, maxI);
    Zan::Status(6030, 0, u"MinI:%u MaxI:%u", minI, maxI);
}

// ---------------------------------------------------------------- phase and amplitude

namespace {

// Phase and amplitude bytes of one quadrature pair, Q and I as signed bytes.
// wide: GenPA16's phase scale (255 per circle); else GenPA8's (255.99 per half).
inline void PhaseAmp(int q8, int i8, double gain, bool wide, BYTE& phs, BYTE& amp)
{
    const double Q = q8 / 255.0, I = i8 / 255.0;
    double phase = std::atan2(Q, I);
    if (phase < 0.0) phase += ML::pi2;
    if (phase > ML::pi2) phase -= ML::pi2;
    double a = std::sqrt(I * I + Q * Q) * gain;
    if (a > 1.0) a = 1.0;
    amp = ToByte(a * 255.99);
    phs = wide ? ToByte(phase * 255.0 / ML::pi2) : ToByte(phase * 255.99 / ML::pi);
}

// Fills m_pPhs and m_pAmp from n pairs (q, i) read by `pair`. A pair is one
// of 65536, so large planes look their bytes up in a table made once.
template <class Pair>
void GenPA(BYTE* phs, BYTE* amp, size_t n, double gain, bool wide, Pair pair)
{
    if (n > 65536) {
        std::vector<BYTE> tp(65536), ta(65536);
        for (int q = -128; q < 128; ++q)
            for (int i = -128; i < 128; ++i) {
                const size_t k = static_cast<size_t>((q & 0xFF) << 8 | (i & 0xFF));
                PhaseAmp(q, i, gain, wide, tp[k], ta[k]);
            }
        for (size_t s = 0; s < n; ++s) {
            int q, i;
            pair(s, q, i);
            const size_t k = static_cast<size_t>((q & 0xFF) << 8 | (i & 0xFF));
            phs[s] = tp[k];
            amp[s] = ta[k];
        }
        return;
    }
    for (size_t s = 0; s < n; ++s) {
        int q, i;
        pair(s, q, i);
        PhaseAmp(q, i, gain, wide, phs[s], amp[s]);
    }
}

}  // namespace

void CTgtImg::GenPA16()
{
    AllocPA(m_nRngs, CArrType::s_types[Ping()->m_rx1Idx].m_nElements);
    if (m_nRngs < 1 || !m_pQI || !m_pPhs || !m_pAmp) return;
    // 32-bit samples: Q is bits 8-15, I bits 24-31. Only whole samples that
    // the raw plane holds are used.
    const size_t n = std::min<size_t>(static_cast<size_t>(m_nRngs) * m_nPAWidth, m_nQIBytes / 4);
    const BYTE* qi = m_pQI;
    GenPA(m_pPhs, m_pAmp, n, Ping()->m_bfGain, true, [qi](size_t s, int& q, int& i) {
        q = static_cast<signed char>(qi[4 * s + 1]);
        i = static_cast<signed char>(qi[4 * s + 3]);
    });
}

void CTgtImg::GenPA8()
{
    AllocPA(m_nRngs, CArrType::s_types[Ping()->m_rx1Idx].m_nElements);
    if (m_nRngs < 1 || !m_pQI || !m_pPhs || !m_pAmp) return;
    // 16-bit samples: Q is the low byte, I the high byte.
    const size_t n = std::min<size_t>(static_cast<size_t>(m_nRngs) * m_nPAWidth, m_nQIBytes / 2);
    const BYTE* qi = m_pQI;
    GenPA(m_pPhs, m_pAmp, n, Ping()->m_bfGain, false, [qi](size_t s, int& q, int& i) {
        q = static_cast<signed char>(qi[2 * s]);
        i = static_cast<signed char>(qi[2 * s + 1]);
    });
}

// ---------------------------------------------------------------- two images

namespace {

// Walks the 8-bit planes of a and b in step (a's shape, after Set).
template <class Op>
void Each8(CTgtImg& a, CTgtImg& b, Op op)
{
    if (a.m_nBrgs == 0 || a.m_nRngs == 0 || !a.m_pImg || b.m_nBrgs == 0 || b.m_nRngs == 0 || !b.m_pImg) return;
    const size_t n = std::min({static_cast<size_t>(a.m_nRngs) * a.m_nBrgs, static_cast<size_t>(a.m_nImgBytes),
                               static_cast<size_t>(b.m_nImgBytes)});
    for (size_t i = 0; i < n; ++i) a.m_pImg[i] = ToByte(op(static_cast<double>(a.m_pImg[i]), static_cast<double>(b.m_pImg[i])));
}

// Walks the 16-bit planes: a's m_nRngs rows of m_nQIWidth / 2 samples, as far
// as both planes reach.
template <class Op>
void Each16(CTgtImg& a, CTgtImg& b, Op op)
{
    if (a.m_nQIWidth == 0 || a.m_nRngs == 0 || !a.m_pQI || b.m_nQIWidth == 0 || b.m_nRngs == 0 || !b.m_pQI) return;
    const size_t n = std::min({static_cast<size_t>(a.m_nRngs) * (a.m_nQIWidth / 2), static_cast<size_t>(a.m_nQIBytes / 2),
                               static_cast<size_t>(b.m_nQIBytes / 2)});
    for (size_t i = 0; i < n; ++i)
        PutWord(a.m_pQI, i, ToWord(op(static_cast<double>(Word(a.m_pQI, i)), static_cast<double>(Word(b.m_pQI, i)))));
}

double Sub(double s, double o, double f)
{
    const double v = s - o * f;
    return v < 0.0 ? 0.0 : v;
}
double Pst(double s, double o, double f) { return std::max(s * f, o); }
double Acc(double s, double o, double f) { return s * (1.0 - f) + o * f; }

}  // namespace

void CTgtImg::SubImg(CTgtImg& other, double f)
{
    Set(other);
    Each8(*this, other, [f](double s, double o) { return Sub(s, o, f); });
}

void CTgtImg::PstImg(CTgtImg& other, double f)
{
    Set(other);
    Each8(*this, other, [f](double s, double o) { return Pst(s, o, f); });
}

void CTgtImg::AccImg(CTgtImg& other, double f)
{
    Set(other);
    Each8(*this, other, [f](double s, double o) { return Acc(s, o, f); });
}

void CTgtImg::SubImg16(CTgtImg& other, double f)
{
    Each16(*this, other, [f](double s, double o) { return Sub(s, o, f); });
}

void CTgtImg::PstImg16(CTgtImg& other, double f)
{
    Each16(*this, other, [f](double s, double o) { return Pst(s, o, f); });
}

void CTgtImg::AccImg16(CTgtImg& other, double f)
{
    Each16(*this, other, [f](double s, double o) { return Acc(s, o, f); });
}

// ---------------------------------------------------------------- one image

namespace {

// Maps every sample of the 8-bit plane through f, worked out once per byte.
template <class F>
void Map8(CTgtImg& img, F f)
{
    if (img.m_nBrgs == 0 || img.m_nRngs == 0 || !img.m_pImg) return;
    BYTE map[256];
    for (int s = 0; s < 256; ++s) map[s] = ToByte(f(static_cast<double>(s)));
    const size_t n = std::min(static_cast<size_t>(img.m_nRngs) * img.m_nBrgs, static_cast<size_t>(img.m_nImgBytes));
    for (size_t i = 0; i < n; ++i) img.m_pImg[i] = map[img.m_pImg[i]];
}

}  // namespace

void CTgtImg::RootImg()
{
    Map8(*this, [](double s) { return std::sqrt(s / 255.0) * 255.0; });
}

void CTgtImg::SqrImg()
{
    Map8(*this, [](double s) {
        const double y = s / 255.0;
        return y * y * 255.0;
    });
}

void CTgtImg::Scale(double f)
{
    Map8(*this, [f](double s) { return std::min(s * f, 255.0); });
}
