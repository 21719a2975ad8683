// Ping settings: every key in order through a settings file, and the beam
// count taken only through SetNumBeams on loading.
#include "PingTestUtil.h"

#include <filesystem>
#include <string>

#include <unistd.h>

namespace {

struct Key {
    const char16_t* key;
    CZSetObj::Type type;
};

// The items in the order of the calls, with the second, 16-bit "bfRng".
const Key kKeys[] = {
    {u"PingID", CZSetObj::U8},        {u"Active", CZSetObj::I32},       {u"HalfArr", CZSetObj::I32},
    {u"StartRngL", CZSetObj::I32},    {u"EndRngL", CZSetObj::I32},      {u"StartRngM", CZSetObj::F32},
    {u"EndRngM", CZSetObj::F32},      {u"ScanRate", CZSetObj::U8},      {u"TxLength", CZSetObj::U8},
    {u"ModFreq", CZSetObj::I32},      {u"Shading", CZSetObj::I16},      {u"PingDelay", CZSetObj::F32},
    {u"PingRateDesired", CZSetObj::F64}, {u"PingFlags", CZSetObj::I16}, {u"MainGain", CZSetObj::I16},
    {u"AutoGain", CZSetObj::I32},     {u"AutoXdGain", CZSetObj::I32},   {u"GainBlank", CZSetObj::I16},
    {u"AdcInput", CZSetObj::I16},     {u"SpreadGain", CZSetObj::I16},   {u"AbsorbGain", CZSetObj::I16},
    {u"bfInXd", CZSetObj::I32},       {u"bfType", CZSetObj::I32},       {u"bfFocus", CZSetObj::I32},
    {u"bfGain", CZSetObj::I16},       {u"bfBits", CZSetObj::I16},       {u"bfGenPA", CZSetObj::I32},
    {u"bfRng", CZSetObj::F32},        {u"Aperture", CZSetObj::F32},     {u"DataType", CZSetObj::I16},
    {u"bfRng", CZSetObj::I16},        {u"FocusTbl", CZSetObj::I16},     {u"TxStart", CZSetObj::I16},
    {u"TxLen", CZSetObj::I16},        {u"TxRadius", CZSetObj::F32},     {u"TxRng", CZSetObj::F32},
    {u"RX1_ID", CZSetObj::I16},       {u"RX2_ID", CZSetObj::I16},       {u"TX1_ID", CZSetObj::I16},
    {u"TX2_ID", CZSetObj::I16},       {u"RLEEnable", CZSetObj::I32},    {u"RLELevel", CZSetObj::U16},
    {u"BaseGain", CZSetObj::U16},     {u"FocusMode", CZSetObj::U16},    {u"FilterBank", CZSetObj::U16},
    {u"SamChannel", CZSetObj::U16},   {u"SamRow", CZSetObj::U16},       {u"DisableOOW", CZSetObj::I32},
    {u"SWGainRamp", CZSetObj::U16},   {u"Trigger", CZSetObj::U16},      {u"PercentGain", CZSetObj::I16},
    {u"GainAssist", CZSetObj::I32},   {u"TxSrcLevel", CZSetObj::I16},   {u"BaseMF", CZSetObj::I32},
    {u"NumBeams", CZSetObj::I16},
};

std::string Scratch(const char* name)
{
    return (std::filesystem::temp_directory_path() / (std::string("zanping_") + std::to_string(::getpid()) + "_" + name))
        .string();
}

// A store through a real settings file and back: the loading object.
CZSetObj* ThroughFile(CZSet& back, CPing& src, const char* name)
{
    CZSet set;
    src.Settings(*set.AddCol(u"Ping")->AddObj(u"Main", u""));
    const std::string path = Scratch(name);
    EXPECT_TRUE(set.Save(CString::FromUtf8(path)));
    EXPECT_TRUE(back.Load(CString::FromUtf8(path)));
    std::filesystem::remove(path);
    return back.GetCol(u"Ping")->GetHead();
}

}  // namespace

TEST(PingSettings, EveryKeyInOrderWithItsFieldsType)
{
    CPing p;
    CZSetObj obj(u"Main", u"");
    p.Settings(obj);
    ASSERT_EQ(obj.m_items.size(), std::size(kKeys));
    for (size_t i = 0; i < std::size(kKeys); ++i) {
        EXPECT_EQ(obj.m_items[i].m_key, kKeys[i].key) << i;
        EXPECT_EQ(obj.m_items[i].m_type, kKeys[i].type) << CString(kKeys[i].key);
    }
    // The defaults as stored.
    EXPECT_EQ(obj.FindItem(u"PingID")->m_n, 1);
    EXPECT_EQ(obj.FindItem(u"EndRngL")->m_n, 400);
    EXPECT_EQ(obj.FindItem(u"EndRngM")->m_d, 12.0);
    EXPECT_EQ(obj.FindItem(u"ModFreq")->m_n, 40000);
    EXPECT_EQ(obj.FindItem(u"MainGain")->m_n, 2024);
    EXPECT_EQ(obj.FindItem(u"FocusTbl")->m_n, 31);
    EXPECT_EQ(obj.FindItem(u"NumBeams")->m_n, 256);
    EXPECT_EQ(obj.m_items[30].m_n, p.m_adcInput);  // the second "bfRng"
    EXPECT_EQ(obj.GetDataCount(), 0);
}

TEST(PingSettings, RoundTripThroughASettingsFile)
{
    CPing src;
    pingtest::Scribble(src);
    src.SetNumBeams(128);
    double table[128];
    for (int i = 0; i < 128; ++i) table[i] = 0.01 * i;
    src.SetBearingTable(table, 128);
    CPing before;
    before = src;

    CZSet back;
    CZSetObj* obj = ThroughFile(back, src, "roundtrip.json");
    ASSERT_NE(obj, nullptr);
    ASSERT_TRUE(obj->IsLoading());

    CPing dst;  // defaults, 256 beams
    dst.m_pBrgTbl[3] = 7.0;
    const double rlTime = dst.m_rlTime;
    dst.Settings(*obj);

    // Every saved field arrives.
    EXPECT_EQ(dst.m_pingID, src.m_pingID);
    EXPECT_EQ(dst.m_active, src.m_active);
    EXPECT_EQ(dst.m_halfArr, src.m_halfArr);
    EXPECT_EQ(dst.m_startRngL, src.m_startRngL);
    EXPECT_EQ(dst.m_endRngL, src.m_endRngL);
    EXPECT_EQ(dst.m_startRngM, src.m_startRngM);
    EXPECT_EQ(dst.m_endRngM, src.m_endRngM);
    EXPECT_EQ(dst.m_scanRate, src.m_scanRate);
    EXPECT_EQ(dst.m_txLength, src.m_txLength);
    EXPECT_EQ(dst.m_modFreq, src.m_modFreq);
    EXPECT_EQ(dst.m_shading, src.m_shading);
    EXPECT_EQ(dst.m_pingDelay, src.m_pingDelay);
    EXPECT_EQ(dst.m_pingRateDesired, 9.0);  // assignment keeps it, settings carry it
    EXPECT_EQ(dst.m_pingFlags, src.m_pingFlags);
    EXPECT_EQ(dst.m_mainGain, src.m_mainGain);
    EXPECT_EQ(dst.m_autoGain, src.m_autoGain);
    EXPECT_EQ(dst.m_autoXdGain, src.m_autoXdGain);
    EXPECT_EQ(dst.m_gainBlank, src.m_gainBlank);
    EXPECT_EQ(dst.m_adcInput, src.m_adcInput);
    EXPECT_EQ(dst.m_spreadGain, src.m_spreadGain);
    EXPECT_EQ(dst.m_absorbGain, src.m_absorbGain);
    EXPECT_EQ(dst.m_bfInXd, src.m_bfInXd);
    EXPECT_EQ(dst.m_bfType, src.m_bfType);
    EXPECT_EQ(dst.m_bfFocus, src.m_bfFocus);
    EXPECT_EQ(dst.m_bfGain, src.m_bfGain);
    EXPECT_EQ(dst.m_bfBits, src.m_bfBits);
    EXPECT_EQ(dst.m_bfGenPA, src.m_bfGenPA);
    EXPECT_EQ(dst.m_bfRng, src.m_bfRng);
    EXPECT_EQ(dst.m_aperture, src.m_aperture);
    EXPECT_EQ(dst.m_dataType, src.m_dataType);
    EXPECT_EQ(dst.m_focusTbl, src.m_focusTbl);
    EXPECT_EQ(dst.m_txStart, src.m_txStart);
    EXPECT_EQ(dst.m_txLen, src.m_txLen);
    EXPECT_EQ(dst.m_txRadius, src.m_txRadius);
    EXPECT_EQ(dst.m_txRng, src.m_txRng);
    EXPECT_EQ(dst.m_rx1ID, src.m_rx1ID);
    EXPECT_EQ(dst.m_rx2ID, src.m_rx2ID);
    EXPECT_EQ(dst.m_tx1ID, src.m_tx1ID);
    EXPECT_EQ(dst.m_tx2ID, src.m_tx2ID);
    EXPECT_EQ(dst.m_rleEnable, src.m_rleEnable);
    EXPECT_EQ(dst.m_rleLevel, src.m_rleLevel);
    EXPECT_EQ(dst.m_baseGain, src.m_baseGain);
    EXPECT_EQ(dst.m_focusMode, src.m_focusMode);
    EXPECT_EQ(dst.m_filterBank, src.m_filterBank);
    EXPECT_EQ(dst.m_samChannel, src.m_samChannel);
    EXPECT_EQ(dst.m_samRow, src.m_samRow);
    EXPECT_EQ(dst.m_disableOOW, src.m_disableOOW);
    EXPECT_EQ(dst.m_swGainRamp, src.m_swGainRamp);
    EXPECT_EQ(dst.m_trigger, src.m_trigger);
    EXPECT_EQ(dst.m_percentGain, src.m_percentGain);
    EXPECT_EQ(dst.m_gainAssist, src.m_gainAssist);
    EXPECT_EQ(dst.m_txSrcLevel, src.m_txSrcLevel);
    EXPECT_EQ(dst.m_baseMF, src.m_baseMF);
    // The beam count went through SetNumBeams: a new, zeroed table.
    EXPECT_EQ(dst.m_numBeams, 128);
    EXPECT_EQ(dst.m_pBrgTbl[3], 0.0);
    EXPECT_EQ(dst.m_brgCentre, 64.0);

    // Fields without a key are not carried, and nothing is derived.
    EXPECT_EQ(dst.m_rlTime, rlTime);
    EXPECT_EQ(dst.m_sosXd, CPing().m_sosXd);
    EXPECT_EQ(dst.m_typedXfer, CPing().m_typedXfer);
    EXPECT_EQ(dst.m_rngDecim, CPing().m_rngDecim);
    EXPECT_EQ(dst.m_dispPercent, CPing().m_dispPercent);
    EXPECT_EQ(dst.m_rx1Idx, CPing().m_rx1Idx);
    EXPECT_EQ(dst.m_zoom.m_azHead, CPing().m_zoom.m_azHead);

    // Storing changed nothing of the source.
    pingtest::ExpectSameFields(src, before);
    EXPECT_EQ(src.m_pBrgTbl[5], 0.05);
}

TEST(PingSettings, LoadWithoutNumBeamsLeavesTheBeamsAlone)
{
    CPing src;
    src.m_mainGain = 1000;
    CZSet back;
    CZSetObj* obj = ThroughFile(back, src, "nobeams.json");
    ASSERT_NE(obj, nullptr);
    std::erase_if(obj->m_items, [](const CZSetObj::CItem& it) { return it.m_key == u"NumBeams"; });

    CPing dst;
    dst.SetNumBeams(64);
    for (int i = 0; i < 64; ++i) dst.m_pBrgTbl[i] = -0.5 + i / 64.0;
    dst.m_pBeamA[7] = 77;
    const double centre = dst.m_brgCentre, scale = dst.m_brgScale;
    dst.Settings(*obj);
    EXPECT_EQ(dst.m_mainGain, 1000);
    EXPECT_EQ(dst.m_numBeams, 64);
    EXPECT_EQ(dst.m_pBrgTbl[63], -0.5 + 63 / 64.0);
    EXPECT_EQ(dst.m_pBeamA[7], 77u);
    EXPECT_EQ(dst.m_brgCentre, centre);
    EXPECT_EQ(dst.m_brgScale, scale);

    // The same count as loaded: nothing is reallocated or rescaled either.
    CZSet again;
    CPing same;
    same.SetNumBeams(64);
    CZSetObj* obj64 = ThroughFile(again, same, "same.json");
    dst.m_brgCentre = 5.0;
    dst.Settings(*obj64);
    EXPECT_EQ(dst.m_pBeamA[7], 77u);
    EXPECT_EQ(dst.m_brgCentre, 5.0);
}

TEST(PingSettings, SecondBfRngBindingNeverReachesTheConverterInputOnLoading)
{
    // A file from elsewhere: "AdcInput" 3, the float "bfRng" 7 and no 16-bit
    // "bfRng". The whole float must not spill into m_adcInput.
    CZSetObj obj;
    short adc = 3;
    float rng = 7.0f;
    obj.Item(u"AdcInput", adc);
    obj.Item(u"bfRng", rng);
    obj.SetLoading();
    CPing p;
    p.Settings(obj);
    EXPECT_EQ(p.m_adcInput, 3);
    EXPECT_EQ(p.m_bfRng, 7.0f);

    // And a 16-bit "bfRng" that disagrees with "AdcInput" is dropped.
    CZSetObj edited;
    short other = 9;
    edited.Item(u"AdcInput", adc);
    edited.Item(u"bfRng", other);
    edited.SetLoading();
    CPing q;
    q.Settings(edited);
    EXPECT_EQ(q.m_adcInput, 3);
}
