#include "targets/CTgt.h"

#include "core/platform/CArchive.h"

void CTgt::SerializeTgt(CArchive& ar)
{
    CV3::Serialize(ar);
    SerializeRngBrg(ar);
}

void CTgt::SerializeRngBrg(CArchive& ar)
{
    if (ar.IsStoring())
        ar << m_rngK << m_brgK << m_tgtValue << m_level << m_kind << m_tgtByte;
    else
        ar >> m_rngK >> m_brgK >> m_tgtValue >> m_level >> m_kind >> m_tgtByte;
}

template class CList_Ptr<CTgt*>;
