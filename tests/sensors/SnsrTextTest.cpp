// Text lines of the sensor records, the degrees-minutes-seconds formatter,
// and the pressure instrument's conversions.
#include <zandata/ZanData.h>

#include <gtest/gtest.h>

namespace {

// Sets the user's units for one test and restores metres and Celsius.
struct Units {
    Units(int length, int temp)
    {
        ZUnits::s_lengthUnits = length;
        ZUnits::s_tempUnits = temp;
    }
    ~Units()
    {
        ZUnits::s_lengthUnits = 0;
        ZUnits::s_tempUnits = 0;
    }
};

CString Deg(double v, const char16_t* hemi) { return CSnsrPos::GetDegString(v, hemi); }

CSnsrPressure Pressure(float p, const char16_t* unit, float t = 0.0f, const char16_t* tunit = u"")
{
    CSnsrPressure r;
    r.m_pressure = p;
    r.m_pressUnit = unit;
    r.m_tempVal = t;
    r.m_tempUnit = tunit;
    return r;
}

} // namespace

TEST(SnsrText, DegreesMinutesSecondsWithCarries)
{
    EXPECT_EQ(Deg(0.0, u"NS"), CString(u"00\u00B000\"00.000'N"));
    EXPECT_EQ(Deg(-0.5, u"EW"), CString(u"00\u00B030\"00.000'W"));
    EXPECT_EQ(Deg(0.5, u"EW"), CString(u"00\u00B030\"00.000'E"));
    EXPECT_EQ(Deg(12.3456789, u"NS"), CString(u"12\u00B020\"44.444'N"));
    EXPECT_EQ(Deg(-179.999, u"EW"), CString(u"179\u00B059\"56.400'W"));
    // Seconds that would print as 60.000 carry into the minutes, and on into
    // the degrees.
    EXPECT_EQ(Deg(59.9999999, u"NS"), CString(u"60\u00B000\"00.000'N"));
    EXPECT_EQ(Deg(-59.9999999, u"NS"), CString(u"60\u00B000\"00.000'S"));
    EXPECT_EQ(Deg(10.0 + 59.9994 / 3600.0, u"NS"), CString(u"10\u00B000\"59.999'N"));  // just under: no carry
    EXPECT_EQ(Deg(10.0 + 59.9996 / 3600.0, u"NS"), CString(u"10\u00B001\"00.000'N"));
    EXPECT_EQ(Deg(10.0 + 59.0 / 60.0 + 59.9996 / 3600.0, u"NS"), CString(u"11\u00B000\"00.000'N"));
    // Narrow and wide letter pairs give the same text.
    EXPECT_EQ(CSnsrPos::GetDegString(-1.25, "EW"), Deg(-1.25, u"EW"));
    EXPECT_EQ(CSnsrPos::GetDegString(-1.25, L"EW"), Deg(-1.25, u"EW"));
}

TEST(SnsrText, PositionShowsLatitudeFirstOrTheLocalFrame)
{
    CSnsrPos p;
    p.m_geo = CV3(-3.5, 51.25, 10.0);
    EXPECT_EQ(p.GetString(0), CString(u"51\u00B015\"00.000'N, 03\u00B030\"00.000'W"));
    p.m_local = CV3(0.0, 0.0, -0.001);  // any non-zero member switches
    EXPECT_EQ(p.GetString(0), CString(u"X:0.00 Y:0.00 Z:-0.00"));
    p.m_local = CV3(10.0, -20.0, 0.5);
    EXPECT_EQ(p.GetString(0), CString(u"X:10.00 Y:-20.00 Z:0.50"));
}

TEST(SnsrText, EachClassLine)
{
    CSnsrInf raw;
    raw.m_raw = u"$GPGGA,1";
    EXPECT_EQ(raw.GetString(0), CString(u"$GPGGA,1"));
    CSnsrSet set;
    set.m_raw = u"gain=3";
    EXPECT_EQ(set.GetString(7), CString(u"gain=3"));
    CSnsrInf* bin = CSnsrInf::Create(19);
    bin->m_raw = u"blob";
    EXPECT_EQ(bin->GetString(0), CString(u"blob"));
    delete bin;

    CSnsrAlt alt;
    alt.m_alt = 7.25f;
    EXPECT_EQ(alt.GetString(0), CString(u"7.25m"));
    CSnsrMarker mk;
    mk.m_mark = -3.0f;
    EXPECT_EQ(mk.GetString(0), CString(u"-3.00m"));
    CSnsrTmp tmp;
    tmp.m_temp = 21.5f;
    EXPECT_EQ(tmp.GetString(0), CString(u"21.50\u00B0C"));
    CSnsrSOS sos;
    EXPECT_EQ(sos.GetString(0), CString(u"1500.0"));
    CSnsrGyro g;
    g.m_heading = 123.5f;
    EXPECT_EQ(g.GetString(0), CString(u" 123.50\u00B0T"));

    CSnsrZ z;
    z.m_depth = 12.5f;
    EXPECT_EQ(z.GetString(0), CString(u"  12.50m"));
    z.m_rawUnits = 1;
    EXPECT_EQ(z.GetString(0), CString(u"  12.50"));

    CSnsrMru m;
    m.m_heave = 0.5f;
    m.m_pitch = 1.0f;
    m.m_roll = -1.0f;
    EXPECT_EQ(m.GetString(0), CString(u"  0.50mH,   1.00\u00B0P,  -1.00\u00B0R"));

    CSnsrVTG v;
    v.m_courseT = 359.0f;
    v.m_speedKts = 5.5f;
    EXPECT_EQ(v.GetString(0), CString(u"359.0\u00B0T 5.5kts"));

    CSnsrArt a;
    a.m_angle = 45.0f;
    a.m_angleLo = -90.0f;
    a.m_angleHi = 90.0f;
    EXPECT_EQ(a.GetString(0), CString(u"RX: 45.00\u00B0 (-90.00\u00B0- 90.00\u00B0)"));
    a.m_axis = 1;
    EXPECT_EQ(a.GetString(0).Left(3), CString(u"RY:"));
    a.m_axis = 2;
    EXPECT_EQ(a.GetString(0).Left(3), CString(u"RZ:"));
    a.m_axis = 3;
    EXPECT_TRUE(a.GetString(0).IsEmpty());
    a.m_axis = -1;
    EXPECT_TRUE(a.GetString(0).IsEmpty());

    CSnsrTime t;
    t.m_zda.SetTime(2024, 2, 29, 13, 5, 9, 0.0);
    t.m_zoneHr = 2;
    t.m_zoneMin = 30;
    EXPECT_EQ(t.GetString(0), CString(u"2024/02/29 13:05:09......., 2-30"));

    CSnsrClt c;
    EXPECT_TRUE(c.GetString(0).IsEmpty());
    c.m_items.Append(new CStrDbl{u"depth", 12.5});
    EXPECT_EQ(c.GetString(0), CString(u"depth:12.5"));
    c.m_items.Append(new CStrDbl{u"n", 1e-7});
    c.m_items.Append(new CStrDbl{u"big", 1234567.0});
    EXPECT_EQ(c.GetString(0), CString(u"depth:12.5, n:1e-07, big:1.23457e+06"));
}

TEST(SnsrText, LengthsAndTemperaturesFollowTheUsersUnits)
{
    Units feet(1, 1);
    CSnsrAlt alt;
    alt.m_alt = 3.048f;
    EXPECT_EQ(alt.GetString(0), CString(u"10.00ft"));
    CSnsrZ z;
    z.m_depth = 3.048f;
    EXPECT_EQ(z.GetString(0), CString(u"  10.00ft"));
    z.m_rawUnits = 1;  // the plain number, whatever the user's units
    EXPECT_EQ(z.GetString(0), CString(u"   3.05"));
    CSnsrTmp tmp;
    tmp.m_temp = 100.0f;
    EXPECT_EQ(tmp.GetString(0), CString(u"212.00\u00B0F"));
}

TEST(SnsrPressure, DepthAroundTheAtmosphereColumn)
{
    // Water units: the absolute column less 10.1972 m.
    EXPECT_NEAR(Pressure(10.1972f, u"mH2O").GetDepthInMetres(), 0.0, 1e-6);
    EXPECT_NEAR(Pressure(10.19f, u"mH2O").GetDepthInMetres(), -0.0072, 1e-6);
    EXPECT_NEAR(Pressure(10.0f, u"mH2O").GetDepthInMetres(), -0.1972, 1e-6);
    for (const char16_t* u : {u"mWS", u"mWK", u"mWG", u"mWC"})
        EXPECT_DOUBLE_EQ(Pressure(30.0f, u).GetDepthInMetres(), 30.0 - 10.1972);
    EXPECT_EQ(Pressure(10.1972f, u"mH2O").GetString(0), CString(u"10.20mH2O (0.00m)"));
    EXPECT_EQ(Pressure(10.19f, u"mH2O").GetString(0), CString(u"10.19mH2O (0.00m)"));
    EXPECT_EQ(Pressure(10.0f, u"mH2O").GetString(0), CString(u"10.00mH2O (-0.20m)"));

    // Pressure units: gauge bar as the same water column.
    EXPECT_DOUBLE_EQ(Pressure(2.0f, u"bar").GetDepthInMetres(), 10.1972);
    EXPECT_DOUBLE_EQ(Pressure(1000.0f, u"mbar").GetDepthInMetres(), 0.0);
    EXPECT_DOUBLE_EQ(Pressure(3000.0f, u"hPa").GetDepthInMetres(), 2.0 * 10.1972);
    EXPECT_DOUBLE_EQ(Pressure(200000.0f, u"Pa").GetDepthInMetres(), (200000.0 * 1e-5 - 1.0) * 10.1972);
    EXPECT_DOUBLE_EQ(Pressure(250.0f, u"kPa").GetDepthInMetres(), (250.0 * 0.01 - 1.0) * 10.1972);
    EXPECT_DOUBLE_EQ(Pressure(0.5f, u"MPa").GetDepthInMetres(), 4.0 * 10.1972);
    EXPECT_EQ(Pressure(2.0f, u"bar").GetString(0), CString(u"2.00bar (10.20m)"));

    // Unknown units, case included, give the plain value.
    EXPECT_EQ(Pressure(1500.0f, u"MBAR").GetDepthInMetres(), 1500.0);
    EXPECT_EQ(Pressure(12.5f, u"").GetDepthInMetres(), 12.5);
    // Only values above -0.01 are shown as the surface.
    EXPECT_EQ(Pressure(-0.004f, u"").GetString(0), CString(u"-0.00 (0.00m)"));  // the pressure prints as it is
    EXPECT_EQ(Pressure(-0.02f, u"").GetString(0), CString(u"-0.02 (-0.02m)"));
}

TEST(SnsrPressure, TemperatureAndItsText)
{
    EXPECT_EQ(Pressure(0, u"", 12.5f, u"\u00B0C").GetTemperatureInCelsius(), 12.5);
    EXPECT_DOUBLE_EQ(Pressure(0, u"", 212.0f, u"\u00B0F").GetTemperatureInCelsius(), 100.0);
    EXPECT_NEAR(Pressure(0, u"", 273.15f, u"K").GetTemperatureInCelsius(), 0.0, 1e-5);
    EXPECT_EQ(Pressure(0, u"", 7.0f, u"C").GetTemperatureInCelsius(), 7.0);
    EXPECT_EQ(Pressure(0, u"", 7.0f, u"").GetTemperatureInCelsius(), 7.0);

    EXPECT_EQ(Pressure(12.0f, u"mH2O", 4.5f, u"\u00B0C").GetString(0),
              CString(u"12.00mH2O (1.80m) 4.50\u00B0C"));
    // No unit, no temperature, whatever the value.
    EXPECT_EQ(Pressure(12.0f, u"mH2O", 99.0f, u"").GetString(0), CString(u"12.00mH2O (1.80m)"));
}
