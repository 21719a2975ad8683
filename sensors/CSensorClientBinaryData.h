#pragma once
// CSensorClientBinaryData: an opaque block of bytes from a client (type 19,
// "Client Binary"). Made by CSnsrInf::Create(19) alone; it owns its block and
// cannot be copied (CSnsrInf::CreateCopy refuses it).
#include "sensors/CSnsrInf.h"

class CSensorClientBinaryData : public CSnsrInf {
public:
    UINT m_size = 0;          // bytes in m_data
    BYTE* m_data = nullptr;   // owned block of m_size bytes (array new); null when m_size is 0

    // Releases the block with array delete.
    ~CSensorClientBinaryData() override;
    CSensorClientBinaryData(const CSensorClientBinaryData&) = delete;
    CSensorClientBinaryData& operator=(const CSensorClientBinaryData&) = delete;

    // Head, then u32 m_size and bytes(m_size). Loading keeps the old block
    // when the stored size equals m_size; otherwise it releases it and makes
    // a new one (none for 0). A size larger than what the archive holds
    // raises CArchiveException cause 3 before anything is released or
    // allocated, leaving m_size and m_data consistent.
    void Serialize(CArchive& ar) override;
    // The text is m_raw (inherited).

private:
    friend class CSnsrInf;
    CSensorClientBinaryData() { m_type = tClientBinary; }
};
