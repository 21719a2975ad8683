#include "sensors/CSnsrTmp.h"

#include "core/platform/Zan.h"

void CSnsrTmp::Serialize(CArchive& ar)
{
    CSnsrInf::Serialize(ar);
    if (ar.IsStoring()) ar << m_temp;
    else ar >> m_temp;
}

CString CSnsrTmp::GetString(unsigned int) const { return ZUnits::Get(ZUnits::Temperature, m_temp, u"%3.2lf", 1); }
