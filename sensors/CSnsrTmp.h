#pragma once
// CSnsrTmp: a water temperature (type 17).
#include "sensors/CSnsrInf.h"

class CSnsrTmp : public CSnsrInf {
public:
    float m_temp = 0.0f;  // degrees Celsius

    CSnsrTmp() { m_type = tTemp; }
    CSnsrTmp(const CSnsrTmp&) = default;
    CSnsrTmp& operator=(const CSnsrTmp&) = default;
    ~CSnsrTmp() override = default;

    // Head, then f32 m_temp.
    void Serialize(CArchive& ar) override;
    // "%3.2lf" of m_temp in the user's temperature unit, with its symbol.
    CString GetString(unsigned int nFlags = 0) const override;
};
