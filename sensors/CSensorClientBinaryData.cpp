#include "sensors/CSensorClientBinaryData.h"

CSensorClientBinaryData::~CSensorClientBinaryData() { delete[] m_data; }

void CSensorClientBinaryData::Serialize(CArchive& ar)
{
    CSnsrInf::Serialize(ar);
    if (ar.IsStoring()) {
        ar << m_size;
        ar.Write(m_data, m_size);
        return;
    }
    UINT n = 0;
    ar >> n;
    // Refuse a size the archive cannot hold before touching the block, so a
    // damaged record neither allocates it nor leaves m_size unlike m_data.
    ar.CheckAvailable(n);
    if (n != m_size) {
        delete[] m_data;
        m_data = nullptr;
        m_size = 0;
        if (n) m_data = new BYTE[n];
        m_size = n;
    }
    if (n) ar.Read(m_data, n);
}
