#include "Nav.h"

#include <algorithm>
#include <cmath>

namespace zanrec {
namespace {
constexpr double kPi = 3.14159265358979323846;
constexpr double kR2D = 180.0 / kPi;
constexpr double kD2R = kPi / 180.0;
// Metres per degree on the sphere of the survey's small extent.
constexpr double kEarthR = 6371000.0;

template <class T>
std::unique_ptr<T> Make(double t, BYTE bank = 0)
{
    auto r = std::make_unique<T>();
    r->m_time = t;
    r->m_bank = bank;
    return r;
}

// The pair of records round t in a time-ordered run, and T::Interpolate.
template <class T>
bool InterpolateRun(const std::vector<const CSnsrInf*>& run, double t, T& out)
{
    if (run.empty()) return false;
    auto it = std::upper_bound(run.begin(), run.end(), t, [](double v, const CSnsrInf* r) { return v < r->m_time; });
    const T* a = nullptr;
    const T* b = nullptr;
    if (it == run.begin()) {
        a = static_cast<const T*>(*it);  // before the first record: it holds
    } else {
        a = static_cast<const T*>(*(it - 1));
        if (it != run.end()) b = static_cast<const T*>(*it);
    }
    T::Interpolate(t, a, b, &out);
    out.m_time = t;
    return true;
}

template <class T>
std::unique_ptr<CSnsrInf> InterpolateAs(const std::vector<const CSnsrInf*>& run, double t)
{
    auto out = std::make_unique<T>();
    if (!InterpolateRun(run, t, *out)) return nullptr;
    return out;
}
} // namespace

namespace {
// Reads the shipped database once and selects WGS84 with the UTM zone of
// `lon`; false when the database or the records are missing.
bool SelectUtm(double lat, double lon)
{
    if (Geo::sphds.IsEmpty()) {
        // Comment lines of the file are reported as unrecognised: keep the
        // console quiet while reading.
        auto old = Zan::SetSink([](Zan::Kind k, unsigned long, int, const CString&) { (void)k; });
        Geo::ReadDb(Geo::DefaultDbPath());
        Zan::SetSink(old);
    }
    // Held to the zones in floating point: a damaged longitude must not
    // reach the conversion to int (NaN takes zone 1).
    const double z = std::floor((lon + 180.0) / 6.0) + 1.0;
    const int zone = z >= 1.0 && z <= 60.0 ? static_cast<int>(z) : (z > 60.0 ? 60 : 1);
    CString name;
    name.Format(u"UTM_%d%c", zone, lat >= 0 ? u'N' : u'S');
    Geo::type = 0;
    Geo::pSphdP = Geo::GetSphd(CString(u"WGS84"));
    Geo::pProjP = Geo::GetProj(name);
    Geo::pShift = nullptr;
    return Geo::pSphdP && Geo::pProjP;
}
} // namespace

void GridRef::SetOrigin(double lat0, double lon0)
{
    m_lat0 = lat0;
    m_lon0 = lon0;
    m_bGeo = SelectUtm(lat0, lon0);
    if (m_bGeo) {
        CV3 g;
        m_bGeo = Geo::LLH_ENZ(CV3(lon0, lat0, 0.0), g, 0) == 1;
        m_e0 = g.x;
        m_n0 = g.y;
    }
}

void GridRef::ToLatLon(double x, double y, double& lat, double& lon) const
{
    if (m_bGeo) {
        CV3 g;
        Geo::ENZ_LLH(CV3(m_e0 + x, m_n0 + y, 0.0), g, 0);
        lat = g.y;
        lon = g.x;
        return;
    }
    lat = m_lat0 + y / kEarthR * kR2D;
    lon = m_lon0 + x / (kEarthR * std::cos(m_lat0 * kD2R)) * kR2D;
}

void GridRef::ToGrid(double lat, double lon, double& x, double& y) const
{
    if (m_bGeo) {
        CV3 g;
        Geo::LLH_ENZ(CV3(lon, lat, 0.0), g, 0);
        x = g.x - m_e0;
        y = g.y - m_n0;
        return;
    }
    y = (lat - m_lat0) * kD2R * kEarthR;
    x = (lon - m_lon0) * kD2R * kEarthR * std::cos(m_lat0 * kD2R);
}

std::vector<std::unique_ptr<CSnsrInf>> SynthNav(const Survey& s, const GridRef& ref, double t0, double t1)
{
    std::vector<std::unique_ptr<CSnsrInf>> out;
    auto every = [&](double hz, auto&& make) {
        const long n = static_cast<long>(std::floor((t1 - t0) * hz));
        for (long k = 0; k <= n; ++k) make(t0 + k / hz);
    };
    every(10.0, [&](double t) {
        const Pose p = s.PoseAt(t);
        auto r = Make<CSnsrPos>(t);
        ref.ToLatLon(p.x, p.y, r->m_geo.y, r->m_geo.x);
        out.push_back(std::move(r));
    });
    every(20.0, [&](double t) {
        auto r = Make<CSnsrGyro>(t);
        r->m_heading = static_cast<float>(std::fmod(s.PoseAt(t).heading * kR2D + 360.0, 360.0));
        out.push_back(std::move(r));
    });
    every(5.0, [&](double t) {  // a second compass, bank 1
        auto r = Make<CSnsrGyro>(t, 1);
        r->m_heading = static_cast<float>(std::fmod(s.PoseAt(t).heading * kR2D + 360.5, 360.0));
        out.push_back(std::move(r));
    });
    every(50.0, [&](double t) {
        const Pose p = s.PoseAt(t);
        auto r = Make<CSnsrMru>(t);
        r->m_pitch = static_cast<float>(p.pitch * kR2D);
        r->m_roll = static_cast<float>(p.roll * kR2D);
        r->m_heave = static_cast<float>(p.heave);
        out.push_back(std::move(r));
    });
    every(5.0, [&](double t) {
        const Pose p = s.PoseAt(t);
        auto z = Make<CSnsrZ>(t);
        z->m_depth = static_cast<float>(p.depth);
        out.push_back(std::move(z));
        auto z2 = Make<CSnsrZ>(t, 1);
        z2->m_depth = static_cast<float>(p.depth + 0.05);
        out.push_back(std::move(z2));
        auto a = Make<CSnsrAlt>(t);
        a->m_alt = static_cast<float>(p.altitude);
        out.push_back(std::move(a));
    });
    every(1.0, [&](double t) {
        const Pose p = s.PoseAt(t);
        auto v = Make<CSnsrSOS>(t);
        v->m_sos = static_cast<float>(p.sos);
        out.push_back(std::move(v));
        auto z = Make<CSnsrTime>(t);
        z->m_zda.m_t = std::floor(t);
        out.push_back(std::move(z));
        auto pr = Make<CSnsrPressure>(t);
        pr->m_pressure = static_cast<float>((p.depth + 10.1972 * 1.01325) / 10.1972 * 1000.0);  // absolute, mbar
        pr->m_pressUnit = CString(u"mbar");
        pr->m_tempVal = static_cast<float>(11.5 - 0.02 * p.depth);
        pr->m_tempUnit = CString(u"\u00B0C");
        out.push_back(std::move(pr));
    });
    std::stable_sort(out.begin(), out.end(), [](const auto& a, const auto& b) { return a->m_time < b->m_time; });
    return out;
}

void NavStore::Add(std::unique_ptr<CSnsrInf> rec)
{
    const int type = rec->m_type;
    m_recs[type].push_back(std::move(rec));
}

void NavStore::Finish()
{
    m_bank0.clear();
    for (auto& [type, run] : m_recs) {
        std::stable_sort(run.begin(), run.end(), [](const auto& a, const auto& b) { return a->m_time < b->m_time; });
        auto& r0 = m_bank0[type];
        for (const auto& r : run)
            if (r->m_bank == 0) r0.push_back(r.get());
    }
}

const std::vector<const CSnsrInf*>& NavStore::Run0(int type) const
{
    static const std::vector<const CSnsrInf*> none;
    auto it = m_bank0.find(type);
    return it == m_bank0.end() ? none : it->second;
}

const std::vector<std::unique_ptr<CSnsrInf>>& NavStore::Of(int type) const
{
    static const std::vector<std::unique_ptr<CSnsrInf>> none;
    auto it = m_recs.find(type);
    return it == m_recs.end() ? none : it->second;
}

std::vector<std::unique_ptr<CSnsrInf>> NavStore::At(double t) const
{
    std::vector<std::unique_ptr<CSnsrInf>> out;
    for (const auto& [type, run] : m_bank0) {
        std::unique_ptr<CSnsrInf> r;
        switch (type) {
        case CSnsrInf::tPos: r = InterpolateAs<CSnsrPos>(run, t); break;
        case CSnsrInf::tGyro: r = InterpolateAs<CSnsrGyro>(run, t); break;
        case CSnsrInf::tMru: r = InterpolateAs<CSnsrMru>(run, t); break;
        case CSnsrInf::tDepth: r = InterpolateAs<CSnsrZ>(run, t); break;
        case CSnsrInf::tAlt: r = InterpolateAs<CSnsrAlt>(run, t); break;
        case CSnsrInf::tSOS: r = InterpolateAs<CSnsrSOS>(run, t); break;
        case CSnsrInf::tTime: r = InterpolateAs<CSnsrTime>(run, t); break;
        default: break;
        }
        if (r) out.push_back(std::move(r));
    }
    return out;
}

bool NavStore::PoseAt(double t, const GridRef& ref, Pose& pose) const
{
    CSnsrPos pos;
    CSnsrGyro hdg;
    if (!InterpolateRun(Run0(CSnsrInf::tPos), t, pos) || !InterpolateRun(Run0(CSnsrInf::tGyro), t, hdg)) return false;
    pose = Pose();
    pose.t = t;
    ref.ToGrid(pos.m_geo.y, pos.m_geo.x, pose.x, pose.y);
    pose.heading = hdg.m_heading * kD2R;
    CSnsrMru mru;
    if (InterpolateRun(Run0(CSnsrInf::tMru), t, mru)) {
        pose.pitch = mru.m_pitch * kD2R;
        pose.roll = mru.m_roll * kD2R;
        pose.heave = mru.m_heave;
    }
    CSnsrZ z;
    pose.depth = InterpolateRun(Run0(CSnsrInf::tDepth), t, z) ? z.m_depth : 1.5;
    CSnsrAlt alt;
    if (InterpolateRun(Run0(CSnsrInf::tAlt), t, alt)) pose.altitude = alt.m_alt;
    CSnsrSOS sos;
    if (InterpolateRun(Run0(CSnsrInf::tSOS), t, sos)) pose.sos = sos.m_sos;
    return true;
}

std::vector<std::uint8_t> StoreSensor(CSnsrInf& rec)
{
    CMemFile f(256);
    {
        CArchive ar(&f, CArchive::store);
        rec.Serialize(ar);
        ar.Close();
    }
    const BYTE* p = f.GetBuffer();
    return std::vector<std::uint8_t>(p, p + f.GetLength());
}

std::unique_ptr<CSnsrInf> LoadSensor(std::uint8_t type, const std::vector<std::uint8_t>& bytes, std::string& why)
{
    std::unique_ptr<CSnsrInf> rec(CSnsrInf::Create(type));
    if (!rec) {
        why = "sensor type " + std::to_string(type) + " has no record class";
        return nullptr;
    }
    try {
        CMemFile f(const_cast<BYTE*>(bytes.data()), static_cast<UINT>(bytes.size()));
        CArchive ar(&f, CArchive::load);
        rec->Serialize(ar);
        // The record's own type byte must name the class it was read into:
        // everything after this (the track, the text, the panels) picks the
        // class by m_type.
        if (rec->m_type != type) {
            why = "sensor record of type " + std::to_string(type) + " holds type " + std::to_string(rec->m_type);
            return nullptr;
        }
        if (ar.GetRemaining() != 0) {
            why = "sensor record of type " + std::to_string(type) + " has " + std::to_string(ar.GetRemaining()) +
                  " bytes left over";
            return nullptr;
        }
    } catch (const std::exception& e) {
        why = std::string("sensor record of type ") + std::to_string(type) + ": " + e.what();
        return nullptr;
    }
    return rec;
}

} // namespace zanrec
