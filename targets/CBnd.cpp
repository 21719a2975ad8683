#include "targets/CBnd.h"

#include "core/platform/CArchive.h"
#include "core/platform/ZUtil.h"

#include <climits>
#include <cstring>
#include <new>

CSbRng::CSbRng()
{
    std::memset(static_cast<void*>(this), 0, sizeof(*this));
}

void CSbRng::Serialize(CArchive& ar)
{
    if (ar.IsStoring())
        ar << m_dNear << m_dFar << m_nVal1 << m_nVal2;
    else
        ar >> m_dNear >> m_dFar >> m_nVal1 >> m_nVal2;
}

CBnd::CBnd(const CBnd& src)
{
    *this = src;
}

CBnd& CBnd::operator=(const CBnd& src)
{
    if (&src == this) return *this;
    m_name = src.m_name;
    m_bndType = src.m_bndType;
    m_firstBrg = src.m_firstBrg;
    SetNRngs(src.m_nRngs);
    if (m_nRngs) std::memcpy(static_cast<void*>(m_pRngs), src.m_pRngs, m_nRngs * sizeof(CSbRng));
    return *this;
}

CBnd::~CBnd()
{
    if (m_nRngs) ZUtil::FreeIt(m_pRngs);
}

void CBnd::SetNRngs(unsigned int n)
{
    if (n == m_nRngs) return;
    if (n == 0) {
        ZUtil::FreeIt(m_pRngs);
        m_pRngs = nullptr;
        m_nRngs = 0;
        return;
    }
    if (n > UINT_MAX / sizeof(CSbRng)) throw std::bad_alloc();
    void* const p = ZUtil::Realloc(m_pRngs, n * static_cast<unsigned int>(sizeof(CSbRng)));
    if (!p) throw std::bad_alloc();
    m_pRngs = static_cast<CSbRng*>(p);
    // New entries are zeroed, so a block recorded before they are filled
    // holds no stray memory.
    if (n > m_nRngs) std::memset(static_cast<void*>(m_pRngs + m_nRngs), 0, (n - m_nRngs) * sizeof(CSbRng));
    m_nRngs = n;
}

void CBnd::Serialize(CArchive& ar)
{
    if (ar.IsStoring()) {
        ar << m_name << m_bndType << m_firstBrg << m_nRngs;
        ar.Write(m_pRngs, m_nRngs * static_cast<unsigned int>(sizeof(CSbRng)));
    } else {
        unsigned int n = 0;
        ar >> m_name >> m_bndType >> m_firstBrg >> n;
        ar.CheckAvailable(static_cast<ULONGLONG>(n) * sizeof(CSbRng));
        SetNRngs(n);
        ar.Read(m_pRngs, m_nRngs * static_cast<unsigned int>(sizeof(CSbRng)));
    }
}
