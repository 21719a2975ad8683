#include "environment/CTideObj.h"

#include "core/CZSet.h"
#include "core/platform/CFile.h"
#include "core/platform/CFileDialog.h"
#include "core/platform/CTm80.h"
#include "core/platform/ML.h"
#include "core/platform/Zan.h"

#include <cmath>
#include <cstdio>
#include <system_error>

CRuntimeClass CTideObj::classCTideObj = CRuntimeClass::Of<CTideObj, CZanWnd>("CTideObj");
CList_Ptr<CTideObj*> CTideObj::s_tides;

namespace {

// How a point's time is written to the console and to the settings lines.
constexpr char16_t kTimeFmt[] = u"%d/%m/%Y %H:%M:%S";

// The line forms of a tide file, in the order they are tried; the first
// three carry seconds.
constexpr const char* kForms[6] = {
    "%d/%d/%d,%d:%d:%d,%lf", "%d/%d/%d %d:%d:%d,%lf", "%d/%d/%d %d:%d:%d %lf",
    "%d/%d/%d,%d:%d,%lf",    "%d/%d/%d %d:%d,%lf",    "%d/%d/%d %d:%d %lf",
};

// CTm80 seconds of a calendar time read from a line, two-digit years being
// of this century.
double LineTime(int day, int month, int year, int hour, int minute, int second)
{
    if (year < 100) year += 2000;
    CTm80 t;
    t.SetTime(year, month, day, hour, minute, second, 0.0);
    return t.m_t;
}

// Scans one form: true when every field was read.
bool ScanForm(const std::string& s, int form, double& t, double& v)
{
    int day = 0, month = 0, year = 0, hour = 0, minute = 0, second = 0;
    double h = 0.0;
    const bool withSeconds = form < 3;
    const int n = withSeconds
        ? std::sscanf(s.c_str(), kForms[form], &day, &month, &year, &hour, &minute, &second, &h)
        : std::sscanf(s.c_str(), kForms[form], &day, &month, &year, &hour, &minute, &h);
    if (n != (withSeconds ? 7 : 6)) return false;
    t = LineTime(day, month, year, hour, minute, second);
    v = h;
    return true;
}

}  // namespace

CTideObj::CTideObj()
{
    m_strName = u"Default";
    s_tides.AddTail(this);
}

CTideObj::~CTideObj()
{
    while (CZanPtr* pos = s_tides.Find(this, nullptr)) s_tides.RemoveAt(pos);
    ClearCache();
    RemoveAll();
}

CTideObj& CTideObj::operator=(const CTideObj& src)
{
    if (this == &src) return *this;
    CZanWnd::operator=(src);
    CList_Mgd<CTmVal>::operator=(src);
    m_colour = src.m_colour;
    m_fileName = src.m_fileName;
    m_shift = src.m_shift;
    m_offset = src.m_offset;
    m_scale = src.m_scale;
    m_bGraph = src.m_bGraph;
    ClearCache();
    return *this;
}

double CTideObj::Interpolate(const CTmVal& lo, const CTmVal& hi, double tm) const
{
    const double dt = hi.m_tm - lo.m_tm;
    if (m_bGraph) {
        if (dt == 0.0) return lo.m_val;
        return lo.m_val + (tm - lo.m_tm) / dt * (hi.m_val - lo.m_val);
    }
    // Half a sine wave from one turn of the tide to the next: flat at both.
    const double a = dt == 0.0 ? -ML::pi_2 : -ML::pi_2 + (tm - lo.m_tm) / dt * ML::pi;
    return lo.m_val + (hi.m_val - lo.m_val) * (std::sin(a) + 1.0) * 0.5;
}

double CTideObj::GetRaw(double tm)
{
    if (IsEmpty()) return kNoTide;
    if (tm < GetHead()->m_tm || tm > GetTail()->m_tm) return kNoTide;

    if (m_pLo && m_pHi && m_pLo->m_tm <= tm && tm < m_pHi->m_tm) return Interpolate(*m_pLo, *m_pHi, tm);

    ClearCache();
    bool later = false;
    for (CZanPtr* pos = GetHeadPos(); pos;) {
        CTmVal* p = GetNext(pos);
        m_pHi = p;
        if (tm < p->m_tm) {
            later = true;
            break;
        }
        // A point no later than the one kept is out of order: passed over.
        if (!m_pLo || p->m_tm > m_pLo->m_tm) m_pLo = p;
    }
    if (!later) return kNoTide;
    if (!m_pLo || !(m_pLo->m_tm < m_pHi->m_tm)) return kNoTide;
    return Interpolate(*m_pLo, *m_pHi, tm);
}

double CTideObj::GetTide(double tm)
{
    const double raw = GetRaw(tm + m_shift);
    if (raw == kNoTide) return kNoTide;
    return raw * m_scale + m_offset;
}

bool CTideObj::ParseLine(const CString& line, double& t, double& v)
{
    const std::string s = line.Utf8();
    for (int form = 0; form < 6; ++form)
        if (ScanForm(s, form, t, v)) return true;
    return false;
}

void CTideObj::ReadTHL(CString file)
{
    if (file.IsEmpty()) return;
    CFileStatus status;
    if (!CFile::GetStatus(file, status) || (status.m_attribute & 0x10)) return;
    CStdioFile f;
    if (!f.Open(file, CFile::modeRead | CFile::typeText)) return;

    RemoveAll();
    ClearCache();
    CString line;
    try {
        while (f.ReadString(line)) {
            double t = 0.0, v = 0.0;
            if (!ParseLine(line, t, v)) continue;
            AddTail(new CTmVal(t, v));
            Zan::Console(0, u"%s: %s", CTm80(t).FormatGmt(kTimeFmt), line);
        }
    } catch (const CFileException&) {
        // A read error ends the file: the points read so far stay.
    }
    f.Close();
}

void CTideObj::Browse()
{
    CFileDialog dlg(TRUE, nullptr, u"*.csv", OFN_HIDEREADONLY | OFN_FILEMUSTEXIST,
                    u"Csv Files (*.csv)|*.csv|Tid Files (*.tid)|*.tid|All Files|*.*||");
    dlg.m_strTitle = u"Tide file to Load";
    dlg.m_strInitialDir = m_fileName;
    if (dlg.DoModal() != IDOK) return;
    m_fileName = dlg.GetPathName();
    ReadTHL(m_fileName);
}

void CTideObj::Settings(CZSetObj& set)
{
    unsigned long colour = m_colour;
    set.Item(u"Colour", colour);
    m_colour = static_cast<DWORD>(colour);
    set.Item(u"FName", m_fileName);
    set.Item(u"Shift", m_shift);
    set.Item(u"Offset", m_offset);
    set.Item(u"Scale", m_scale);
    set.Item(u"Graph", m_bGraph);

    if (set.IsStoring()) {
        for (CZanPtr* pos = GetHeadPos(); pos;) {
            const CTmVal* p = GetNext(pos);
            set.Data(u"%s,%1.2lf", CTm80(p->m_tm).FormatGmt(kTimeFmt), p->m_val);
        }
        return;
    }

    RemoveAll();
    ClearCache();
    const std::string form = "%d/%d/%d %d:%d:%d,%lf";
    for (CZanPtr* pos = set.m_data.GetHeadPos(); pos;) {
        const CString* line = set.m_data.GetNext(pos);
        int day = 0, month = 0, year = 0, hour = 0, minute = 0, second = 0;
        double h = 0.0;
        if (std::sscanf(line->Utf8().c_str(), form.c_str(), &day, &month, &year, &hour, &minute, &second, &h) != 7)
            continue;
        AddTail(new CTmVal(LineTime(day, month, year, hour, minute, second), h));
    }
}

void CTideObj::SetupCtrls()
{
    InsText(80, u"Tide File", 0, nullptr);
    InsCtrl(152, 32, m_fileName, nullptr);
    InsBtn(16, u"...", 0, this, static_cast<ZanHandler>(&CTideObj::Browse), nullptr);
    NewLn();
    InsText(80, u"Phase Shift (')", 0, nullptr);
    // Shown in minutes, held in seconds.
    CZCtrl* shift = InsCtrl(50, 64, m_shift, nullptr);
    shift->m_scale = 0.016666666666666666;
    shift->Update(0);
    NewLn();
    InsText(80, u"Datum Offset (m)", 0, nullptr);
    InsCtrl(50, 64, m_offset, nullptr);
    NewLn();
    InsText(80, u"Datum Scale", 0, nullptr);
    InsCtrl(50, 64, m_scale, nullptr);
    NewLn();
    InsText(80, u"Use Graph", 0, nullptr);
    InsCtrl(16, 256, m_bGraph, nullptr);
    NewLn();
}

CTideObj* CTideObj::GetTideObj(const CString& name)
{
    for (CZanPtr* pos = s_tides.GetHeadPos(); pos;) {
        CTideObj* p = s_tides.GetNext(pos);
        if (p->m_strName == name) return p;
    }
    return nullptr;
}
