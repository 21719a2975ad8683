#include "environment/CSpdSnd.h"

#include "core/CZSet.h"
#include "sensors/CSnsrSOS.h"

CRuntimeClass CSpdSnd::classCSpdSnd = CRuntimeClass::Of<CSpdSnd, CZanWnd>("CSpdSnd");
CList_Ptr<CSpdSnd*> CSpdSnd::s_spdSnd;

namespace {
// Type byte of a speed-of-sound record (row "SOS" of CSnsrInf::s_types).
constexpr BYTE kSosType = 6;
// What the value fields accept, whatever SetMinMax sets later.
constexpr double kFieldLo = 1350.0;
constexpr double kFieldHi = 1600.0;
}  // namespace

CSpdSnd::CSpdSnd()
{
    m_stat.SetSize(25);
    m_nFlag = 1;

    ShiftY(5, 5);
    InsText(60, u"Xd SOS", 0, nullptr);
    InsCtrl(50, 64, m_xdSos, nullptr)->SetRange(kFieldLo, kFieldHi);
    ShiftX(5);
    InsText(60, u"Avg SOS", 0, nullptr);
    InsCtrl(50, 64, m_avgSos, nullptr)->SetRange(kFieldLo, kFieldHi);

    ShiftY(18, 5);
    CZCtrl* manual = InsCtrl(112, 256, m_useManual, nullptr);
    manual->m_strLabel = u"Use Manual SOS";
    manual->SetCallback(this, static_cast<ZanHandler>(&CSpdSnd::CtrlChanged));
    ShiftX(5);
    InsText(60, u"Man SOS", 0, nullptr);
    InsCtrl(50, 64, m_manSos, nullptr)->SetRange(kFieldLo, kFieldHi);

    ShiftY(18, 5);
    InsCtrl(112, 256, m_live, nullptr)->m_strLabel = u"Live Update";
    ShiftX(5);
    InsText(60, u"Bank", 0, nullptr);
    if (auto* bank = dynamic_cast<CZCombo*>(InsCtrl(50, 512, m_bank, nullptr))) {
        bank->LoadIndex(8);
        bank->Update(0);  // show the bank now that the list exists
    }
    ShiftY(18, 5);

    s_spdSnd.AddTail(this);
    s_snsrRx.AddTail(this);
    m_strTitle = u"Speed of Sound";
}

CSpdSnd::~CSpdSnd()
{
    // A dead panel must not be found by name nor fed readings; the base's
    // destructor takes it out of s_snsrRx.
    while (CZanPtr* pos = s_spdSnd.Find(this, nullptr)) s_spdSnd.RemoveAt(pos);
}

CSpdSnd& CSpdSnd::operator=(const CSpdSnd& src)
{
    if (this == &src) return *this;
    CZanWnd::operator=(src);
    m_xdSos = src.m_xdSos;
    m_avgSos = src.m_avgSos;
    m_useManual = src.m_useManual;
    m_manSos = src.m_manSos;
    m_live = src.m_live;
    m_bank = src.m_bank;
    m_sosTime = src.m_sosTime;
    m_minSos = src.m_minSos;
    m_maxSos = src.m_maxSos;
    m_stat = src.m_stat;
    return *this;
}

double CSpdSnd::GetAvg() { return m_avgSos; }

double CSpdSnd::GetXd(double) { return m_xdSos; }

void CSpdSnd::GetMinMax(double& lo, double& hi)
{
    lo = m_minSos;
    hi = m_maxSos;
}

void CSpdSnd::SetMinMax(double lo, double hi)
{
    m_minSos = lo;
    m_maxSos = hi;
}

void CSpdSnd::OnSnsrMsg(int, void* pRec)
{
    const auto* rec = static_cast<const CSnsrInf*>(pRec);
    if (!rec || rec->m_type != kSosType || rec->m_bank != static_cast<BYTE>(m_bank)) return;
    // A record that claims the type without being of its class has no speed.
    const auto* sos = dynamic_cast<const CSnsrSOS*>(rec);
    if (!sos) return;
    m_stat.SetValue(sos->m_sos);
    if (m_useManual || !m_live) return;

    const double avg = m_stat.GetAvg();
    if (!InRange(avg)) {
        m_sosTime = 0.0;
        return;
    }
    m_avgSos = avg;
    m_xdSos = avg;
    m_sosTime = rec->m_time;
    UpdateCtrls();
}

void CSpdSnd::SetSOS(double sos, double tm)
{
    if (m_useManual) return;
    if (!InRange(sos)) {
        m_sosTime = 0.0;
        return;
    }
    m_avgSos = sos;
    m_xdSos = sos;
    m_sosTime = tm;
}

void CSpdSnd::CtrlChanged()
{
    if (!m_useManual && m_live) {
        const double avg = m_stat.GetAvg();
        if (InRange(avg)) {
            m_avgSos = avg;
            m_xdSos = avg;
        }
    } else {
        m_avgSos = m_manSos;
        m_xdSos = m_manSos;
    }
    UpdateCtrls();
}

void CSpdSnd::Settings(CZSetObj& set)
{
    CZanWnd::Settings(set);
    set.Item(u"SosXd", m_xdSos);
    set.Item(u"SosAvg", m_avgSos);
    // The switch is "SosManual" and the speed "SosUseManual": the host's
    // saved files have them so.
    set.Item(u"SosManual", m_useManual);
    set.Item(u"SosUseManual", m_manSos);
    set.Item(u"SosLive", m_live);
    set.Item(u"SosBank", m_bank);
}

CSpdSnd* CSpdSnd::GetSpdSnd(const CString& name)
{
    for (CZanPtr* pos = s_spdSnd.GetHeadPos(); pos;) {
        CSpdSnd* p = s_spdSnd.GetNext(pos);
        if (p->m_strName == name) return p;
    }
    return nullptr;
}

void CSpdSnd::LoadSet(CZSet& set, int create)
{
    CZSetCol* col = set.GetCol(u"SpdSnd");
    if (!col || col->IsEmpty()) return;
    for (CZanPtr* pos = col->GetHeadPos(); pos;) {
        CZSetObj* obj = col->GetNext(pos);
        CSpdSnd* panel = GetSpdSnd(obj->m_strName);
        if (!panel && create) {
            panel = new CSpdSnd;  // the host's from here on, found through s_spdSnd
            panel->m_strName = obj->m_strName;
        }
        if (panel) panel->Settings(*obj);
    }
}

void CSpdSnd::SaveSet(CZSet& set)
{
    CZSetCol* col = set.AddCol(u"SpdSnd");
    for (CZanPtr* pos = s_spdSnd.GetHeadPos(); pos;) {
        CSpdSnd* panel = s_spdSnd.GetNext(pos);
        panel->Settings(*col->AddObj(panel->m_strName, u"No Data"));
    }
}
