#pragma once
// CSnsStreamStallPing: a carrier of the stall-ping stream (type 13). Like
// CSnsStreamSCADA it has no name in CSnsrInf::s_types, the factory refuses
// it and it is never stored. Showing it as text hands it to the panels as
// data message 12003.
#include "sensors/CSnsStreamSCADA.h"

class CSnsStreamStallPing : public CSnsrInf {
public:
    BYTE m_stallFlag = 0;       // copied only
    BYTE m_stallCount = 0;      // the number of the text
    CString m_streamNames[2];   // copied only
    BYTE m_streamFlag = 0;      // copied only
    CString m_streamText;       // copied only

    CSnsStreamStallPing() { m_type = tStallPing; }
    CSnsStreamStallPing(const CSnsStreamStallPing&) = default;
    CSnsStreamStallPing& operator=(const CSnsStreamStallPing&) = default;
    ~CSnsStreamStallPing() override = default;

    // Writes and reads nothing, not even the common head.
    void Serialize(CArchive& ar) override;
    // "%d" of m_stallCount. Then the record goes to
    // CZanWnd::DataMsg(12003, this): each call sends it once.
    CString GetString(unsigned int nFlags = 0) const override;

    // Exists for the host's interface (with the SCADA record's pointers, as
    // the interface has it) and does nothing.
    static void Interpolate(double t, CSnsStreamSCADA* a, CSnsStreamSCADA* b, CSnsStreamSCADA* out);
};
