// The intensity run-length code: the documented streams byte for byte, the
// two decisions of this library (1-byte images, FF behind a run count of FF),
// and the fast codec against the plain reference over thousands of images.
#include "image/CImgRle.h"
#include "tests/image/RleReference.h"

#include <gtest/gtest.h>

#include <random>
#include <vector>

namespace {

using Bytes = std::vector<BYTE>;

Bytes Enc(const Bytes& img, BYTE level)
{
    Bytes out(img.size() + 16, 0xEE);  // slack only to see stray writes
    const unsigned int s = CImgRle::Encode(img.data(), out.data(), static_cast<unsigned int>(img.size()), level);
    for (size_t i = img.size(); i < out.size(); ++i) EXPECT_EQ(out[i], 0xEE) << "write past n at " << i;
    out.resize(s);
    return out;
}

Bytes Dec(const Bytes& stream, size_t n, BYTE fill = 0xAB)
{
    Bytes out(n, fill);
    CImgRle::Decode(out.data(), stream.data(), static_cast<unsigned int>(stream.size()), static_cast<unsigned int>(n));
    return out;
}

Bytes ZeroRun(unsigned int zeros)
{
    Bytes img(1, 9);
    img.insert(img.end(), zeros, 0);
    img.push_back(9);
    return img;
}

}  // namespace

TEST(ImgRle, DocumentedExample)
{
    const Bytes img{0, 0, 0, 9, 0, 200, 0, 0, 0, 0};
    const Bytes want{0x00, 0x03, 0x09, 0x01, 0xC8, 0x00, 0x04, 0x02, 0x02};
    EXPECT_EQ(Enc(img, 8), want);
    EXPECT_EQ(Dec(want, img.size()), img);
}

TEST(ImgRle, AllBelowLevel)
{
    const Bytes img(6400, 3);
    Bytes want;
    for (int i = 0; i < 25; ++i) want.insert(want.end(), {0x00, 0xFF});
    want.insert(want.end(), {0x00, 0x19, 0x02, 0x02});
    ASSERT_EQ(want.size(), 54u);
    EXPECT_EQ(Enc(img, 8), want);
    EXPECT_EQ(Dec(want, 6400), Bytes(6400, 0));
}

TEST(ImgRle, LongRunsAreCutAt255)
{
    EXPECT_EQ(Enc(ZeroRun(256), 8), (Bytes{9, 0x00, 0xFF, 0x01, 9, 2, 2}));
    EXPECT_EQ(Enc(ZeroRun(258), 8), (Bytes{9, 0x00, 0xFF, 0x00, 0x03, 9, 2, 2}));
    EXPECT_EQ(Enc(ZeroRun(510), 8), (Bytes{9, 0x00, 0xFF, 0x00, 0xFF, 9, 2, 2}));
    EXPECT_EQ(Enc(ZeroRun(255), 8), (Bytes{9, 0x00, 0xFF, 9, 2, 2}));
    for (unsigned int z : {255u, 256u, 258u, 510u, 511u, 765u}) EXPECT_EQ(Dec(Enc(ZeroRun(z), 8), z + 2), ZeroRun(z)) << z;
}

TEST(ImgRle, SingleAndDoubleZeros)
{
    EXPECT_EQ(Enc(Bytes{50, 0, 60, 0, 0, 70, 1, 1, 1, 1, 1, 1}, 8),
              (Bytes{50, 0x01, 60, 0x00, 0x02, 70, 0x00, 0x06, 2, 2}));
}

TEST(ImgRle, BelowLevelComesBackAsZero)
{
    const Bytes img{1, 2, 3, 4, 5, 6, 7, 8, 9, 200, 7, 8, 7, 7};
    const Bytes out = Dec(Enc(img, 8), img.size());
    EXPECT_EQ(out, (Bytes{0, 0, 0, 0, 0, 0, 0, 8, 9, 200, 0, 8, 0, 0}));
}

TEST(ImgRle, IncompressibleImageEndsInTheMark)
{
    Bytes img(300);
    for (size_t i = 0; i < img.size(); ++i) img[i] = static_cast<BYTE>(8 + i % 240);
    const Bytes s = Enc(img, 8);
    ASSERT_EQ(s.size(), img.size());
    EXPECT_TRUE(std::equal(s.begin(), s.end() - 2, img.begin()));
    EXPECT_EQ(s[298], 2);
    EXPECT_EQ(s[299], 2);
    Bytes back = Dec(s, img.size());
    EXPECT_EQ(back[298], 2);
    EXPECT_EQ(back[299], 2);
    back[298] = img[298];
    back[299] = img[299];
    EXPECT_EQ(back, img);
    // Codes that take n - 1 bytes lose the last two bytes to the mark too.
    const Bytes nearly{9, 9, 0, 0, 9};  // 09 09 00 02 09 = 5 > 5 - 2
    EXPECT_EQ(Enc(nearly, 8), (Bytes{9, 9, 0, 2, 2}));
    const Bytes over{9, 0, 0, 0, 9, 9};  // 09 00 03 09 09: 5 > 6 - 2
    EXPECT_EQ(Enc(over, 8), (Bytes{9, 0, 3, 2, 2}));
    // Codes of exactly n - 2 bytes get the mark appended.
    const Bytes room{9, 0, 0, 0, 0, 9, 9};  // 09 00 04 09 09: 5 <= 7 - 2
    EXPECT_EQ(Enc(room, 8), (Bytes{9, 0, 4, 9, 9, 2, 2}));
}

TEST(ImgRle, TwosInsideTheImageDoNotEndDecoding)
{
    const Bytes img{2, 2, 0, 2, 2, 5, 0, 0, 0, 2, 2, 9, 0, 0, 0, 0};
    const Bytes s = Enc(img, 2);
    EXPECT_EQ(Dec(s, img.size()), img);
}

TEST(ImgRle, LevelZeroAndOne)
{
    // Level 0: nothing is below it, zeros go out as literal bytes and read
    // back as run codes.
    const Bytes img{7, 0, 5, 9, 9, 9, 9, 9};
    const Bytes s = Enc(img, 0);
    EXPECT_EQ(s, (Bytes{7, 0, 5, 9, 9, 9, 2, 2}));
    EXPECT_EQ(Dec(s, img.size(), 0xAB), (Bytes{7, 0, 0, 0, 0, 0, 9, 9}));
    // Level 1: a sample of 1 is the single-zero code.
    const Bytes ones{1, 5, 1, 1, 0, 0, 0, 0, 0, 0};
    EXPECT_EQ(Dec(Enc(ones, 1), ones.size()), (Bytes{0, 5, 0, 0, 0, 0, 0, 0, 0, 0}));
}

TEST(ImgRle, EmptyStreamAndEmptyImage)
{
    Bytes dst(10, 0x5A);
    const BYTE code = 0;
    CImgRle::Decode(dst.data(), &code, 0, 10);
    EXPECT_EQ(dst, Bytes(10, 0x5A));
    BYTE out = 0x77;
    EXPECT_EQ(CImgRle::Encode(&code, &out, 0, 8), 0u);
    EXPECT_EQ(out, 0x77);
}

// Decision: a 1-byte image is its single code, without end mark.
TEST(ImgRle, OneByteImage)
{
    EXPECT_EQ(Enc(Bytes{5}, 8), Bytes{0x01});
    EXPECT_EQ(Enc(Bytes{200}, 8), Bytes{200});
    EXPECT_EQ(Enc(Bytes{2}, 2), Bytes{2});
    EXPECT_EQ(Dec(Bytes{0x01}, 1), Bytes{0});
    EXPECT_EQ(Dec(Bytes{200}, 1), Bytes{200});
    EXPECT_EQ(Dec(Enc(Bytes{0}, 0), 1), Bytes{0});  // 00 at the stream's end is a literal
}

// Decision: FF behind a run count of FF is a sample of 255.
TEST(ImgRle, SampleOf255BehindAFullRun)
{
    for (unsigned int zeros : {255u, 510u}) {
        Bytes img(zeros, 0);
        img.insert(img.end(), {255, 255, 0, 0, 0, 40, 0, 0, 0, 0});
        const Bytes s = Enc(img, 8);
        EXPECT_EQ(s[s.size() - 9], 0xFF);  // ... 00 FF | FF FF 00 03 28 00 04 02 02
        EXPECT_EQ(Dec(s, img.size()), img) << zeros;
    }
}

TEST(ImgRle, StreamLongerThanImageIsCut)
{
    const Bytes s{0x00, 0x10, 9, 9, 9, 2, 2};
    EXPECT_EQ(Dec(s, 12, 0xAB), Bytes(12, 0));
    EXPECT_EQ(Dec(s, 18, 0xAB), (Bytes{0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 9, 9}));
}

TEST(ImgRle, ShortStreamLeavesTheRestAlone)
{
    // A run count of 0 writes nothing, and 00 as last byte is a zero sample.
    EXPECT_EQ(Dec(Bytes{7, 0x00, 0x00, 8, 0x00}, 6, 0xAB), (Bytes{7, 8, 0, 0xAB, 0xAB, 0xAB}));
    // Large enough for the 16-byte paths: every truncation point of a long
    // stream leaves the bytes past the decoded ones untouched.
    std::mt19937 rng(7);
    Bytes img(20000);
    for (auto& b : img) b = (rng() % 100 < 80) ? 0 : static_cast<BYTE>(rng());
    const Bytes s = Enc(img, 8);
    for (size_t cut = 0; cut < s.size(); cut += 1 + cut / 50) {
        const Bytes part(s.begin(), s.begin() + static_cast<long>(cut));
        Bytes want(img.size(), 0xAB);
        rleref::Decode(want.data(), part.data(), part.size(), img.size());
        ASSERT_EQ(Dec(part, img.size(), 0xAB), want) << "cut at " << cut;
    }
}

namespace {

// Images with the kinds of structure that matter to the code: speckle of
// varied density, long empty stretches, full runs followed by 255, runs of
// every length up to 600, literal bytes 0, 1 and 2.
Bytes RandomImage(std::mt19937& rng, size_t n)
{
    Bytes img(n);
    const unsigned int density = rng() % 101;  // percent of samples below 8
    size_t i = 0;
    while (i < n) {
        switch (rng() % 8) {
        case 0: {  // a run of exactly k*255 zeros, then 255
            const size_t k = 255 * (1 + rng() % 3);
            for (size_t j = 0; j < k && i < n; ++j) img[i++] = static_cast<BYTE>(rng() % 8);
            if (i < n) img[i++] = 255;
            break;
        }
        case 1: {  // a run of any length
            const size_t k = rng() % 600;
            for (size_t j = 0; j < k && i < n; ++j) img[i++] = 0;
            break;
        }
        default: {  // speckle
            const size_t k = 1 + rng() % 64;
            for (size_t j = 0; j < k && i < n; ++j)
                img[i++] = (rng() % 100 < density) ? static_cast<BYTE>(rng() % 8) : static_cast<BYTE>(rng());
        }
        }
    }
    return img;
}

BYTE Expected(BYTE v, BYTE level) { return (v < level || v == 1) ? 0 : v; }

}  // namespace

TEST(ImgRle, MatchesReferenceOnRandomImages)
{
    std::mt19937 rng(20240611);
    for (int iter = 0; iter < 4000; ++iter) {
        size_t n;
        switch (iter % 4) {
        case 0: n = rng() % 40; break;
        case 1: n = rng() % 600; break;
        case 2: n = 1000 + rng() % 5000; break;
        default: n = rng() % 30000; break;
        }
        const BYTE level = static_cast<BYTE>(iter % 10 == 0 ? rng() % 256 : 1 + rng() % 16);
        const Bytes img = RandomImage(rng, n);

        const Bytes want = rleref::Encode(img, level);
        const Bytes got = Enc(img, level);
        ASSERT_EQ(got, want) << "iteration " << iter << " n " << n << " level " << int(level);

        Bytes refOut(n), fastOut(n);
        for (size_t i = 0; i < n; ++i) refOut[i] = fastOut[i] = static_cast<BYTE>(rng());
        rleref::Decode(refOut.data(), want.data(), want.size(), n);
        CImgRle::Decode(fastOut.data(), got.data(), static_cast<unsigned int>(got.size()), static_cast<unsigned int>(n));
        ASSERT_EQ(fastOut, refOut) << "iteration " << iter;

        // Round trip within the level whenever the end mark had room,
        // which is always unless the image hardly compresses.
        if (level >= 1 && (n == 1 || (n >= 2 && rleref::CodeBytes(img.data(), n, level) + 2 <= n))) {
            for (size_t i = 0; i < n; ++i)
                ASSERT_EQ(fastOut[i], Expected(img[i], level)) << "iteration " << iter << " sample " << i;
        }
    }
}

TEST(ImgRle, DecoderMatchesReferenceOnArbitraryStreams)
{
    std::mt19937 rng(99);
    for (int iter = 0; iter < 3000; ++iter) {
        const size_t nSize = rng() % 3000;
        Bytes s(nSize);
        const unsigned int zeros = rng() % 60;
        for (auto& b : s) b = (rng() % 100 < zeros) ? 0 : static_cast<BYTE>(rng() % (rng() % 2 ? 4 : 256));
        const size_t n = rng() % 8000;
        Bytes a(n), b(n);
        for (size_t i = 0; i < n; ++i) a[i] = b[i] = static_cast<BYTE>(rng());
        rleref::Decode(a.data(), s.data(), s.size(), n);
        CImgRle::Decode(b.data(), s.data(), static_cast<unsigned int>(s.size()), static_cast<unsigned int>(n));
        ASSERT_EQ(b, a) << "iteration " << iter;
    }
}
