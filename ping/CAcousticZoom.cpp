#include "ping/CAcousticZoom.h"

#include "core/platform/CArchive.h"
#include "core/platform/CV3.h"

bool CAcousticZoom::SerializeAcousticZoom(CArchive& ar, unsigned short version)
{
    if (ar.IsStoring()) {
        ar << m_azHead << static_cast<BYTE>(m_azOn ? 1 : 0);
        if (!m_azOn) return false;
        ar << m_azArg1 << m_azArg2 << m_azDecim << m_azNumBeams << m_azFactor;
        return true;
    }

    ar >> m_azHead >> m_azOn;
    if (!m_azOn) return false;
    if (version == 1) {
        BYTE dropped = 0;
        ar >> dropped >> dropped;
    } else if (version >= 2) {
        ar >> m_azArg1 >> m_azArg2;
    }
    ar >> m_azDecim >> m_azNumBeams >> m_azFactor;
    if (version == 1) {
        CV3 dropped;  // the region's old reference point, no longer used
        dropped.Serialize(ar);
    }
    return true;
}
