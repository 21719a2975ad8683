#include "geo/CSphd.h"

#include "core/platform/CArchive.h"

int CSphd::operator==(const CSphd& o) const
{
    return m_name.Compare(o.m_name) == 0 && m_semiMajor == o.m_semiMajor && m_semiMinor == o.m_semiMinor &&
           m_ecc2 == o.m_ecc2 && m_invFlat == o.m_invFlat;
}

void CSphd::Serialize(CArchive& ar)
{
    if (ar.IsStoring())
        ar << m_name << m_semiMajor << m_semiMinor << m_ecc2 << m_invFlat;
    else
        ar >> m_name >> m_semiMajor >> m_semiMinor >> m_ecc2 >> m_invFlat;
}
