#pragma once
// CDSArray<T>: an array of owned element pointers. m_ppItems holds m_nSize
// pointers, each to a separate heap object of type T; read elements directly
// as m_ppItems[i]. The pointer block itself is a ZUtil block.
//
// T must be default-constructible and copy-assignable.
//
// Copying: the copy constructor makes a deep copy, exactly as operator= into
// an empty array does.
#include "core/platform/ZUtil.h"

#include <new>

template <class T>
class CDSArray {
public:
    unsigned int m_nSize = 0;  // element count
    T** m_ppItems = nullptr;   // m_nSize element pointers; null when empty

    // An empty array.
    CDSArray() = default;
    // Resizes to 0, deleting every element.
    virtual ~CDSArray() { SetSize(0); }
    CDSArray(const CDSArray& src) { *this = src; }
    // SetSize(src.m_nSize), then each element assigned from its counterpart.
    CDSArray& operator=(const CDSArray& src)
    {
        if (&src != this) {
            SetSize(src.m_nSize);
            for (unsigned int i = 0; i < m_nSize; ++i) *m_ppItems[i] = *src.m_ppItems[i];
        }
        return *this;
    }

    // Makes the array n elements long. Shrinking deletes the elements from
    // index n on; growing puts a new default T into each new place; 0 frees
    // the pointer block and leaves m_ppItems null. Elements below
    // min(old, n) keep their addresses. Throws std::bad_alloc when the heap
    // refuses the pointer block.
    void SetSize(unsigned int n)
    {
        if (n == m_nSize) return;
        for (unsigned int i = n; i < m_nSize; ++i) delete m_ppItems[i];
        if (n == 0) {
            ZUtil::FreeIt(m_ppItems);
            m_ppItems = nullptr;
            m_nSize = 0;
            return;
        }
        Resize(n);
        for (unsigned int i = m_nSize; i < n; ++i) m_ppItems[i] = new T;
        m_nSize = n;
    }
    // Adds elem at the end, adopting it.
    void Append(T* elem)
    {
        Resize(m_nSize + 1);
        m_ppItems[m_nSize++] = elem;
    }

private:
    void Resize(unsigned int n)
    {
        void* const p = ZUtil::Realloc(m_ppItems, n * static_cast<unsigned int>(sizeof(T*)));
        if (!p) throw std::bad_alloc();
        m_ppItems = static_cast<T**>(p);
    }
};
