// The settings form of Geo.
#include "geo/Geo.h"

#include "core/CZSet.h"

namespace {

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

void Geo::Settings(CZSetObj& obj)
{
    if (obj.IsStoring()) {
        DbLines([](void* ctx, const CString& line) { static_cast<CZSetObj*>(ctx)->AddLine(line); }, &obj);
    } else {
        for (CZanPtr* pos = obj.m_data.GetHeadPos(); pos;) MergeDbText(*obj.m_data.GetNext(pos));
    }

    // Indices start at 0, so a key that the object lacks means the first record.
    int iSphdP = 0, iProjP = 0, iShift = 0, iSphdS = 0, iProjS = 0;
    if (obj.IsStoring()) {
        iSphdP = IndexOf(sphds, pSphdP);
        iProjP = IndexOf(projs, pProjP);
        iShift = IndexOf(shfts, pShift);
        iSphdS = IndexOf(sphds, pSphdS);
        iProjS = IndexOf(projs, pProjS);
    }
    obj.Item(u"PriSphd", iSphdP);
    obj.Item(u"PriProj", iProjP);
    obj.Item(u"DtmShift", iShift);
    obj.Item(u"SecSphd", iSphdS);
    obj.Item(u"SecProj", iProjS);
    if (obj.IsLoading()) {
        pSphdP = AtIndex(sphds, iSphdP);
        pProjP = AtIndex(projs, iProjP);
        pShift = AtIndex(shfts, iShift);
        pSphdS = AtIndex(sphds, iSphdS);
        pProjS = AtIndex(projs, iProjS);
    }
    obj.Item(u"DegreeFmt", degreeFmt);
    obj.Item(u"DirFmt", dirFmt);
}
