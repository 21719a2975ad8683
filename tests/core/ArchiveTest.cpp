#include <zandata/ZanData.h>

#include "tests/common/ZanTest.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <vector>

namespace {

using zantest::CauseOf;
using zantest::Store;
using Loader = zantest::CLoader;

} // namespace

TEST(Archive, PrimitivesAreLittleEndianAndUnpadded)
{
    const auto b = Store([](CArchive& ar) {
        ar << static_cast<BYTE>(0xAB) << static_cast<char>(-2) << true << static_cast<unsigned short>(0x1234)
           << static_cast<short>(-2) << 0x89ABCDEFu << -3 << static_cast<unsigned long>(0x01020304ul)
           << static_cast<long>(-1) << 1.0f << 1.0;
    });
    const std::vector<BYTE> want = {0xAB, 0xFE, 0x01, 0x34, 0x12, 0xFE, 0xFF, 0xEF, 0xCD, 0xAB, 0x89,
                                    0xFD, 0xFF, 0xFF, 0xFF, 0x04, 0x03, 0x02, 0x01, 0xFF, 0xFF, 0xFF,
                                    0xFF, 0x00, 0x00, 0x80, 0x3F, 0, 0, 0, 0, 0, 0, 0xF0, 0x3F};
    EXPECT_EQ(b, want);

    Loader l(b);
    BYTE u8; char i8; bool bo; unsigned short u16; short i16; unsigned int u32; int i32; unsigned long ul; long sl;
    float f32; double f64;
    l.ar >> u8 >> i8 >> bo >> u16 >> i16 >> u32 >> i32 >> ul >> sl >> f32 >> f64;
    EXPECT_EQ(u8, 0xAB); EXPECT_EQ(i8, -2); EXPECT_TRUE(bo); EXPECT_EQ(u16, 0x1234); EXPECT_EQ(i16, -2);
    EXPECT_EQ(u32, 0x89ABCDEFu); EXPECT_EQ(i32, -3); EXPECT_EQ(ul, 0x01020304ul); EXPECT_EQ(sl, -1);
    EXPECT_EQ(f32, 1.0f); EXPECT_EQ(f64, 1.0);
}

TEST(Archive, AnyNonZeroByteReadsAsTrue)
{
    Loader l({0x00, 0x02});
    bool a = true, b = false;
    l.ar >> a >> b;
    EXPECT_FALSE(a);
    EXPECT_TRUE(b);
}

TEST(Archive, StringLengthForms)
{
    auto stored = [](int n) { return Store([n](CArchive& ar) { ar << CString(u'x', n); }); };
    EXPECT_EQ(stored(0), (std::vector<BYTE>{0xFF, 0xFE, 0xFF, 0x00}));
    auto b254 = stored(254);
    ASSERT_EQ(b254.size(), 4u + 508u);
    EXPECT_EQ(b254[3], 254);
    auto b255 = stored(255);
    ASSERT_EQ(b255.size(), 6u + 510u);
    EXPECT_EQ(std::vector<BYTE>(b255.begin(), b255.begin() + 6), (std::vector<BYTE>{0xFF, 0xFE, 0xFF, 0xFF, 0xFF, 0x00}));
    auto b65534 = stored(65534);
    ASSERT_EQ(b65534.size(), 10u + 2u * 65534u);
    EXPECT_EQ(std::vector<BYTE>(b65534.begin(), b65534.begin() + 10),
              (std::vector<BYTE>{0xFF, 0xFE, 0xFF, 0xFF, 0xFF, 0xFF, 0xFE, 0xFF, 0x00, 0x00}));
    for (int n : {0, 1, 254, 255, 65533, 65534, 70000}) {
        Loader l(stored(n));
        CString s;
        l.ar >> s;
        EXPECT_EQ(s, CString(u'x', n)) << n;
        EXPECT_EQ(l.ar.GetRemaining(), 0u);
    }
}

TEST(Archive, CharactersAreUtf16LittleEndian)
{
    const auto b = Store([](CArchive& ar) { ar << CString(u"A\u00B0\u20AC"); });
    EXPECT_EQ(b, (std::vector<BYTE>{0xFF, 0xFE, 0xFF, 3, 'A', 0, 0xB0, 0, 0xAC, 0x20}));
}

TEST(Archive, NarrowStringReadsLikeItsWideForm)
{
    Loader narrow({3, 'a', 0xB0, 'c'});
    Loader narrowLong({0xFF, 0x03, 0x00, 'a', 'b', 'c'});
    Loader wide({0xFF, 0xFE, 0xFF, 3, 'a', 0, 0xB0, 0, 'c', 0});
    CString a, b, c;
    narrow.ar >> a;
    narrowLong.ar >> b;
    wide.ar >> c;
    EXPECT_EQ(a, c);
    EXPECT_EQ(b, CString(u"abc"));
    EXPECT_EQ(a[1], u'\u00B0');
}

TEST(Archive, EndOfFileRaisesCause3)
{
    EXPECT_EQ(CauseOf([] { Loader l({1, 2, 3}); int v; l.ar >> v; }), CArchiveException::endOfFile);
    EXPECT_EQ(CauseOf([] { Loader l({}); BYTE v; l.ar >> v; }), CArchiveException::endOfFile);
    EXPECT_EQ(CauseOf([] { Loader l({1, 2, 3, 4, 5, 6, 7}); double v; l.ar >> v; }), CArchiveException::endOfFile);
    // Fewer characters than announced, and a length cut inside its own bytes.
    EXPECT_EQ(CauseOf([] { Loader l({0xFF, 0xFE, 0xFF, 3, 'a', 0}); CString s; l.ar >> s; }), CArchiveException::endOfFile);
    EXPECT_EQ(CauseOf([] { Loader l({0xFF, 0xFE}); CString s; l.ar >> s; }), CArchiveException::endOfFile);
    // A hostile 64-bit length fails before any allocation.
    EXPECT_EQ(CauseOf([] {
                  Loader l({0xFF, 0xFE, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0x7F});
                  CString s;
                  l.ar >> s;
              }),
              CArchiveException::endOfFile);
}

TEST(Archive, WrongDirectionRaisesCause2And4)
{
    EXPECT_EQ(CauseOf([] { Loader l({1}); l.ar << 1; }), CArchiveException::readOnly);
    EXPECT_EQ(CauseOf([] { Loader l({1}); l.ar << CString(u"x"); }), CArchiveException::readOnly);
    EXPECT_EQ(CauseOf([] { CMemFile f; CArchive ar(&f, CArchive::store); int v; ar >> v; }), CArchiveException::writeOnly);
    EXPECT_EQ(CauseOf([] { CMemFile f; CArchive ar(&f, CArchive::store); CString s; ar >> s; }), CArchiveException::writeOnly);
}

TEST(Archive, ReadReturnsShortCountWithoutRaising)
{
    Loader l({1, 2, 3});
    BYTE buf[8] = {};
    EXPECT_EQ(l.ar.Read(buf, 8), 3u);
    EXPECT_EQ(l.ar.Read(buf, 8), 0u);
}

TEST(Archive, ZeroWriteWithNullPointerChangesNothing)
{
    const auto b = Store([](CArchive& ar) { ar << 7; ar.Write(nullptr, 0); ar << static_cast<BYTE>(1); });
    EXPECT_EQ(b, (std::vector<BYTE>{7, 0, 0, 0, 1}));
}

TEST(Archive, LargeBlocksAndBufferBoundariesRoundTrip)
{
    std::vector<BYTE> big(1 << 20);
    for (size_t i = 0; i < big.size(); ++i) big[i] = static_cast<BYTE>(i * 31 + (i >> 9));
    const auto b = Store([&](CArchive& ar) {
        for (int i = 0; i < 5000; ++i) ar << i;  // crosses the buffer many times
        ar.Write(big.data(), static_cast<UINT>(big.size()));
        ar << 1.25;
    });
    ASSERT_EQ(b.size(), 5000u * 4 + big.size() + 8);
    Loader l(b);
    for (int i = 0; i < 5000; ++i) {
        int v;
        l.ar >> v;
        ASSERT_EQ(v, i);
    }
    l.ar.CheckAvailable(big.size() + 8);
    EXPECT_THROW(l.ar.CheckAvailable(big.size() + 9), CArchiveException);
    std::vector<BYTE> back(big.size());
    EXPECT_EQ(l.ar.Read(back.data(), static_cast<UINT>(back.size())), back.size());
    EXPECT_EQ(back, big);
    double d;
    l.ar >> d;
    EXPECT_EQ(d, 1.25);
}

TEST(Archive, FileBackedRoundTripAndFileName)
{
    const CString path = CString::FromUtf8(::testing::TempDir() + "archive_test.bin");
    {
        CFile f(path, CFile::modeCreate | CFile::modeWrite);
        CArchive ar(&f, CArchive::store);
        ar << CString(u"survey") << 3.5;
    }  // the destructor flushes
    CFile f(path, CFile::modeRead);
    EXPECT_EQ(f.GetLength(), 4u + 12u + 8u);
    CArchive ar(&f, CArchive::load);
    CString s;
    double d;
    ar >> s >> d;
    EXPECT_EQ(s, CString(u"survey"));
    EXPECT_EQ(d, 3.5);
    try {
        ar >> d;
        FAIL();
    } catch (const CArchiveException& e) {
        EXPECT_EQ(e.m_cause, 3);
        EXPECT_EQ(e.m_strFileName, path);
    }
}

TEST(Archive, CV3IsThreeDoubles)
{
    CV3 v(1.0, -2.0, 0.5);
    const auto b = Store([&](CArchive& ar) { v.Serialize(ar); });
    ASSERT_EQ(b.size(), 24u);
    Loader l(b);
    CV3 w;
    w.Serialize(l.ar);
    EXPECT_EQ(w, v);
}
