#include "core/platform/CObject.h"

#include <cstring>

namespace {
// Head of the registry. A plain pointer with constant initialisation, so it is
// null before any record's constructor runs, whatever the order of static
// construction across files.
CRuntimeClass* s_pFirstClass = nullptr;
} // namespace

CRuntimeClass CObject::classCObject("CObject", static_cast<int>(sizeof(CObject)), nullptr, nullptr);

CRuntimeClass::CRuntimeClass(const char* name, int size, CObject* (*create)(), CRuntimeClass* base)
    : m_lpszClassName(name), m_nObjectSize(size), m_wSchema(0xFFFF), m_pfnCreateObject(create),
      m_pBaseClass(base)
{
    m_pNextClass = s_pFirstClass;
    s_pFirstClass = this;
}

CRuntimeClass::~CRuntimeClass()
{
    for (CRuntimeClass** pp = &s_pFirstClass; *pp; pp = &(*pp)->m_pNextClass) {
        if (*pp == this) {
            *pp = m_pNextClass;
            break;
        }
    }
}

CObject* CRuntimeClass::CreateObject() const
{
    return m_pfnCreateObject ? m_pfnCreateObject() : nullptr;
}

BOOL CRuntimeClass::IsDerivedFrom(const CRuntimeClass* base) const
{
    for (const CRuntimeClass* rc = this; rc; rc = rc->m_pBaseClass)
        if (rc == base) return TRUE;
    return FALSE;
}

CRuntimeClass* CRuntimeClass::FromName(const char* name)
{
    if (!name) return nullptr;
    for (CRuntimeClass* rc = s_pFirstClass; rc; rc = rc->m_pNextClass)
        if (std::strcmp(rc->m_lpszClassName, name) == 0) return rc;
    return nullptr;
}

CRuntimeClass* CRuntimeClass::FromName(const CString& name)
{
    return FromName(name.Utf8().c_str());
}

CObject* CRuntimeClass::CreateObject(const CString& name)
{
    const CRuntimeClass* rc = FromName(name);
    return rc ? rc->CreateObject() : nullptr;
}
