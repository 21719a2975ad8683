#pragma once
// CSnsrPressure: pressure and temperature of one instrument, each in the
// instrument's own unit (type 18, "Pressure").
#include "sensors/CSnsrInf.h"

class CSnsrPressure : public CSnsrInf {
public:
    float m_pressure = 0.0f;  // in m_pressUnit
    CString m_pressUnit;      // as the instrument names it, e.g. "mH2O", "mbar"
    float m_tempVal = 0.0f;   // in m_tempUnit
    CString m_tempUnit;       // "°C", "°F", "K", ...; may be empty

    // Metres of fresh water per bar, the column that the water units take off
    // as the atmosphere.
    static constexpr double s_mPerBar = 10.1972;

    CSnsrPressure() { m_type = tPressure; }
    CSnsrPressure(const CSnsrPressure&) = default;
    CSnsrPressure& operator=(const CSnsrPressure&) = default;
    ~CSnsrPressure() override = default;

    // Head, then f32 m_pressure, string m_pressUnit, f32 m_tempVal, string
    // m_tempUnit.
    void Serialize(CArchive& ar) override;
    // "%3.2lf%s (%3.2lfm)" of pressure, unit and GetDepthInMetres (a depth
    // above -0.01 and not above 0 shows as 0.00), then " %3.2lf%s" of the
    // temperature and its unit when m_tempUnit is not empty.
    CString GetString(unsigned int nFlags = 0) const override;

    // Depth below the surface in metres of fresh water, by m_pressUnit
    // (compared exactly, case-sensitive):
    //  "mH2O", "mWS", "mWK", "mWG", "mWC": absolute water column, less
    //      10.1972 m for the atmosphere;
    //  "mbar", "hPa" (x 0.001), "bar", "Pa" (x 1e-5), "kPa" (x 0.01),
    //      "MPa" (x 10): absolute pressure in bar, less 1 bar, times 10.1972 m
    //      per bar, so both families give the same depth for the same pressure;
    //  anything else, empty included: m_pressure as it is.
    // Negative near the surface; no clamping here.
    double GetDepthInMetres() const;
    // m_tempVal in degrees Celsius by m_tempUnit: "°C" as it is, "°F"
    // (v - 32)/1.8, "K" v - 273.15; anything else as it is.
    double GetTemperatureInCelsius() const;
};
