// Stored forms of every sensor record: golden bytes, round trips into fresh
// and reused records, and damaged records.
#include "SnsrTestUtil.h"

#include <gtest/gtest.h>

#include <memory>

using namespace snsrtest;

namespace {

// Common head with empty m_raw, aux 0 and time 0.0: type, bank, FF FE FF 00,
// 00 00, eight zero bytes.
Bytes Head0(BYTE type, BYTE bank = 0)
{
    return {type, bank, 0xFF, 0xFE, 0xFF, 0x00, 0x00, 0x00, 0, 0, 0, 0, 0, 0, 0, 0};
}

// Stores rec, compares with want, loads the bytes into a fresh record of
// the same class through the factory and stores that again.
void ExpectGolden(CSnsrInf& rec, const Bytes& want)
{
    EXPECT_EQ(Store(rec), want);
    std::unique_ptr<CSnsrInf> fresh(CSnsrInf::Create(rec.m_type));
    ASSERT_NE(fresh, nullptr);
    EXPECT_EQ(Load(want, *fresh), 0u);
    EXPECT_EQ(Store(*fresh), want);
}

} // namespace

TEST(SnsrFormat, PlainRecordIsSixteenBytesWithTheTimeLast)
{
    CSnsrInf rec;
    rec.m_type = 16;
    rec.m_bank = 2;
    rec.m_aux = 0x1234;
    rec.m_time = 1.0;
    const Bytes want = {0x10, 0x02,                                     // type, bank
                        0xFF, 0xFE, 0xFF, 0x00,                         // empty wide string
                        0x34, 0x12,                                     // aux
                        0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0xF0, 0x3F}; // time 1.0
    EXPECT_EQ(Store(rec), want);
    CSnsrInf back;
    EXPECT_EQ(Load(want, back), 0u);
    EXPECT_EQ(back.m_type, 16);
    EXPECT_EQ(back.m_bank, 2);
    EXPECT_EQ(back.m_aux, 0x1234);
    EXPECT_EQ(back.m_time, 1.0);
    EXPECT_TRUE(back.m_raw.IsEmpty());

    CSnsrSet set;
    set.m_raw = u"$SET";
    set.m_time = 0.25;
    ExpectGolden(set, Bytes{0x0B, 0x00, 0xFF, 0xFE, 0xFF, 0x04, 0x24, 0x00, 0x53, 0x00, 0x45, 0x00, 0x54, 0x00,
                            0x00, 0x00, 0, 0, 0, 0, 0, 0, 0xD0, 0x3F});
}

TEST(SnsrFormat, MotionStoresItsLastTwoValuesSwapped)
{
    CSnsrMru m;
    m.m_time = 2.0;
    m.m_pitch = 1.0f;
    m.m_roll = -1.0f;
    m.m_heave = 0.5f;
    m.m_mruA = 2.0f;
    m.m_mruB = 4.0f;
    const Bytes want = Bytes{0x03, 0x00, 0xFF, 0xFE, 0xFF, 0x00, 0x00, 0x00, 0, 0, 0, 0, 0, 0, 0x00, 0x40} +
                       Bytes{0x00, 0x00, 0x80, 0x3F,   // pitch 1
                             0x00, 0x00, 0x80, 0xBF,   // roll -1
                             0x00, 0x00, 0x00, 0x3F,   // heave 0.5
                             0x00, 0x00, 0x80, 0x40,   // mruB 4
                             0x00, 0x00, 0x00, 0x40};  // mruA 2
    EXPECT_EQ(Store(m), want);
    CSnsrMru back;
    EXPECT_EQ(Load(want, back), 0u);
    EXPECT_EQ(back.m_mruA, 2.0f);
    EXPECT_EQ(back.m_mruB, 4.0f);
    EXPECT_EQ(back.m_heave, 0.5f);
}

TEST(SnsrFormat, ClientArrayWithTwoItems)
{
    CSnsrClt c;
    c.m_bank = 1;
    c.m_raw = u"A";
    c.m_items.Append(new CStrDbl{u"x", 1.0});
    c.m_items.Append(new CStrDbl{u"yz", -2.0});
    const Bytes want = Bytes{0x09, 0x01, 0xFF, 0xFE, 0xFF, 0x01, 0x41, 0x00, 0x00, 0x00, 0, 0, 0, 0, 0, 0, 0, 0} +
                       Bytes{0x02, 0x00, 0x00, 0x00} +                                            // count
                       Bytes{0xFF, 0xFE, 0xFF, 0x01, 0x78, 0x00, 0, 0, 0, 0, 0, 0, 0xF0, 0x3F} +  // "x" 1.0
                       Bytes{0xFF, 0xFE, 0xFF, 0x02, 0x79, 0x00, 0x7A, 0x00, 0, 0, 0, 0, 0, 0, 0, 0xC0};  // "yz" -2
    ExpectGolden(c, want);

    CSnsrClt empty;
    EXPECT_EQ(Store(empty), Head0(9) + Bytes(4, 0));
}

TEST(SnsrFormat, ClientArrayIsReadInPlace)
{
    CSnsrClt src;
    src.m_items.Append(new CStrDbl{u"a", 1.0});
    src.m_items.Append(new CStrDbl{u"b", 2.0});
    const Bytes two = Store(src);

    // A reused record with three items shrinks to two, keeping the first
    // elements' objects.
    CSnsrClt dst;
    for (int i = 0; i < 3; ++i) dst.m_items.Append(new CStrDbl{u"old", 9.0});
    CStrDbl* const first = dst.m_items.m_ppItems[0];
    EXPECT_EQ(Load(two, dst), 0u);
    ASSERT_EQ(dst.m_items.m_nSize, 2u);
    EXPECT_EQ(dst.m_items.m_ppItems[0], first);
    EXPECT_EQ(dst.m_items.m_ppItems[0]->m_str, CString(u"a"));
    EXPECT_EQ(dst.m_items.m_ppItems[1]->m_d, 2.0);

    // And grows again from a longer record.
    src.m_items.Append(new CStrDbl{u"c", 3.0});
    EXPECT_EQ(Load(Store(src), dst), 0u);
    ASSERT_EQ(dst.m_items.m_nSize, 3u);
    EXPECT_EQ(dst.m_items.m_ppItems[0], first);
    EXPECT_EQ(dst.m_items.m_ppItems[2]->m_str, CString(u"c"));
}

TEST(SnsrFormat, PressureWithUnits)
{
    CSnsrPressure p;
    p.m_pressure = 10.0f;
    p.m_pressUnit = u"bar";
    p.m_tempVal = 20.0f;
    p.m_tempUnit = u"\u00B0C";
    const Bytes want = Head0(0x12) + Bytes{0x00, 0x00, 0x20, 0x41} +                            // 10.0
                       Bytes{0xFF, 0xFE, 0xFF, 0x03, 0x62, 0x00, 0x61, 0x00, 0x72, 0x00} +        // "bar"
                       Bytes{0x00, 0x00, 0xA0, 0x41} +                                            // 20.0
                       Bytes{0xFF, 0xFE, 0xFF, 0x02, 0xB0, 0x00, 0x43, 0x00};                     // "°C"
    ExpectGolden(p, want);
    CSnsrPressure back;
    Load(want, back);
    EXPECT_EQ(back.m_tempUnit, CString(u"\u00B0C"));
    EXPECT_EQ(back.m_pressUnit, CString(u"bar"));
}

TEST(SnsrFormat, EveryValueClass)
{
    CSnsrPos pos;
    pos.m_bank = 1;
    pos.m_aux = 7;
    pos.m_time = 100.5;
    pos.m_geo = CV3(-3.5, 51.25, -12.0);
    pos.m_local = CV3(10.0, -20.0, 0.5);
    pos.m_posA = 1.0f;
    pos.m_posB = 2.0f;
    pos.m_posC = 0.5f;
    pos.m_posWord = 0xBEEF;
    ExpectGolden(pos, Bytes{0x01, 0x01, 0xFF, 0xFE, 0xFF, 0x00, 0x07, 0x00, 0, 0, 0, 0, 0, 0x20, 0x59, 0x40} +
                          Bytes{0, 0, 0, 0, 0, 0, 0x0C, 0xC0, 0, 0, 0, 0, 0, 0xA0, 0x49, 0x40, 0, 0, 0, 0, 0, 0, 0x28, 0xC0} +
                          Bytes{0, 0, 0, 0, 0, 0, 0x24, 0x40, 0, 0, 0, 0, 0, 0, 0x34, 0xC0, 0, 0, 0, 0, 0, 0, 0xE0, 0x3F} +
                          Bytes{0x00, 0x00, 0x80, 0x3F, 0x00, 0x00, 0x00, 0x40, 0x00, 0x00, 0x00, 0x3F, 0xEF, 0xBE});

    CSnsrGyro g;
    g.m_time = 1.0;
    g.m_heading = 123.5f;
    g.m_gyroAux = -1.0f;
    ExpectGolden(g, Bytes{0x02, 0x00, 0xFF, 0xFE, 0xFF, 0x00, 0x00, 0x00, 0, 0, 0, 0, 0, 0, 0xF0, 0x3F} +
                        Bytes{0x00, 0x00, 0xF7, 0x42, 0x00, 0x00, 0x80, 0xBF});

    CSnsrZ z;
    z.m_bank = 3;
    z.m_depth = 12.5f;
    z.m_rawUnits = 1;
    ExpectGolden(z, Head0(4, 3) + Bytes{0x00, 0x00, 0x48, 0x41, 0x00, 0x00, 0x80, 0x3F, 0x01, 0x00});

    CSnsrArt art;
    art.m_axis = 2;
    art.m_angle = 45.0f;
    art.m_angleLo = -90.0f;
    art.m_angleHi = 90.0f;
    ExpectGolden(art, Head0(5) + Bytes{0x02, 0x00, 0x00, 0x00, 0x00, 0x00, 0x34, 0x42, 0x00, 0x00, 0xB4, 0xC2,
                                       0x00, 0x00, 0xB4, 0x42});

    CSnsrSOS sos;
    ExpectGolden(sos, Head0(6) + Bytes{0x00, 0x80, 0xBB, 0x44});  // 1500.0 by default

    CSnsrTime tm;
    tm.m_zda.m_t = 86400.5;
    tm.m_zoneHr = 2;
    tm.m_zoneMin = 30;
    ExpectGolden(tm, Head0(7) + Bytes{0x00, 0x00, 0x00, 0x00, 0x08, 0x18, 0xF5, 0x40, 0x02, 0x1E});

    CSnsrAlt alt;
    alt.m_alt = 7.25f;
    ExpectGolden(alt, Head0(8) + Bytes{0x00, 0x00, 0xE8, 0x40});

    CSnsrVTG vtg;
    vtg.m_courseT = 359.0f;
    vtg.m_courseM = 1.0f;
    vtg.m_speedKts = 5.5f;
    vtg.m_speedKmh = 10.25f;
    ExpectGolden(vtg, Head0(10) + Bytes{0x00, 0x80, 0xB3, 0x43, 0x00, 0x00, 0x80, 0x3F, 0x00, 0x00, 0xB0, 0x40,
                                        0x00, 0x00, 0x24, 0x41});

    CSnsrMarker mk;
    mk.m_mark = -3.0f;
    ExpectGolden(mk, Head0(14) + Bytes{0x00, 0x00, 0x40, 0xC0});

    CSnsrTmp tmp;
    tmp.m_temp = 21.5f;
    ExpectGolden(tmp, Head0(17) + Bytes{0x00, 0x00, 0xAC, 0x41});
}

TEST(SnsrFormat, LoadingTakesTheStoredTypeWhateverTheClass)
{
    CSnsrInf plain;
    plain.m_type = 15;
    CSnsrSet set;  // same layout: a plain head
    EXPECT_EQ(Load(Store(plain), set), 0u);
    EXPECT_EQ(set.m_type, 15);
}

TEST(SnsrFormat, BinaryBlockIsOwnedAndReusedWhenItsSizeHolds)
{
    std::unique_ptr<CSensorClientBinaryData> b(static_cast<CSensorClientBinaryData*>(CSnsrInf::Create(19)));
    ASSERT_NE(b, nullptr);
    EXPECT_EQ(Store(*b), Head0(0x13) + Bytes(4, 0));  // empty block: the size alone

    const Bytes three = Head0(0x13) + Bytes{0x03, 0x00, 0x00, 0x00, 0x01, 0x02, 0x03};
    EXPECT_EQ(Load(three, *b), 0u);
    ASSERT_EQ(b->m_size, 3u);
    EXPECT_EQ(b->m_data[2], 3);
    EXPECT_EQ(Store(*b), three);

    // Same size: the block stays where it is and takes the new bytes.
    BYTE* const block = b->m_data;
    EXPECT_EQ(Load(Head0(0x13) + Bytes{0x03, 0x00, 0x00, 0x00, 0x07, 0x08, 0x09}, *b), 0u);
    EXPECT_EQ(b->m_data, block);
    EXPECT_EQ(b->m_data[0], 7);

    // A new size makes a new block; 0 leaves none.
    EXPECT_EQ(Load(Head0(0x13) + Bytes{0x05, 0x00, 0x00, 0x00, 1, 2, 3, 4, 5}, *b), 0u);
    EXPECT_EQ(b->m_size, 5u);
    EXPECT_EQ(b->m_data[4], 5);
    EXPECT_EQ(Load(Head0(0x13) + Bytes(4, 0), *b), 0u);
    EXPECT_EQ(b->m_size, 0u);
    EXPECT_EQ(b->m_data, nullptr);
}

TEST(SnsrFormat, DamagedRecordsRaiseEndOfFileBeforeAllocating)
{
    // A binary block announcing 2 GB in a 20-byte record.
    std::unique_ptr<CSensorClientBinaryData> b(static_cast<CSensorClientBinaryData*>(CSnsrInf::Create(19)));
    const Bytes three = Head0(0x13) + Bytes{0x03, 0x00, 0x00, 0x00, 0x01, 0x02, 0x03};
    Load(three, *b);
    BYTE* const block = b->m_data;
    EXPECT_EQ(CauseOf([&] { Load(Head0(0x13) + Bytes{0x00, 0x00, 0x00, 0x80, 1, 2, 3, 4}, *b); }), 3);
    EXPECT_EQ(b->m_size, 3u);  // the old block is still whole and consistent
    EXPECT_EQ(b->m_data, block);
    // One byte short of the announced block.
    EXPECT_EQ(CauseOf([&] { Load(Head0(0x13) + Bytes{0x04, 0x00, 0x00, 0x00, 1, 2, 3}, *b); }), 3);

    // A client array announcing four billion items.
    CSnsrClt c;
    EXPECT_EQ(CauseOf([&] { Load(Head0(9) + Bytes{0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFE, 0xFF, 0x00}, c); }), 3);
    EXPECT_EQ(c.m_items.m_nSize, 0u);

    // Truncated inside a value, and inside the head.
    CSnsrMru m;
    Bytes cut = Store(m);
    cut.pop_back();
    EXPECT_EQ(CauseOf([&] { Load(cut, m); }), 3);
    EXPECT_EQ(CauseOf([&] { Load(Bytes{0x03, 0x00, 0xFF}, m); }), 3);
}

TEST(SnsrFormat, RoundTripIntoReusedRecords)
{
    CSnsrPressure a;
    a.m_pressure = 1013.25f;
    a.m_pressUnit = u"mbar";
    CSnsrPressure reused;
    reused.m_raw = u"left over";
    reused.m_tempUnit = u"K";
    reused.m_tempVal = 300.0f;
    EXPECT_EQ(Load(Store(a), reused), 0u);
    EXPECT_TRUE(reused.m_raw.IsEmpty());
    EXPECT_TRUE(reused.m_tempUnit.IsEmpty());
    EXPECT_EQ(reused.m_tempVal, 0.0f);
    EXPECT_EQ(Store(reused), Store(a));

    // Records follow one another in one archive with nothing between them.
    CSnsrGyro g;
    g.m_heading = 90.0f;
    CSnsrAlt alt;
    alt.m_alt = 3.0f;
    CMemFile f;
    {
        CArchive ar(&f, CArchive::store);
        g.Serialize(ar);
        alt.Serialize(ar);
        ar.Close();
    }
    EXPECT_EQ(f.GetLength(), Store(g).size() + Store(alt).size());
}
