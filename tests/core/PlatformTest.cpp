#include <zandata/ZanData.h>

#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <limits>
#include <vector>

TEST(CString, FormatFollowsPrintfAndTakesCStringForS)
{
    CString name(u"IMG");
    CString s;
    s.Format(u"Not drawing image IMG:%s Brgs:%d Height:%d", name, 12, -3);
    EXPECT_EQ(s, CString(u"Not drawing image IMG:IMG Brgs:12 Height:-3"));
    EXPECT_EQ(CString::Fmt(u"Filter Time %1.3lfms", 2.0), CString(u"Filter Time 2.000ms"));
    EXPECT_EQ(CString::Fmt(u"Compression Ratio %02.0lf%% (%1.1lf of %1.1lfkB)", 5.0, 1.25, 25.0),
              CString(u"Compression Ratio 05% (1.2 of 25.0kB)"));
    EXPECT_EQ(CString::Fmt(u"MinI:%u MaxI:%u", 3u, 250u), CString(u"MinI:3 MaxI:250"));
    EXPECT_EQ(CString::Fmt(u"[%-5s|%5s|%.2s]", "ab", u"cd", CString(u"xyz")), CString(u"[ab   |   cd|xy]"));
    EXPECT_EQ(CString::Fmt(u"%x %X %08.3f %e", 255, 255u, -1.5, 1e10), CString(u"ff FF -001.500 1.000000e+10"));
    EXPECT_EQ(CString::Fmt(u"%*d|%-*d|", 4, 7, 3, 1), CString(u"   7|1  |"));
    EXPECT_EQ(CString::Fmt(u"%I64d %lld %hd", 5000000000LL, -5000000000LL, 70000), CString(u"5000000000 -5000000000 4464"));
    // Mismatched kinds are converted, not undefined.
    EXPECT_EQ(CString::Fmt(u"%d %lf %s", 2.9, 3, 4), CString(u"2 3.000000 4"));
    // Missing arguments format as zero or empty.
    EXPECT_EQ(CString::Fmt(u"%d|%s|", 1), CString(u"1||"));
    EXPECT_EQ(CString::Fmt(u"%c%C", u'\u00B0', 'x'), CString(u"\u00B0x"));
}

TEST(CString, NarrowTextIsWidenedByteByByte)
{
    const char latin[] = {'a', static_cast<char>(0xB0), 0};
    CString s(latin);
    ASSERT_EQ(s.GetLength(), 2);
    EXPECT_EQ(s[1], u'\u00B0');
    EXPECT_EQ(CString::FromUtf8("x\xC2\xB0\xF0\x9F\x98\x80").GetLength(), 4);  // surrogate pair
    EXPECT_EQ(CString::FromUtf8("\xC2\xB0\xF0\x9F\x98\x80").Utf8(), "\xC2\xB0\xF0\x9F\x98\x80");
}

TEST(CString, TrimCompareAndPieces)
{
    CString s(u"  \t name \r\n");
    s.TrimLeft();
    EXPECT_EQ(s, CString(u"name \r\n"));
    s.TrimRight();
    EXPECT_EQ(s, CString(u"name"));
    EXPECT_LT(CString(u"a").Compare(u"b"), 0);
    EXPECT_EQ(CString(u"a").Compare(u"a"), 0);
    EXPECT_GT(CString(u"b").Compare(u"a"), 0);
    EXPECT_EQ(CString(u"ABC").CompareNoCase(u"abc"), 0);
    EXPECT_EQ(CString(u"abcdef").Mid(2, 3), CString(u"cde"));
    EXPECT_EQ(CString(u"abcdef").Left(10), CString(u"abcdef"));
    EXPECT_EQ(CString(u"a,b,c").Find(u','), 1);
    EXPECT_EQ(CString(u"a,b,c").ReverseFind(u','), 3);
    CString t(u"x");
    t += u"y";
    t += CString(u"z");
    EXPECT_EQ(t.GetLength(), 3);
    t.Empty();
    EXPECT_TRUE(t.IsEmpty());
}

TEST(ZUtil, HeapCallsShareTheCHeap)
{
    ZUtil::FreeIt(nullptr);
    void* p = ZUtil::Realloc(nullptr, 16);
    ASSERT_NE(p, nullptr);
    static_cast<BYTE*>(p)[15] = 7;
    p = ZUtil::Realloc(p, 4096);
    EXPECT_EQ(static_cast<BYTE*>(p)[15], 7);
    std::free(p);  // interchangeable with the C heap
    ZUtil::FreeIt(std::malloc(8));
}

TEST(CV3, ArithmeticAndFinite)
{
    CV3 a(3, 4, 0);
    EXPECT_EQ(a.Length(), 5.0);
    EXPECT_EQ(a.Normalise(), 5.0);
    EXPECT_DOUBLE_EQ(a.x, 0.6);
    EXPECT_EQ((CV3(1, 2, 3) + CV3(1, 1, 1)) * 2.0, CV3(4, 6, 8));
    EXPECT_TRUE(CV3(1, 2, 3).Finite());
    EXPECT_FALSE(CV3(1, std::numeric_limits<double>::quiet_NaN(), 3).Finite());
    EXPECT_FALSE(CV3(1, 2, std::numeric_limits<double>::infinity()).Finite());
    CV3 zero;
    zero.Normalise();
    EXPECT_EQ(zero, CV3());
}

TEST(CMat, AxesAndInverse)
{
    const double pi_2 = ML::pi_2;
    // Heading east: forward goes to +x, starboard to -y.
    CMat m(CV3(100, 200, 5), pi_2, 0, 0);
    CV3 fwd = m.LocalToGlobal(CV3(0, 1, 0));
    EXPECT_NEAR(fwd.x, 101, 1e-12);
    EXPECT_NEAR(fwd.y, 200, 1e-12);
    CV3 stbd = m.LocalToGlobal(CV3(1, 0, 0));
    EXPECT_NEAR(stbd.y, 199, 1e-12);
    // Bow up raises a point ahead; starboard down lowers a point to starboard.
    EXPECT_LT(CMat(CV3(), 0, 0.1, 0).LocalToGlobal(CV3(0, 1, 0)).z, 0.0);
    EXPECT_GT(CMat(CV3(), 0, 0, 0.1).LocalToGlobal(CV3(1, 0, 0)).z, 0.0);
    CMat g(CV3(1, 2, 3), 0.3, -0.2, 0.1);
    const CV3 p(5, -6, 7);
    const CV3 back = g.GlobalToLocal(g.LocalToGlobal(p));
    EXPECT_NEAR(back.x, p.x, 1e-12);
    EXPECT_NEAR(back.y, p.y, 1e-12);
    EXPECT_NEAR(back.z, p.z, 1e-12);
    EXPECT_EQ(g.X(), 1.0);
    EXPECT_EQ(g.Heading(), 0.3);
}

TEST(TgtCalc, EchoPosition)
{
    CMat sonar(CV3(10, 20, 0), 0, 0, 0), tilt;
    CV3 p;
    // Bearing 0, no depression: straight ahead.
    TgtCalc::RT(&sonar, 50.0, ML::pi_2 - 0.0, &tilt, ML::pi_2 - 0.0, p);
    EXPECT_NEAR(p.x, 10, 1e-9);
    EXPECT_NEAR(p.y, 70, 1e-9);
    EXPECT_NEAR(p.z, 0, 1e-9);
    // Positive bearing to starboard, 30 degrees down.
    TgtCalc::RT(&sonar, 10.0, ML::pi_2 - ML::pi_2, &tilt, ML::pi_2 - 30 * ML::d2r, p);
    EXPECT_NEAR(p.x, 10 + 10 * std::cos(30 * ML::d2r), 1e-9);
    EXPECT_NEAR(p.z, 5.0, 1e-9);
}

TEST(Zan, SinkReceivesReportsAndNearestMkrIsRound)
{
    std::vector<std::pair<unsigned long, CString>> got;
    auto old = Zan::SetSink([&](Zan::Kind, unsigned long id, int, const CString& t) { got.emplace_back(id, t); });
    Zan::Status(2360, 1, u"Filter Time %1.3lfms", 1.5);
    Zan::Console(0, u"Geo: Unable to open %s", CString(u"x.csv"));
    Zan::SetSink(old);
    ASSERT_EQ(got.size(), 2u);
    EXPECT_EQ(got[0].first, 2360u);
    EXPECT_EQ(got[0].second, CString(u"Filter Time 1.500ms"));
    EXPECT_EQ(got[1].second, CString(u"Geo: Unable to open x.csv"));
    EXPECT_EQ(Zan::NearestMkr(12.0 / 3), 5.0);
    EXPECT_EQ(Zan::NearestMkr(1.2), 1.0);
    EXPECT_EQ(Zan::NearestMkr(0.3), 0.2);
    EXPECT_EQ(Zan::NearestMkr(80), 100.0);
    EXPECT_EQ(Zan::NearestMkr(-1), 1.0);
}

TEST(ZUnits, LengthsAndTemperatures)
{
    EXPECT_EQ(ZUnits::Get(0, 12.345, u"%1.2lf", 1), CString(u"12.35m"));
    EXPECT_EQ(ZUnits::Get(1, 20.0, u"%3.2lf", 1), CString(u"20.00\u00B0C"));
    EXPECT_EQ(ZUnits::Get(0, 1.0, u"%1.1lf", 0), CString(u"1.0"));
}

TEST(CTm80, CalendarAndUtcText)
{
    CTm80 t;
    t.SetTime(2024, 2, 29, 13, 5, 9, 0.0);
    EXPECT_EQ(t.m_t, 1709211909.0);
    EXPECT_EQ(t.FormatGmt(u"%Y/%m/%d %H:%M:%S"), CString(u"2024/02/29 13:05:09"));
}

TEST(CStatBuf, KeepsTheLastValues)
{
    CStatBuf s;
    s.SetSize(3);
    EXPECT_EQ(s.GetAvg(), 0.0);
    for (double v : {1.0, 2.0, 3.0, 10.0}) s.SetValue(v);
    EXPECT_DOUBLE_EQ(s.GetAvg(), 5.0);  // 2, 3, 10
    s.SetSize(2);
    EXPECT_DOUBLE_EQ(s.GetAvg(), 6.5);  // 3, 10
    s.SetValue(1.0);
    EXPECT_DOUBLE_EQ(s.GetAvg(), 5.5);  // 10, 1
}

TEST(CStdioFile, LinesAndLongLineTails)
{
    const CString path = CString::FromUtf8(::testing::TempDir() + "stdio_test.txt");
    {
        CStdioFile f(path, CFile::modeCreate | CFile::modeWrite);
        f.WriteString(u"first\r\nsecond \u00B0\nabcdefghij\nlast");
    }
    CStdioFile f(path, CFile::modeRead);
    CString line;
    ASSERT_TRUE(f.ReadString(line));
    EXPECT_EQ(line, CString(u"first"));
    ASSERT_TRUE(f.ReadString(line));
    EXPECT_EQ(line, CString(u"second \u00B0"));
    char16_t buf[5];
    ASSERT_NE(f.ReadString(buf, 5), nullptr);
    EXPECT_EQ(CString(buf), CString(u"abcd"));
    ASSERT_NE(f.ReadString(buf, 5), nullptr);
    EXPECT_EQ(CString(buf), CString(u"efgh"));
    ASSERT_NE(f.ReadString(buf, 5), nullptr);
    EXPECT_EQ(CString(buf), CString(u"ij\n"));
    ASSERT_TRUE(f.ReadString(line));
    EXPECT_EQ(line, CString(u"last"));
    EXPECT_FALSE(f.ReadString(line));
}

TEST(CFile, GetStatusOfAFileAFolderAndNothing)
{
    const std::string dir = ::testing::TempDir();
    const CString path = CString::FromUtf8(dir + "status_test.bin");
    {
        CFile f(path, CFile::modeCreate | CFile::modeWrite);
        f.Write("12345", 5);
    }
    CFileStatus st;
    ASSERT_TRUE(CFile::GetStatus(path, st));
    EXPECT_EQ(st.m_size, 5u);
    EXPECT_EQ(st.m_attribute, 0);
    EXPECT_EQ(st.m_szFullName, path);
    EXPECT_GT(st.m_mtime, 1.6e9);  // after 2020

    CFileStatus folder;
    ASSERT_TRUE(CFile::GetStatus(CString::FromUtf8(dir), folder));
    EXPECT_EQ(folder.m_attribute, 0x10);

    CFileStatus none;
    none.m_size = 77;
    EXPECT_FALSE(CFile::GetStatus(CString::FromUtf8(dir + "no_such_file"), none));
    EXPECT_EQ(none.m_size, 77u);  // untouched
    EXPECT_FALSE(CFile::GetStatus(nullptr, none));
}
