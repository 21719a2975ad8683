#pragma once
// CSnsStreamSCADA: a carrier of a live SCADA stream (type 12). It isn't a
// value for the grid or the recording: it has no name in CSnsrInf::s_types,
// the factory refuses it, and it is never stored. Showing it as text hands it
// to the panels as data message 12001.
#include "sensors/CSnsrInf.h"

class CSnsStreamSCADA : public CSnsrInf {
public:
    double m_scadaVals[5] = {};   // stream values; the last three show in the text
    LONG m_scadaCount = 0;        // copied only
    double m_scadaExtra[3] = {};  // stream values; the first three of the text
    CString m_streamNames[2];     // copied only
    BYTE m_streamFlag = 0;        // copied only
    CString m_streamText;         // copied only
    BYTE m_streamFlag2 = 0;       // copied only
    BYTE m_streamFlag3 = 0;       // copied only

    CSnsStreamSCADA() { m_type = tSCADA; }
    CSnsStreamSCADA(const CSnsStreamSCADA&) = default;
    CSnsStreamSCADA& operator=(const CSnsStreamSCADA&) = default;
    ~CSnsStreamSCADA() override = default;

    // Writes and reads nothing, not even the common head.
    void Serialize(CArchive& ar) override;
    // "%f, %f, %f, %f, %f, %f" of the three m_scadaExtra and m_scadaVals[2],
    // [3], [4], the first five rounded to single precision first. Then the
    // record goes to CZanWnd::DataMsg(12001, this): each call sends it once.
    CString GetString(unsigned int nFlags = 0) const override;

    // Exists for the host's interface and does nothing.
    static void Interpolate(double t, CSnsStreamSCADA* a, CSnsStreamSCADA* b, CSnsStreamSCADA* out);
};
