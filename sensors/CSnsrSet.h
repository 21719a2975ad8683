#pragma once
// CSnsrSet: a settings message (type 11, "Settings"). It has nothing but the
// common head: it stores the head alone and shows m_raw.
#include "sensors/CSnsrInf.h"

class CSnsrSet : public CSnsrInf {
public:
    CSnsrSet() { m_type = tSettings; }
    CSnsrSet(const CSnsrSet&) = default;
    CSnsrSet& operator=(const CSnsrSet&) = default;
    ~CSnsrSet() override = default;
};
