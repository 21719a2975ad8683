// fuzz_seeds DIR: writes the seed inputs of every fuzz target into
// DIR/<target>/seed-<name>, built with the library from the same records the
// unit tests use. The seeds are committed under fuzz/corpus; rerun this after
// a record format changes:  ./build-fuzz/fuzz/fuzz_seeds fuzz/corpus
#include "fuzz/FuzzUtil.h"

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <initializer_list>
#include <string>

namespace fs = std::filesystem;
using zanfuzz::Bytes;
using zanfuzz::Store;

namespace {

fs::path g_root;

void Put(const std::string& target, const std::string& name, const Bytes& b)
{
    const fs::path dir = g_root / target;
    fs::create_directories(dir);
    std::ofstream(dir / ("seed-" + name), std::ios::binary)
        .write(reinterpret_cast<const char*>(b.data()), static_cast<std::streamsize>(b.size()));
}

Bytes Cat(std::initializer_list<Bytes> parts)
{
    Bytes out;
    for (const Bytes& p : parts) out.insert(out.end(), p.begin(), p.end());
    return out;
}

Bytes Mode(BYTE m) { return Bytes{m}; }

template <class T>
Bytes Le(T v)
{
    Bytes b(sizeof v);
    std::memcpy(b.data(), &v, sizeof v);
    return b;
}

// A ping with a value in every recorded field, unlike the defaults.
void Scribble(CPing& p)
{
    p.m_recTag = 0xBEEF; p.m_pingID = 9; p.m_halfArr = 1; p.m_txLength = 6; p.m_scanRate = 3;
    p.m_sosXd = 1490.5f; p.m_shading = 4; p.m_mainGain = -3; p.m_gainBlank = 4; p.m_adcInput = 5;
    p.m_spreadGain = 37; p.m_absorbGain = 7; p.m_bfFocus = 3; p.m_bfGain = 11; p.m_aperture = 130.0f;
    p.m_txStart = 16; p.m_txLen = 17; p.m_txRadius = 18.0f; p.m_txRng = 19.0f; p.m_modFreq = 25000;
    p.m_rx1ID = 34; p.m_rx2ID = 0; p.m_tx1ID = 35; p.m_pingFlags = -7;
    p.m_rx1Idx = 4; p.m_rx2Idx = 21; p.m_tx1Idx = 5; p.m_tx2Idx = 22;
    p.SetNumBeams(64);
    p.m_ftSet.m_nFeat[8] = 38; p.m_ftSet.m_aux[31] = 39;
    p.m_ftSet.m_dFeat[0] = 1.0; p.m_ftSet.m_dFeat[1] = 2.0; p.m_ftSet.m_dFeat[2] = 3.0; p.m_ftSet.m_dFeat[3] = 4.0;
    p.m_zoom.m_azOn = true; p.m_zoom.m_azHead = 41; p.m_zoom.m_azFactor = 2.5; p.m_zoom.m_azDecim = 3;
    p.m_zoom.m_azNumBeams = 42; p.m_zoom.m_azArg1 = 43.0; p.m_zoom.m_azArg2 = 44.0;
    p.m_swGainRamp = 28; p.m_rngDecim = 4; p.m_gainMode = 0; p.m_txSrcLevel = 33; p.m_percentGain = 30;
}

Bytes PingRec(CPing& p) { return Store([&](CArchive& ar) { p.Serialize(ar); }); }

void Pings()
{
    CPing def;
    Put("ping", "default", Cat({Mode(0), PingRec(def)}));
    CPing full;
    Scribble(full);
    Put("ping", "scribbled", Cat({Mode(2), PingRec(full)}));
    full.m_hasFtSet = 1;
    Put("ping", "featureset", Cat({Mode(1), PingRec(full)}));
    full.m_hasFtSet = 0;
    full.SetNumBeams(512);
    Put("ping", "512beams", Cat({Mode(0), PingRec(full)}));

    // Zoom blocks: the written form, and heads of the older versions.
    CPing z;
    Scribble(z);
    Put("ping_zoom", "on", Store([&](CArchive& ar) { z.SerializeAcousticZoom(ar); }));
    z.m_zoom.m_azOn = false;
    Put("ping_zoom", "off", Store([&](CArchive& ar) { z.SerializeAcousticZoom(ar); }));
    const Bytes body0 = Cat({Le<WORD>(41), Bytes{1}, Le<WORD>(3), Le<short>(42), Le(2.5)});
    Put("ping_zoom", "v0", Cat({Le<WORD>(0), Le<WORD>(0), Le<int>(-21), body0}));
    Put("ping_zoom", "v1", Cat({Le<WORD>(1), Le<WORD>(0), Le<int>(7), Le<WORD>(41), Bytes{1, 0xAA, 0xBB},
                                Le<WORD>(3), Le<short>(42), Le(2.5), Le(1.0), Le(2.0), Le(3.0)}));
    Put("ping_zoom", "v3", Cat({Le<WORD>(3), Le<WORD>(0x1234), Le<int>(0), Le<WORD>(1), Bytes{5}, Le(43.0), Le(44.0),
                                Le<WORD>(2), Le<short>(128), Le(1.0)}));
}

CTgt MakeTgt(int i)
{
    CTgt t;
    t.x = 1.5 * i; t.y = -2.0 * i; t.z = 10.0 + i;
    t.m_rngK = 1000u * static_cast<UINT>(i) + 500; t.m_brgK = 64000 + static_cast<UINT>(i);
    t.m_tgtValue = 0.25 * i; t.m_level = static_cast<WORD>(200 + i); t.m_kind = static_cast<BYTE>(1 + i % 3);
    t.m_tgtByte = static_cast<BYTE>(0x40 + i);
    return t;
}

void Targets()
{
    Bytes rb = Mode(0), pos = Mode(1);
    for (int i = 0; i < 3; ++i) {
        CTgt t = MakeTgt(i);
        const Bytes a = Store([&](CArchive& ar) { t.SerializeRngBrg(ar); });
        const Bytes b = Store([&](CArchive& ar) { t.SerializeTgt(ar); });
        rb.insert(rb.end(), a.begin(), a.end());
        pos.insert(pos.end(), b.begin(), b.end());
    }
    Put("tgt", "rngbrg3", rb);
    Put("tgt", "pos3", pos);

    for (int n : {0, 2, 5}) {
        CTgtRec rec;
        Scribble(rec.m_ping);
        rec.m_sonarNo = 2; rec.m_tgtSide = 1; rec.m_recVal1 = 1.25; rec.m_recVal2 = -3.5; rec.m_elevDeg = 15.0;
        rec.m_sosAvg = 1487.25;
        for (int i = 0; i < n; ++i) rec.AddTail(new CTgt(MakeTgt(i)));
        const Bytes rbRec = Store([&](CArchive& ar) { rec.Serialize(ar); rec.SerializeRB(ar); });
        const Bytes posRec = Store([&](CArchive& ar) { rec.Serialize(ar); rec.SerializeTgt(ar); });
        Put("tgtrec", "rb" + std::to_string(n), Cat({Mode(n == 5 ? 2 : 0), rbRec}));
        Put("tgtrec", "pos" + std::to_string(n), Cat({Mode(1), posRec}));
        rec.m_ping.m_hasFtSet = 1;
        Put("tgtrec", "ft" + std::to_string(n),
            Cat({Mode(4), Store([&](CArchive& ar) { rec.Serialize(ar); rec.SerializeRB(ar); })}));
    }

    CBnd empty;
    CBnd named;
    named.m_name = CString(u"Wreck outline");
    named.m_bndType = 1;
    named.m_firstBrg = 12;
    named.SetNRngs(4);
    for (UINT i = 0; i < 4; ++i) {
        named.m_pRngs[i].m_dNear = 10.0 + i;
        named.m_pRngs[i].m_dFar = 20.0 + i;
        named.m_pRngs[i].m_nVal1 = static_cast<int>(i);
        named.m_pRngs[i].m_nVal3 = -1;
    }
    const Bytes e = Store([&](CArchive& ar) { empty.Serialize(ar); });
    const Bytes n = Store([&](CArchive& ar) { named.Serialize(ar); });
    Put("bnd", "empty", Cat({Mode(0), e}));
    Put("bnd", "named", Cat({Mode(1), n}));
    Put("bnd", "run", Cat({Mode(1), n, e, n}));
    // The same boundary with its name in the narrow form an older writer used.
    Bytes narrow = Cat({Bytes{4, 'S', 'h', 'i', 'p'}, Bytes(n.begin() + 4 + 2 * 13, n.end())});
    Put("bnd", "narrow", Cat({Mode(0), narrow}));
}

void Pattern(BYTE* p, size_t n, unsigned seed)
{
    for (size_t i = 0; i < n; ++i) p[i] = static_cast<BYTE>((i * 7 + seed) % 23 < 9 ? 0 : (i * 31 + seed) & 0xFF);
}

// A small image of nRngs by nBrgs with the blocks of nFlags.
Bytes ImgRec(UINT nFlags, UINT nRngs, UINT nBrgs, BYTE nPix, bool bRx2, int nTgts, int nBnds)
{
    CTgtImg img;
    CPing& ping = *img.Ping();
    Scribble(ping);
    ping.m_rx2ID = bRx2 ? 36 : 0;
    ping.SetNumBeams(static_cast<int>(nBrgs));
    img.m_nPixBytes = nPix;
    img.m_nStartRng = 100;
    img.m_nEndRng = 100 + nRngs;
    img.m_nEndBrg = nBrgs;
    img.Alloc(nRngs, nBrgs);
    img.AllocQI(nRngs, 4 * nBrgs);
    img.AllocPA(nRngs, 2 * nBrgs);
    Pattern(img.m_pImg, img.m_nImgBytes, 1);
    if (img.m_pImg2) Pattern(img.m_pImg2, img.m_nImgBytes, 2);
    Pattern(img.m_pQI, img.m_nQIBytes, 3);
    Pattern(img.m_pPhs, img.m_nPABytes, 4);
    for (UINT b = 0; b < nBrgs; ++b) {
        img.m_vStart[b] = CV3(b, 0, 1);
        img.m_vEnd[b] = CV3(b, 50, 1);
        img.m_vDir[b] = CV3(0, 1, 0);
    }
    for (int i = 0; i < nTgts; ++i) img.m_tgtRec.AddTail(new CTgt(MakeTgt(i)));
    for (int i = 0; i < nBnds; ++i) {
        CBnd* b = new CBnd;
        b->m_name = CString(u"B") + CString(std::to_string(i).c_str());
        b->SetNRngs(static_cast<unsigned>(2 + i));
        img.m_bnds.AddTail(b);
    }
    return Store([&](CArchive& ar) { img.Serialize(ar, nFlags); });
}

void Images()
{
    Put("img", "header", Cat({Mode(0), ImgRec(0x00, 16, 8, 1, false, 0, 0)}));
    Put("img", "intensity", Cat({Mode(0), ImgRec(0x04, 16, 8, 1, false, 0, 1)}));
    Put("img", "compressed", Cat({Mode(1), ImgRec(0x0C, 24, 16, 1, false, 2, 0)}));
    Put("img", "raw-pa-rx2", Cat({Mode(0), ImgRec(0x03, 8, 8, 1, true, 0, 0)}));
    Put("img", "everything", Cat({Mode(1), ImgRec(0x7F, 12, 8, 1, true, 3, 2)}));
    Put("img", "rb-targets-16bit", Cat({Mode(0), ImgRec(0x14, 8, 4, 2, false, 2, 1)}));
    Put("img", "featureset", Cat({Mode(2), [] {
        CTgtImg img;
        img.Ping()->m_hasFtSet = 1;
        img.Ping()->SetNumBeams(4);
        img.Alloc(4, 4);
        return Store([&](CArchive& ar) { img.Serialize(ar, 0x44); });
    }()}));
    Put("img", "two-records", Cat({Mode(0), ImgRec(0x0D, 16, 8, 1, false, 1, 2), ImgRec(0x04, 8, 8, 1, false, 0, 0)}));

    // Extended ping blocks: both written versions, the older form and
    // versions that only a reader meets.
    CTgtImg img;
    Scribble(*img.Ping());
    img.AllocLX(6, 4);
    Pattern(img.m_pLX, img.m_nLXBytes, 5);
    img.m_vExPos = CV3(123.5, -45.25, 0);
    img.m_nRollTgt1 = 1; img.m_nRollTgt2 = 2; img.m_fRoll = 1.5f; img.m_nRollFlags = 3;
    Put("img_pingex", "v34", Cat({Mode(0), Store([&](CArchive& ar) { img.SerializePingEx(ar); })}));
    Zan::zanMode = 1;
    Put("img_pingex", "v21", Cat({Mode(2), Store([&](CArchive& ar) { img.SerializePingEx(ar); })}));
    Zan::zanMode = 0;
    Put("img_pingex", "older", Cat({Mode(1), Le<UINT>(3), Le<UINT>(8), Bytes(24, 0x11)}));
    Put("img_pingex", "v1", Cat({Mode(0), Le<UINT>(0), Le<UINT>(1), Le<UINT>(23), Le<UINT>(2), Le<UINT>(4),
                                 Le<WORD>(1), Le<WORD>(2), Le<WORD>(0), Le<WORD>(5), Bytes{1, 2}, Le(0.5f), Bytes{7},
                                 Bytes(8, 0x22)}));
    Put("img_pingex", "v20", Cat({Mode(0), Le<UINT>(0), Le<UINT>(0x20), Le<UINT>(18), Le<UINT>(0), Le<UINT>(4),
                                  Le<WORD>(1), Le<WORD>(0), Le<WORD>(2), Le<WORD>(5), Le<WORD>(66)}));
    Put("img_pingex", "v40-longer", Cat({Mode(0), Le<UINT>(0), Le<UINT>(0x40), Le<UINT>(40), Le<UINT>(1), Le<UINT>(4),
                                         Bytes(28, 0x33), Le<UINT>(0x12345678)}));

    // Zoom blocks of the image.
    CTgtImg z;
    Scribble(*z.Ping());
    z.AllocAZ(6, 5);
    Pattern(z.m_pAZ, z.m_nAZBytes, 6);
    z.m_nAZStartBrg = 3; z.m_nAZEndBrg = 7; z.m_nAZStartRng = 100; z.m_nAZEndRng = 106;
    Put("img_zoom", "on", Cat({Mode(1), Store([&](CArchive& ar) { z.SerializeAcousticZoom(ar); })}));
    Put("img_zoom", "on-recycled", Cat({Mode(5), Store([&](CArchive& ar) { z.SerializeAcousticZoom(ar); })}));
    z.m_nPixBytes = 2;
    z.AllocAZ(3, 4);
    Put("img_zoom", "on-16bit", Cat({Mode(2), Store([&](CArchive& ar) { z.SerializeAcousticZoom(ar); })}));
    z.Ping()->m_zoom.m_azOn = false;
    Put("img_zoom", "off", Cat({Mode(1), Store([&](CArchive& ar) { z.SerializeAcousticZoom(ar); })}));

    // Streams of the run-length code: count (u16), level, stream.
    const auto stream = [](UINT n, BYTE level, const Bytes& s) { return Cat({Le<WORD>(static_cast<WORD>(n)), Bytes{level}, s}); };
    Put("uncompress", "example", stream(10, 8, Bytes{0x00, 0x03, 0x09, 0x01, 0xC8, 0x00, 0x04, 0x02, 0x02}));
    Bytes zeros;
    for (int i = 0; i < 25; ++i) zeros.insert(zeros.end(), {0x00, 0xFF});
    zeros.insert(zeros.end(), {0x00, 0x19, 0x02, 0x02});
    Put("uncompress", "6400-zeros", stream(6400, 8, zeros));
    Put("uncompress", "run-then-255", stream(300, 8, Bytes{0x00, 0xFF, 0xFF, 0x00, 0x10, 0x02, 0x02}));
    Bytes busy(64);
    Pattern(busy.data(), busy.size(), 9);
    Put("uncompress", "image", stream(64, 8, busy));
}

void Sensors()
{
    for (int type = 0; type < CSnsrInf::s_nTypes; ++type) {
        CSnsrInf* rec = CSnsrInf::Create(type);
        if (!rec) continue;
        rec->m_bank = 2;
        rec->m_aux = 7;
        rec->m_time = 1419503400.25;
        rec->m_raw = CString(u"$RAW,1,2,3*00");
        if (auto* c = dynamic_cast<CSnsrClt*>(rec)) {
            c->m_items.SetSize(2);
            c->m_items.m_ppItems[0]->m_str = CString(u"Heave");
            c->m_items.m_ppItems[0]->m_d = 0.5;
            c->m_items.m_ppItems[1]->m_str = CString(u"Speed");
            c->m_items.m_ppItems[1]->m_d = 3.25;
        } else if (auto* p = dynamic_cast<CSnsrPressure*>(rec)) {
            p->m_pressure = 1013.25f;
            p->m_pressUnit = CString(u"mbar");
            p->m_tempVal = 11.5f;
            p->m_tempUnit = CString(u"\u00B0C");
        } else if (type == CSnsrInf::tClientBinary) {
            auto* b = static_cast<CSensorClientBinaryData*>(rec);
            b->m_size = 16;
            b->m_data = new BYTE[16];
            Pattern(b->m_data, 16, 7);
        }
        Put("snsr", "type" + std::to_string(type), Store([&](CArchive& ar) { rec->Serialize(ar); }));
        delete rec;
    }
}

void Geodesy()
{
    Geo::ClearDb();
    Geo::ReadDb(CString::FromUtf8(ZAN_SOURCE_DATA_DIR "/GeoDB.csv"));
    Geo::pSphdP = Geo::sphds.GetHead();
    Geo::pProjP = Geo::projs.GetTail();
    Geo::pShift = Geo::shfts.GetHead();
    Put("geo", "geodb", Store([](CArchive& ar) { Geo::Serialize(ar); }));
    Geo::ClearDb();
    Geo::sphds.AddTail(new CSphd);
    Geo::projs.AddTail(new CProj);
    Geo::shfts.AddTail(new CShft);
    Geo::pSphdP = Geo::sphds.GetHead();
    Geo::pSphdS = Geo::sphds.GetHead();
    Put("geo", "defaults", Store([](CArchive& ar) { Geo::Serialize(ar); }));
    Geo::ClearDb();

    std::ifstream db(ZAN_SOURCE_DATA_DIR "/GeoDB.csv", std::ios::binary);
    const std::string text((std::istreambuf_iterator<char>(db)), std::istreambuf_iterator<char>());
    Put("geodb", "GeoDB.csv", Bytes(text.begin(), text.end()));
    const std::string edge =
        "% comment\n"
        "SPHD, WGS84 , 6356752.314, 6378137, 0.006694380023, 298.2572\n"
        "SPHD,Short,1,2,3\n"
        "sphd,lower,1,2,3,4\n"
        " SPHD,blank,1,2,3,4\n"
        "PROJ,UTM_30,500000,0,-3,0,0.9996 trailing words\n"
        "SHIFT,OSGB36,-446.448,125.157,-542.06,-0.1502,-0.247,-0.8421,20.4894\n"
        "\n"
        "SHIFT,nan,nan,inf,-inf,1e308,0,0,0\n";
    Put("geodb", "edges", Bytes(edge.begin(), edge.end()));
}

void Settings()
{
    CZSet set;
    CZSetCol* col = set.AddCol(CString(u"Geodesy"));
    CZSetObj* obj = col->AddObj(CString(u"Geo"), CString(u"geodetic database and selection"));
    Geo::ClearDb();
    Geo::ReadDb(CString::FromUtf8(ZAN_SOURCE_DATA_DIR "/GeoDB.csv"));
    Geo::pSphdP = Geo::sphds.GetHead();
    Geo::Settings(*obj);
    Geo::ClearDb();
    CZSetObj* items = set.AddCol(CString(u"Items"))->AddObj(CString(u"All"), CString(u"one item of each type"));
    BYTE u8 = 200; short i16 = -300; unsigned short u16 = 60000; int i32 = -70000; unsigned long u32 = 4000000000ul;
    float f32 = 0.1f; double f64 = -1.0 / 3.0; CString str(u"text \u00E9");
    items->Item(CString(u"u8"), u8); items->Item(CString(u"i16"), i16); items->Item(CString(u"u16"), u16);
    items->Item(CString(u"i32"), i32); items->Item(CString(u"u32"), u32); items->Item(CString(u"f32"), f32);
    items->Item(CString(u"f64"), f64); items->Item(CString(u"str"), str);
    double nan = std::numeric_limits<double>::quiet_NaN();
    items->Item(CString(u"nan"), nan);
    items->Data(CString(u"%s,%1.2lf"), CString(u"25/12/2014 10:30:00"), 1.25);
    const std::string geo = set.ToText().Utf8();
    Put("settings", "geo-and-items", Bytes(geo.begin(), geo.end()));
    CZSet small;
    small.AddCol(CString(u"Empty"));
    const std::string s = small.ToText().Utf8();
    Put("settings", "empty-collection", Bytes(s.begin(), s.end()));
}

}  // namespace

int main(int argc, char** argv)
{
    if (argc != 2) {
        std::fprintf(stderr, "usage: fuzz_seeds DIR\n");
        return 2;
    }
    g_root = argv[1];
    Pings();
    Targets();
    Images();
    Sensors();
    Geodesy();
    Settings();
    CTgtImg::CleanupStatic();
    return 0;
}
