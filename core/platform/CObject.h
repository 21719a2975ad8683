#pragma once
// CObject and CRuntimeClass: the framework's run-time class records, so that a
// host can ask an object for its class and create a panel from its class name.
//
// Every class record is registered when the library loads (records are static
// objects of the classes' source files) and leaves the registry at unload.
// The registry is read-only after load and takes no lock.
//
// A dynamically creatable class T with base TBase declares, in its body:
//
//     static CRuntimeClass classT;   // "class" followed by the class name
//     static CRuntimeClass* GetThisClass() { return &classT; }
//     static CObject* CreateObject() { return new T; }
//     CRuntimeClass* GetRuntimeClass() const override { return &classT; }
//
// and defines the record once in its source file:
//
//     CRuntimeClass T::classT = CRuntimeClass::Of<T, TBase>("T");
#include "core/platform/CString.h"
#include "core/platform/Types.h"

class CObject;

class CRuntimeClass {
public:
    const char* m_lpszClassName;          // the class name, as registered
    int m_nObjectSize;                    // sizeof the class
    UINT m_wSchema;                       // 0xFFFF: the records carry no schema
    CObject* (*m_pfnCreateObject)();      // null for a class that can't be created by name
    CRuntimeClass* m_pBaseClass;          // record of the base class; null for CObject
    CRuntimeClass* m_pNextClass = nullptr;  // registry link

    // Makes the record and registers it under `name` (a static string). A
    // later record of the same name hides an earlier one in FromName.
    CRuntimeClass(const char* name, int size, CObject* (*create)(), CRuntimeClass* base);
    // Leaves the registry.
    ~CRuntimeClass();
    CRuntimeClass(const CRuntimeClass&) = delete;
    CRuntimeClass& operator=(const CRuntimeClass&) = delete;

    // The record of a class T with base TBase whose body holds the run-time
    // class members above. Used to define the record, so that it's built in
    // place and registered where it lives.
    template <class T, class TBase>
    static CRuntimeClass Of(const char* name)
    {
        return CRuntimeClass(name, static_cast<int>(sizeof(T)), &T::CreateObject, TBase::GetThisClass());
    }

    // A new object of this class, owned by the caller and released through
    // its virtual destructor; null when the class can't be created by name.
    CObject* CreateObject() const;
    // Non-zero when this class is `base` or derives from it.
    BOOL IsDerivedFrom(const CRuntimeClass* base) const;

    // The registered record of that name (compared exactly), or null.
    static CRuntimeClass* FromName(const char* name);
    static CRuntimeClass* FromName(const CString& name);
    // FromName(name)->CreateObject(), or null when there's no such class or it
    // can't be created.
    static CObject* CreateObject(const CString& name);
};

class CObject {
public:
    static CRuntimeClass classCObject;
    static CRuntimeClass* GetThisClass() { return &classCObject; }
    virtual CRuntimeClass* GetRuntimeClass() const { return &classCObject; }
    virtual ~CObject() = default;

    // Non-zero when the object is of class `rc` or of a class derived from it.
    BOOL IsKindOf(const CRuntimeClass* rc) const { return GetRuntimeClass()->IsDerivedFrom(rc); }

protected:
    CObject() = default;
    CObject(const CObject&) = default;
    CObject& operator=(const CObject&) = default;
};

// A handler of the framework: a member function of a CObject class with no
// argument, as buttons and value callbacks take it. A derived class's member
// converts with static_cast<ZanHandler>(&CMyPanel::OnButton).
using ZanHandler = void (CObject::*)();
