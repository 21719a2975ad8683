#include "sensors/CSnsrInf.h"

#include "sensors/CSensorClientBinaryData.h"
#include "sensors/CSnsrAlt.h"
#include "sensors/CSnsrArt.h"
#include "sensors/CSnsrClt.h"
#include "sensors/CSnsrGyro.h"
#include "sensors/CSnsrMarker.h"
#include "sensors/CSnsrMru.h"
#include "sensors/CSnsrPos.h"
#include "sensors/CSnsrPressure.h"
#include "sensors/CSnsrSOS.h"
#include "sensors/CSnsrSet.h"
#include "sensors/CSnsrTime.h"
#include "sensors/CSnsrTmp.h"
#include "sensors/CSnsrVTG.h"
#include "sensors/CSnsrZ.h"

#include <new>

CString CSnsrInf::s_types[CSnsrInf::s_nTypes] = {
    u"Raw",    u"Geo Position", u"Heading", u"Motion",       u"Depth", u"Articulation", u"SOS",
    u"ZDA Time", u"Altitude",   u"Client",  u"Course/Speed", u"Settings", u"",        u"",
    u"Marker", u"PPS",          u"Annotate", u"Temperature", u"Pressure", u"Client Binary",
};

void CSnsrInf::Serialize(CArchive& ar)
{
    if (ar.IsStoring()) ar << m_type << m_bank << m_raw << m_aux << m_time;
    else ar >> m_type >> m_bank >> m_raw >> m_aux >> m_time;
}

CString CSnsrInf::GetString(unsigned int) const { return m_raw; }

CSnsrInf* CSnsrInf::Create(int type)
{
    switch (static_cast<unsigned int>(type)) {
    case tRaw:
    case tPPS:
    case tAnnotate: return new (std::nothrow) CSnsrInf;
    case tPos: return new (std::nothrow) CSnsrPos;
    case tGyro: return new (std::nothrow) CSnsrGyro;
    case tMru: return new (std::nothrow) CSnsrMru;
    case tDepth: return new (std::nothrow) CSnsrZ;
    case tArt: return new (std::nothrow) CSnsrArt;
    case tSOS: return new (std::nothrow) CSnsrSOS;
    case tTime: return new (std::nothrow) CSnsrTime;
    case tAlt: return new (std::nothrow) CSnsrAlt;
    case tClient: return new (std::nothrow) CSnsrClt;
    case tVTG: return new (std::nothrow) CSnsrVTG;
    case tSettings: return new (std::nothrow) CSnsrSet;
    case tMarker: return new (std::nothrow) CSnsrMarker;
    case tTemp: return new (std::nothrow) CSnsrTmp;
    case tPressure: return new (std::nothrow) CSnsrPressure;
    case tClientBinary: return new (std::nothrow) CSensorClientBinaryData;
    default: return nullptr;  // 12 and 13 (stream carriers) and anything above 19
    }
}

namespace {
// A copy of src as a T, or null when src is not a T (its m_type lies about
// its class, as after a record was loaded into the wrong object).
template <class T>
CSnsrInf* CopyAs(const CSnsrInf* src)
{
    const T* p = dynamic_cast<const T*>(src);
    return p ? new (std::nothrow) T(*p) : nullptr;
}
} // namespace

CSnsrInf* CSnsrInf::CreateCopy(const CSnsrInf* src)
{
    switch (src->m_type) {
    case tRaw:
    case tPPS:
    case tAnnotate: return new (std::nothrow) CSnsrInf(*src);  // the base part of whatever src is
    case tPos: return CopyAs<CSnsrPos>(src);
    case tGyro: return CopyAs<CSnsrGyro>(src);
    case tMru: return CopyAs<CSnsrMru>(src);
    case tDepth: return CopyAs<CSnsrZ>(src);
    case tArt: return CopyAs<CSnsrArt>(src);
    case tSOS: return CopyAs<CSnsrSOS>(src);
    case tTime: return CopyAs<CSnsrTime>(src);
    case tAlt: return CopyAs<CSnsrAlt>(src);
    case tClient: return CopyAs<CSnsrClt>(src);
    case tVTG: return CopyAs<CSnsrVTG>(src);
    case tSettings: return CopyAs<CSnsrSet>(src);
    case tMarker: return CopyAs<CSnsrMarker>(src);
    case tTemp: return CopyAs<CSnsrTmp>(src);
    case tPressure: return CopyAs<CSnsrPressure>(src);
    default: return nullptr;  // 12, 13, and 19 and above: the binary block is not copied
    }
}
