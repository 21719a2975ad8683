#pragma once
// CTmVal: one point of a tide table (CTideObj), a plain pair of a time and a
// height.
#include "core/CList_Mgd.h"

class CTmVal {
public:
    double m_tm = 0.0;   // time, seconds of CTm80 (since 1970-01-01 UTC)
    double m_val = 0.0;  // tide height, metres

    CTmVal() = default;
    CTmVal(double tm, double val) : m_tm(tm), m_val(val) {}
};

// The table's list type is compiled complete into the library (CTmVal.cpp);
// users link to that copy.
extern template class CList_Mgd<CTmVal>;
