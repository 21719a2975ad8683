// Entries of the sensor records, the geodesy block and database file, and
// the settings file.
#include "fuzz/FuzzTargets.h"
#include "fuzz/FuzzText.h"
#include "fuzz/FuzzUtil.h"

#include <algorithm>
#include <cmath>
#include <memory>
#include <vector>

namespace zanfuzz {

namespace {
// Every geodetic record of the process goes at the end of an entry, so that
// nothing is left for the next input or for the leak check.
struct GeoScope {
    GeoScope() { Geo::ClearDb(); }
    ~GeoScope() { Geo::ClearDb(); }
};
}  // namespace

// The record's own first byte, its type, picks the class (CSnsrInf::Create),
// as a recording's reader does; the record is then read into it.
void FuzzSnsr(const uint8_t* data, size_t size)
{
    if (size == 0) return;
    const int type = data[0];
    std::unique_ptr<CSnsrInf> rec(CSnsrInf::Create(type));
    if (!rec) return;
    const auto rw = [](CSnsrInf& r, CArchive& ar) { r.Serialize(ar); };
    if (!Load(data, size, [&](CArchive& ar) { rec->Serialize(ar); })) return;
    Check(rec->m_type == type, "snsr: the type is the record's first byte");

    // The host's next steps: the text form, a copy, and its own record back.
    (void)rec->GetString(0);
    std::unique_ptr<CSnsrInf> copy(CSnsrInf::CreateCopy(rec.get()));
    const Bytes stored = Store([&](CArchive& ar) { rec->Serialize(ar); });
    if (copy) {
        (void)copy->GetString(0);
        Check(Store([&](CArchive& ar) { copy->Serialize(ar); }) == stored, "snsr: a copy stores other bytes");
    }
    CheckStable(stored, [type] { return std::unique_ptr<CSnsrInf>(CSnsrInf::Create(type)); }, rw, rw, "snsr");
}

// The geodesy block into empty lists.
void FuzzGeo(const uint8_t* data, size_t size)
{
    GeoScope scope;
    const auto rw = [](int&, CArchive& ar) { Geo::Serialize(ar); };
    if (!Load(data, size, [](CArchive& ar) { Geo::Serialize(ar); })) return;
    const Bytes stored = Store([](CArchive& ar) { Geo::Serialize(ar); });
    Geo::ClearDb();
    CheckStable(stored, [] { return std::make_unique<int>(0); }, rw, rw, "geo");
}

// GeoDB.csv text into empty lists, then written out and read again.
void FuzzGeoDb(const uint8_t* data, size_t size)
{
    GeoScope scope;
    CTextFile file(data, size);
    if (file.Path().IsEmpty()) return;
    Geo::ReadDb(file.Path());
    const int n = Geo::sphds.GetCount() + Geo::projs.GetCount() + Geo::shfts.GetCount();
    // The writer's output reads back to no more records (14 digits may merge
    // two that differed only further down).
    file.Set(nullptr, 0);
    Geo::WriteDb(file.Path());
    Geo::ClearDb();
    Geo::ReadDb(file.Path());
    const int nBack = Geo::sphds.GetCount() + Geo::projs.GetCount() + Geo::shfts.GetCount();
    Check(nBack <= n, "geodb: the written database reads back to more records");
    Check(n == 0 || nBack > 0, "geodb: the written database reads back empty");
}

// Byte 0: bit 0 sets m_bGraph (straight lines). The rest is a tide file.
// The table is queried at and between its points, and goes through the
// settings form and back.
void FuzzTide(const uint8_t* data, size_t size)
{
    Input in{data, size};
    const int bGraph = in.Byte() & 1;
    CTextFile file(in.p, in.n);
    if (file.Path().IsEmpty()) return;
    CTideObj tide;
    tide.m_bGraph = bGraph;
    tide.ReadTHL(file.Path());

    std::vector<double> times, values;
    for (CZanPtr* pos = tide.GetHeadPos(); pos;) {
        const CTmVal* p = tide.GetNext(pos);
        times.push_back(p->m_tm);
        values.push_back(p->m_val);
    }
    const bool bFinite = std::all_of(values.begin(), values.end(), [](double v) { return std::isfinite(v); });
    const auto range = std::minmax_element(values.begin(), values.end());
    const double lo = values.empty() ? 0.0 : *range.first, hi = values.empty() ? 0.0 : *range.second;
    // Both rules scale the difference of two heights, the sine rule by up to
    // 2 before it halves it, which overflows for heights near the double's
    // limit; only then may a result leave them. Otherwise a result is off by
    // rounding of the larger height's size: a height and nearly its negative
    // cancel.
    const bool bBounded = bFinite && std::isfinite((hi - lo) * 2.0);
    const double tol = 1e-9 * std::max(std::fabs(lo), std::fabs(hi)) + 1e-9;
    const auto check = [&](double tm) {
        const double h = tide.GetRaw(tm);
        // Both rules stay within the two heights they join.
        if (bBounded && h != CTideObj::kNoTide && (h < lo - tol || h > hi + tol))
            Fail("tide: a height outside the table's heights");
        (void)tide.GetTide(tm);
    };
    for (size_t i = 0; i < times.size(); ++i) {
        check(times[i]);
        if (i + 1 < times.size()) check(times[i] + (times[i + 1] - times[i]) * 0.37);
    }
    check(times.empty() ? 0.0 : times.front() - 1.0);

    // The settings form keeps every point (heights rounded to centimetres).
    CZSetObj obj;
    tide.Settings(obj);
    obj.SetLoading();
    CTideObj back;
    back.Settings(obj);
    Check(back.GetCount() == tide.GetCount(), "tide: the settings form loses or adds points");
    Check(back.m_bGraph == tide.m_bGraph, "tide: the settings form loses the rule");
}

// The settings file. What loads is given to the saving classes, object by
// object, as a host's start-up does, and saved and loaded again as text.
void FuzzSettings(const uint8_t* data, size_t size)
{
    GeoScope scope;
    CTextFile file(data, size);
    if (file.Path().IsEmpty()) return;
    CZSet set;
    if (!set.Load(file.Path())) {
        Check(!set.m_strError.IsEmpty(), "settings: a refused file gives its reason");
        return;
    }
    for (CZanPtr* c = set.m_cols.GetHeadPos(); c;) {
        CZSetCol* col = set.m_cols.GetNext(c);
        for (CZanPtr* o = col->GetHeadPos(); o;) {
            CZSetObj& obj = *col->GetNext(o);
            Geo::Settings(obj);
            CPing ping;
            ping.Settings(obj);
            CTideObj tide;
            tide.Settings(obj);
            CTgtImgFlt flt;
            flt.Settings(obj);
        }
    }
    const CString text = set.ToText();
    CZSet back;
    Check(back.FromText(text) != 0, "settings: a saved store does not load again");
    Check(back.ToText() == text, "settings: a reloaded store saves other text");
}

}  // namespace zanfuzz
