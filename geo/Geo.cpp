// The selection members of Geo: the top-level conversions, the convergence,
// the axis names and the archive form of the whole state.
#include "geo/Geo.h"

#include "core/platform/CArchive.h"
#include "core/platform/ML.h"
#include "geo/GeoConv.h"
#include "geo/GeoConvLS.h"

#include <memory>

int Geo::type = 0;
int Geo::concession = 1;
int Geo::loSystem = 17;
int Geo::degreeFmt = 2;
int Geo::dirFmt = 2;
CSphd* Geo::pSphdP = nullptr;
CProj* Geo::pProjP = nullptr;
CSphd* Geo::pSphdS = nullptr;
CProj* Geo::pProjS = nullptr;
CShft* Geo::pShift = nullptr;

int Geo::LLH_ENZ(CV3 in, CV3& out, int shift)
{
    if (type == 1) {
        double line = 0.0, sample = 0.0;
        GeoConvLS::ConvertLatLon2LineSample(in.y, in.x, &line, &sample, concession, loSystem);
        out.x = -sample;
        out.y = line;
        out.z = in.z;
        return 1;
    }
    if (type != 0) return 0;

    const CV3 llh(in.x * ML::d2r, in.y * ML::d2r, in.z);
    if (pShift && shift) {
        if (!pSphdP || !pProjP || !pSphdS || !pProjS) return 0;
        CV3 xyzP, xyzS, llhS;
        GeoConv::llh2xyz(*pSphdP, llh, xyzP);
        GeoConv::DShift(*pShift, xyzP, xyzS, 0);
        GeoConv::xyz2llh(*pSphdS, xyzS, llhS);
        GeoConv::llh2enz(*pSphdS, *pProjS, llhS, out);
        return 1;
    }
    // With a shift and `shift` 0 the position is on the secondary datum
    // already; without a shift the primary grid serves.
    CSphd* const sphd = pShift ? pSphdS : pSphdP;
    CProj* const proj = pShift ? pProjS : pProjP;
    if (!sphd || !proj) return 0;
    GeoConv::llh2enz(*sphd, *proj, llh, out);
    return 1;
}

int Geo::ENZ_LLH(CV3 in, CV3& out, int shift)
{
    if (type == 1) {
        double Y = 0.0, X = 0.0, lat = 0.0, lon = 0.0, wLat = 0.0, wLon = 0.0;
        GeoConvLS::CalcLoYX(in.y, -in.x, &Y, &X, concession);
        GeoConvLS::CalcClarke1880LatLon(Y, X, &lat, &lon, loSystem);
        GeoConvLS::CalcWGS84LatLon(lat, lon, &wLat, &wLon);
        out.x = wLon;
        out.y = -wLat;  // the grid lies south of the equator
        out.z = in.z;
        return 1;
    }
    if (type != 0) return 0;

    if (pShift && shift) {
        if (!pSphdP || !pProjP || !pSphdS || !pProjS) return 0;
        // The grid position's z is taken as the height on the secondary datum.
        CV3 llhS = in, xyzS, xyzP, llhP;
        GeoConv::enz2llh(*pSphdS, *pProjS, in, llhS);
        GeoConv::llh2xyz(*pSphdS, llhS, xyzS);
        GeoConv::DShift(*pShift, xyzS, xyzP, 1);
        GeoConv::xyz2llh(*pSphdP, xyzP, llhP);
        out.x = llhP.x * ML::r2d;
        out.y = llhP.y * ML::r2d;
        out.z = llhP.z;
        return 1;
    }
    CSphd* const sphd = pShift ? pSphdS : pSphdP;
    CProj* const proj = pShift ? pProjS : pProjP;
    if (!sphd || !proj) return 0;
    GeoConv::enz2llh(*sphd, *proj, in, out);
    out.x *= ML::r2d;
    out.y *= ML::r2d;
    return 1;
}

double Geo::Conv(CV3 in)
{
    if (type == 1) return -50.0;
    if (type != 0 || !pSphdP || !pProjP) return 0.0;
    const CV3 llh(in.x * ML::d2r, in.y * ML::d2r, in.z);
    return GeoConv::GetConv(*pSphdP, *pProjP, llh) * ML::r2d;
}

void Geo::Units(CString& xName, CString& xUnit, CString& yName, CString& yUnit)
{
    if (type == 0) {
        xName = u"Easting";
        xUnit = u"mE";
        yName = u"Northing";
        yUnit = u"mN";
    } else if (type == 1) {
        xName = u"Sample";
        xUnit = u"mS";
        yName = u"Line";
        yUnit = u"mL";
    }
}

namespace {

// Stores a list: i32 count, then each record.
template <class T>
void StoreList(CArchive& ar, CList_Mgd<T>& list)
{
    ar << static_cast<int>(list.GetCount());
    for (CZanPtr* pos = list.GetHeadPos(); pos;) list.GetNext(pos)->Serialize(ar);
}

// Loads a list: appends each stored record. `minBytes` is the smallest record
// (an empty narrow name and the numbers), so that a damaged count raises
// before anything is made.
template <class T>
void LoadList(CArchive& ar, CList_Mgd<T>& list, ULONGLONG minBytes)
{
    int n = 0;
    ar >> n;
    if (n <= 0) return;
    ar.CheckAvailable(static_cast<ULONGLONG>(n) * minBytes);
    for (int i = 0; i < n; ++i) {
        auto owned = std::make_unique<T>();
        T* const rec = owned.get();
        list.AddTail(owned.release());  // appended before it is read
        rec->Serialize(ar);
    }
}

template <class T>
int IndexOf(const CList_Mgd<T>& list, T* p)
{
    return p ? list.GetIndex(p) : -1;
}

template <class T>
T* AtIndex(const CList_Mgd<T>& list, int index)
{
    return list.GetAt(list.FindIndex(index));
}

} // namespace

void Geo::Serialize(CArchive& ar)
{
    if (ar.IsStoring()) {
        StoreList(ar, sphds);
        StoreList(ar, projs);
        StoreList(ar, shfts);
        ar << IndexOf(sphds, pSphdP) << IndexOf(projs, pProjP) << IndexOf(shfts, pShift) << IndexOf(sphds, pSphdS)
           << IndexOf(projs, pProjS) << degreeFmt << dirFmt;
    } else {
        LoadList(ar, sphds, 1 + 4 * 8);
        LoadList(ar, projs, 1 + 5 * 8);
        LoadList(ar, shfts, 1 + 7 * 8);
        int iSphdP = -1, iProjP = -1, iShift = -1, iSphdS = -1, iProjS = -1;
        ar >> iSphdP >> iProjP >> iShift >> iSphdS >> iProjS >> degreeFmt >> dirFmt;
        pSphdP = AtIndex(sphds, iSphdP);
        pProjP = AtIndex(projs, iProjP);
        pShift = AtIndex(shfts, iShift);
        pSphdS = AtIndex(sphds, iSphdS);
        pProjS = AtIndex(projs, iProjS);
    }
}
