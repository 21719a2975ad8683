#include "sensors/CSnsStreamStallPing.h"

#include "core/platform/CZanWnd.h"

void CSnsStreamStallPing::Serialize(CArchive&) {}

CString CSnsStreamStallPing::GetString(unsigned int) const
{
    const CString text = CString::Fmt(u"%d", m_stallCount);
    CZanWnd::DataMsg(12003, const_cast<CSnsStreamStallPing*>(this));
    return text;
}

void CSnsStreamStallPing::Interpolate(double, CSnsStreamSCADA*, CSnsStreamSCADA*, CSnsStreamSCADA*) {}
