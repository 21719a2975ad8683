// Faults that fuzzing found, each as a plain test of the fixed behaviour. The
// inputs that found them stay in fuzz/corpus (see CorpusReplayTest).
#include <zandata/ZanData.h>

#include "tools/zanrec/Loaded.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <limits>
#include <memory>
#include <string>
#include <vector>

namespace {

using Bytes = std::vector<BYTE>;

template <class T>
void Le(Bytes& b, T v)
{
    BYTE tmp[sizeof(T)];
    std::memcpy(tmp, &v, sizeof(T));
    b.insert(b.end(), tmp, tmp + sizeof(T));
}

template <class F>
void LoadFrom(Bytes b, F&& read)
{
    CMemFile f(b.data(), static_cast<UINT>(b.size()));
    CArchive ar(&f, CArchive::load);
    read(ar);
}

// An extended ping block of version 0x34 with a 12-byte header: no line
// records, and the decimation given.
Bytes PingExWithDecim(WORD nDecim)
{
    Bytes b;
    Le<UINT>(b, 0);
    Le<UINT>(b, 0x34);
    Le<UINT>(b, 12);
    Le<UINT>(b, 0);  // count
    Le<UINT>(b, 4);  // recBytes
    Le<WORD>(b, 0);  // m_swGainRamp
    Le<WORD>(b, nDecim);
    return b;
}

// The base rate is the 32-bit product of decimation and rate. A damaged rate
// made it overflow a signed int (undefined behaviour); it now wraps as the
// recording's platform computes it.
TEST(FuzzRegression, PingExBaseRateWrapsInsteadOfOverflowing)
{
    CTgtImg img;
    img.Ping()->m_modFreq = 25000;
    LoadFrom(PingExWithDecim(4), [&](CArchive& ar) { img.SerializePingEx(ar); });
    EXPECT_EQ(img.Ping()->m_baseMF, 100000);

    img.Ping()->m_modFreq = std::numeric_limits<int>::max();
    LoadFrom(PingExWithDecim(0xFFFF), [&](CArchive& ar) { img.SerializePingEx(ar); });
    const auto wrapped = static_cast<std::uint32_t>(std::uint64_t{0xFFFF} * 0x7FFFFFFFu);
    EXPECT_EQ(img.Ping()->m_baseMF, static_cast<int>(wrapped));

    img.Ping()->m_modFreq = -25000;
    LoadFrom(PingExWithDecim(3), [&](CArchive& ar) { img.SerializePingEx(ar); });
    EXPECT_EQ(img.Ping()->m_baseMF, -75000);
}

// A time record whose seconds are NaN or far beyond any calendar: its text
// converted the time to time_t unchecked (undefined behaviour). Such a time
// now shows as the epoch.
TEST(FuzzRegression, TimeTextOfADamagedTimeIsTheEpoch)
{
    const CString fmt(u"%d/%m/%Y %H:%M:%S");
    for (double t : {std::nan(""), HUGE_VAL, -HUGE_VAL, 1e300, -1e19})
        EXPECT_EQ(CTm80(t).FormatGmt(fmt).Utf8(), "01/01/1970 00:00:00") << t;
    EXPECT_EQ(CTm80(1419503400.0).FormatGmt(fmt).Utf8(), "25/12/2014 10:30:00");
    EXPECT_EQ(CTm80(-1.5).FormatGmt(fmt).Utf8(), "31/12/1969 23:59:58");

    // The record as the fuzzer found it: a CSnsrTime whose time is a NaN.
    Bytes rec{7, 1};
    Le<BYTE>(rec, 0);  // empty narrow m_raw
    Le<WORD>(rec, 0);
    Le<double>(rec, 0.0);
    Le<double>(rec, std::nan(""));
    Le<BYTE>(rec, 2);
    Le<BYTE>(rec, 30);
    std::unique_ptr<CSnsrInf> p(CSnsrInf::Create(CSnsrInf::tTime));
    LoadFrom(rec, [&](CArchive& ar) { p->Serialize(ar); });
    EXPECT_EQ(p->GetString(0).Utf8(), "1970/01/01 00:00:00......., 2-30");
}

// A position record with a longitude of some 1e22 degrees: its text cast
// the degrees to int unchecked (undefined behaviour). Degrees beyond an int
// now show whole, with zero minutes and seconds.
TEST(FuzzRegression, PositionTextOfDegreesBeyondAnInt)
{
    EXPECT_EQ(CSnsrPos::GetDegString(1e22, u"EW").Utf8(), "10000000000000000000000\u00B000\"00.000'E");
    EXPECT_EQ(CSnsrPos::GetDegString(-HUGE_VAL, u"EW").Utf8(), "inf\u00B000\"00.000'W");
    EXPECT_EQ(CSnsrPos::GetDegString(std::nan(""), u"NS").Utf8(), "nan\u00B000\"00.000'N");
    EXPECT_EQ(CSnsrPos::GetDegString(2147483648.0, u"NS").Utf8(), "2147483648\u00B000\"00.000'N");
    // The largest angles that still split as usual.
    EXPECT_EQ(CSnsrPos::GetDegString(2147483646.5, u"NS").Utf8(), "2147483646\u00B030\"00.000'N");
    EXPECT_EQ(CSnsrPos::GetDegString(-0.5, u"EW").Utf8(), "00\u00B030\"00.000'W");

    CSnsrPos pos;
    pos.m_geo = CV3(1e22, 45.5, 0.0);
    EXPECT_EQ(pos.GetString(0).Utf8(), "45\u00B030\"00.000'N, 10000000000000000000000\u00B000\"00.000'E");
}

// A sensor frame of zanrec whose CRC is right but whose record's own type
// byte was damaged: the record was read into the class of the frame's type
// and then used as the class of its own type (an index past the type names,
// a cast to the wrong class). The tool now refuses such a record by its frame.
TEST(FuzzRegression, RecordingRefusesASensorRecordThatNamesAnotherType)
{
    CSnsrMru mru;
    mru.m_time = 12.5;
    CMemFile mem;
    {
        CArchive ar(&mem, CArchive::store);
        mru.Serialize(ar);
        ar.Close();
    }
    Bytes payload(mem.GetBuffer(), mem.GetBuffer() + mem.GetLength());
    ASSERT_EQ(payload[0], CSnsrInf::tMru);

    std::string why;
    EXPECT_NE(zanrec::LoadSensor(CSnsrInf::tMru, payload, why), nullptr) << why;
    for (BYTE lie : {BYTE{23}, BYTE{255}, BYTE{CSnsrInf::tPos}}) {
        payload[0] = lie;
        why.clear();
        EXPECT_EQ(zanrec::LoadSensor(CSnsrInf::tMru, payload, why), nullptr);
        EXPECT_EQ(why, "sensor record of type 3 holds type " + std::to_string(lie));
    }

    const std::string path = (std::filesystem::temp_directory_path() / "zan-fuzz-lying-type.zrec").string();
    {
        zanrec::RecordingWriter w(path);
        payload[0] = 23;
        w.Write(zanrec::FrameKind::Sensor, CSnsrInf::tMru, payload.data(), payload.size());
        payload[0] = CSnsrInf::tMru;
        w.Write(zanrec::FrameKind::Sensor, CSnsrInf::tMru, payload.data(), payload.size());
        w.Close();
    }
    zanrec::Loaded rec;
    ASSERT_TRUE(zanrec::LoadRecording(path, rec));
    std::filesystem::remove(path);
    EXPECT_EQ(rec.rr.frames.size(), 2u);
    EXPECT_EQ(rec.badSensor, 0);
    EXPECT_EQ(rec.sensorError, "frame 0 at byte 8: sensor record of type 3 holds type 23");
    ASSERT_EQ(rec.nav.All().size(), 1u);
    EXPECT_EQ(rec.nav.All().begin()->first, CSnsrInf::tMru);
}

// A settings file holding a number too large for a double: the JSON parser
// raised its out-of-range exception, which the loader let through to the
// host (only syntax errors were caught). The file is now refused as damaged
// and the settings loaded before stay as they were.
TEST(FuzzRegression, SettingsFileWithANumberBeyondADoubleIsRefused)
{
    const std::string path = (std::filesystem::temp_directory_path() / "zan-fuzz-number-overflow.json").string();
    for (const std::string& text : {std::string("4444e454426006670540074,4"), std::string("{\"a\": 1e999}")}) {
        {
            FILE* f = std::fopen(path.c_str(), "wb");
            ASSERT_NE(f, nullptr);
            std::fwrite(text.data(), 1, text.size(), f);
            std::fclose(f);
        }
        const Zan::Sink old = Zan::SetSink([](Zan::Kind, unsigned long, int, const CString&) {});
        CZSet set;
        set.AddCol(CString(u"Keep"));
        const BOOL ok = set.Load(CString::FromUtf8(path));
        Zan::SetSink(old);
        EXPECT_FALSE(ok) << text;
        EXPECT_NE(set.m_strError.Utf8().find("is damaged"), std::string::npos) << set.m_strError.Utf8();
        EXPECT_NE(set.m_cols.GetCount(), 0) << "a refused file must leave the settings as they were";
    }
    std::filesystem::remove(path);
}

// A recording whose first position record holds a damaged longitude (the
// frame's CRC being right): the tool took it for the survey's origin and
// turned the longitude's UTM zone into an int unchecked (undefined
// behaviour for 1e300 or NaN). Such a fix is now kept as a record but not
// taken for the origin; the next good one is.
TEST(FuzzRegression, RecordingOriginSkipsAPositionThatIsNoPlace)
{
    const std::string path = (std::filesystem::temp_directory_path() / "zan-fuzz-bad-origin.zrec").string();
    for (double bad : {1e300, std::numeric_limits<double>::quiet_NaN(), -181.0}) {
        {
            zanrec::RecordingWriter w(path);
            CSnsrPos damaged, good;
            damaged.m_geo = CV3(bad, 50.0, 0.0);
            good.m_geo = CV3(-1.0, 50.0, 0.0);
            good.m_time = 1.0;
            for (CSnsrPos* p : {&damaged, &good}) {
                const auto bytes = zanrec::StoreSensor(*p);
                w.Write(zanrec::FrameKind::Sensor, CSnsrInf::tPos, bytes.data(), bytes.size());
            }
            w.Close();
        }
        zanrec::Loaded rec;
        ASSERT_TRUE(zanrec::LoadRecording(path, rec));
        EXPECT_EQ(rec.badSensor, -1);
        EXPECT_EQ(rec.nav.Of(CSnsrInf::tPos).size(), 2u);
        ASSERT_TRUE(rec.hasRef) << bad;
        double lat = 0.0, lon = 0.0;
        rec.ref.ToLatLon(0.0, 0.0, lat, lon);
        EXPECT_NEAR(lat, 50.0, 1e-9) << bad;
        EXPECT_NEAR(lon, -1.0, 1e-9) << bad;
    }
    std::filesystem::remove(path);
}

// An image whose pixel size is 0 (a damaged record) has lines and bearings
// but no plane. Alloc handed it an empty block, and a copy of such an image
// then held a plane pointer with no bytes behind it. A shape of no bytes now
// holds no block, in the image and in its copies.
TEST(FuzzRegression, AnImageOfNoPixelBytesHoldsNoPlane)
{
    CTgtImg img;
    img.Alloc(8, 8);
    ASSERT_NE(img.m_pImg, nullptr);
    img.m_nPixBytes = 0;
    img.Alloc(8, 8);
    EXPECT_EQ(img.m_pImg, nullptr);
    EXPECT_EQ(img.m_nImgBytes, 0u);
    EXPECT_EQ(img.m_vStart.size(), 8u);
    CTgtImg copy(img);
    EXPECT_EQ(copy.m_pImg, nullptr);
    EXPECT_EQ(copy.m_nImgBytes, 0u);
    CTgtImg assigned;
    assigned.Alloc(4, 4);
    assigned = img;
    EXPECT_EQ(assigned.m_pImg, nullptr);
    EXPECT_EQ(assigned.m_nImgBytes, 0u);
}

// An image record of no lines whose intensity block announced some 2^28
// bearings: the block's plane was empty, so nothing stopped Alloc from
// sizing the per-bearing vectors (gigabytes) from a record of a few hundred
// bytes. Bearings beyond the record's table must now be backed by the file.
TEST(FuzzRegression, ImageBlockBearingsBeyondTheTableMustBeBacked)
{
    CTgtImg img;
    img.Ping()->SetNumBeams(3);
    img.Alloc(0, 3);
    Bytes rec;
    {
        CMemFile f;
        CArchive ar(&f, CArchive::store);
        img.Serialize(ar, 0x04);  // the intensity block alone
        ar.Close();
        rec.assign(f.GetBuffer(), f.GetBuffer() + f.GetLength());
    }
    // The tail: the block's bearing count, then no boundaries.
    ASSERT_GE(rec.size(), 8u);
    UINT n = 0;
    std::memcpy(&n, rec.data() + rec.size() - 8, 4);
    ASSERT_EQ(n, 3u);
    for (const UINT bad : {4u, 0x10000000u}) {
        std::memcpy(rec.data() + rec.size() - 8, &bad, 4);
        CTgtImg fresh;
        fresh.Ping()->SetNumBeams(3);
        int cause = -1;
        try {
            LoadFrom(rec, [&](CArchive& ar) { fresh.Serialize(ar, 0); });
        } catch (const CArchiveException& e) {
            cause = e.m_cause;
        }
        EXPECT_EQ(cause, CArchiveException::endOfFile) << bad;
        EXPECT_LE(fresh.m_vStart.size(), 3u) << bad;
    }
}

// An image record without an intensity block whose line count the file
// cannot back: the loader leaves the plane out (lines and bearings, no
// plane). Copying such an image sized the plane in full, and beyond 4 GiB
// that ended the process. A copy now takes the shape as it is, plane-less.
TEST(FuzzRegression, CopiesOfAnImageWithoutItsPlaneAllocateNoPlane)
{
    CTgtImg img;
    img.m_nPixBytes = 2;
    img.Alloc(0, 4);
    img.m_nRngs = 0x40000000u;  // as the loader leaves it: 8 GiB of plane unbacked
    ASSERT_EQ(img.m_pImg, nullptr);
    CTgtImg copy(img);
    EXPECT_EQ(copy.m_pImg, nullptr);
    EXPECT_EQ(copy.m_nImgBytes, 0u);
    EXPECT_EQ(copy.m_nRngs, img.m_nRngs);
    EXPECT_EQ(copy.m_nBrgs, 4u);
    CTgtImg assigned;
    assigned.Alloc(10, 4);
    assigned = img;
    EXPECT_EQ(assigned.m_pImg, nullptr);
    EXPECT_EQ(assigned.m_nRngs, img.m_nRngs);
    CTgtImg kept;
    kept.Alloc(10, 4);
    kept.CopyPreserve(img);
    EXPECT_EQ(kept.m_pImg, nullptr);
    EXPECT_EQ(kept.m_nRngs, img.m_nRngs);
}

// The same for the raw plane and the line records that a record without
// those blocks leaves as they were while it moves the line count: a copy
// holds what the original holds, not the lines the count would ask for.
TEST(FuzzRegression, CopiesOfLeftOverBlocksHoldWhatTheOriginalHolds)
{
    CTgtImg img;
    img.AllocQI(10, 8);
    img.AllocPA(10, 4);
    img.AllocLX(10, 4);
    for (UINT i = 0; i < img.m_nQIBytes; ++i) img.m_pQI[i] = static_cast<BYTE>(i);
    img.m_nRngs = 0x20000000u;  // a damaged count: 4 GiB of raw plane unbacked
    CTgtImg copy(img);
    EXPECT_EQ(copy.m_nQIBytes, 80u);
    EXPECT_EQ(copy.m_nPABytes, 40u);
    EXPECT_EQ(copy.m_nLXBytes, 40u);
    EXPECT_EQ(copy.m_nRngs, img.m_nRngs);
    ASSERT_NE(copy.m_pQI, nullptr);
    EXPECT_EQ(std::memcmp(copy.m_pQI, img.m_pQI, 80), 0);
    CTgtImg assigned;
    assigned.AllocQI(3, 2);
    assigned = img;
    EXPECT_EQ(assigned.m_nQIBytes, 80u);
    EXPECT_EQ(assigned.m_nRngs, img.m_nRngs);
    CTgtImg set;
    set.Set(img);
    EXPECT_EQ(set.m_nQIBytes, 80u);
    EXPECT_EQ(set.m_nRngs, img.m_nRngs);

    // An intensity plane left behind by a record of no bearings, which moved
    // the line count and the pixel size past it.
    CTgtImg plane;
    plane.Alloc(10, 4);
    plane.m_nPixBytes = 200;
    plane.m_nRngs = 0x01000000u;
    CTgtImg planeCopy(plane);
    EXPECT_LE(planeCopy.m_nImgBytes, 40u);
    EXPECT_EQ(planeCopy.m_nRngs, plane.m_nRngs);
    CTgtImg planeAssigned;
    planeAssigned = plane;
    EXPECT_LE(planeAssigned.m_nImgBytes, 40u);
}

}  // namespace
