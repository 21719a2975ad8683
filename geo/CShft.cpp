#include "geo/CShft.h"

#include "core/platform/CArchive.h"

int CShft::operator==(const CShft& o) const
{
    return m_name.Compare(o.m_name) == 0 && m_dX == o.m_dX && m_dY == o.m_dY && m_dZ == o.m_dZ &&
           m_rotX == o.m_rotX && m_rotY == o.m_rotY && m_rotZ == o.m_rotZ && m_ppm == o.m_ppm;
}

void CShft::Serialize(CArchive& ar)
{
    if (ar.IsStoring())
        ar << m_name << m_dX << m_dY << m_dZ << m_rotX << m_rotY << m_rotZ << m_ppm;
    else
        ar >> m_name >> m_dX >> m_dY >> m_dZ >> m_rotX >> m_rotY >> m_rotZ >> m_ppm;
}
