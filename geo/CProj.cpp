#include "geo/CProj.h"

#include "core/platform/CArchive.h"
#include "core/platform/ML.h"

#include <cmath>

int CProj::operator==(const CProj& o) const
{
    return m_name.Compare(o.m_name) == 0 && std::fabs(m_latOrigin - o.m_latOrigin) < ML::threshold &&
           std::fabs(m_lonOrigin - o.m_lonOrigin) < ML::threshold && m_falseEast == o.m_falseEast &&
           m_falseNorth == o.m_falseNorth && m_scale == o.m_scale;
}

void CProj::Serialize(CArchive& ar)
{
    if (ar.IsStoring())
        ar << m_name << m_latOrigin << m_lonOrigin << m_falseEast << m_falseNorth << m_scale;
    else
        ar >> m_name >> m_latOrigin >> m_lonOrigin >> m_falseEast >> m_falseNorth >> m_scale;
}
