#include "sensors/CSnsStreamSCADA.h"

#include "core/platform/CZanWnd.h"

void CSnsStreamSCADA::Serialize(CArchive&) {}

CString CSnsStreamSCADA::GetString(unsigned int) const
{
    auto single = [](double v) { return static_cast<double>(static_cast<float>(v)); };
    const CString text = CString::Fmt(u"%f, %f, %f, %f, %f, %f", single(m_scadaExtra[0]), single(m_scadaExtra[1]),
                                      single(m_scadaExtra[2]), single(m_scadaVals[2]), single(m_scadaVals[3]),
                                      m_scadaVals[4]);
    // The panels take the record as data; they don't keep it past the call.
    CZanWnd::DataMsg(12001, const_cast<CSnsStreamSCADA*>(this));
    return text;
}

void CSnsStreamSCADA::Interpolate(double, CSnsStreamSCADA*, CSnsStreamSCADA*, CSnsStreamSCADA*) {}
