#pragma once
// CDataImg: a plain byte matrix of m_nWidth by m_nHeight, in a ZUtil block.
#include "core/platform/Types.h"

class CDataImg {
public:
    UINT m_nWord1;   // three words the library only copies and zeroes
    UINT m_nWord2;
    UINT m_nWord3;
    BYTE* m_pData;   // m_nWidth * m_nHeight bytes when both are non-zero
    UINT m_nWidth;
    UINT m_nHeight;

    // Everything 0, no block.
    CDataImg();
    // Deep copies: the copy gets a block of its own with src's bytes, so that
    // each object releases only its own.
    CDataImg(const CDataImg& src);
    CDataImg& operator=(const CDataImg& src);
    // Releases the block when both dimensions are non-zero.
    virtual ~CDataImg();

    // Only a request that differs from the present size in both dimensions
    // does anything: with both non-zero the block is resized (ZUtil::Realloc,
    // contents not cleared) and the size stored; with either 0 the block is
    // released and the two values stored as given.
    void Alloc(unsigned int width, unsigned int height);
    // Zeroes every byte of the block.
    void Clear();
};
