#include "image/CDataImg.h"

#include "core/platform/ZUtil.h"

#include <cstring>

CDataImg::CDataImg() : m_nWord1(0), m_nWord2(0), m_nWord3(0), m_pData(nullptr), m_nWidth(0), m_nHeight(0) {}

CDataImg::CDataImg(const CDataImg& src) : CDataImg()
{
    *this = src;
}

CDataImg& CDataImg::operator=(const CDataImg& src)
{
    if (&src == this) return *this;
    m_nWord1 = src.m_nWord1;
    m_nWord2 = src.m_nWord2;
    m_nWord3 = src.m_nWord3;
    const size_t nBytes = static_cast<size_t>(src.m_nWidth) * src.m_nHeight;
    if (nBytes != 0 && src.m_pData) {
        if (static_cast<size_t>(m_nWidth) * m_nHeight != nBytes || !m_pData)
            m_pData = static_cast<BYTE*>(ZUtil::Realloc(m_pData, static_cast<unsigned int>(nBytes)));
        std::memcpy(m_pData, src.m_pData, nBytes);
    } else {
        ZUtil::FreeIt(m_pData);
        m_pData = nullptr;
    }
    m_nWidth = src.m_nWidth;
    m_nHeight = src.m_nHeight;
    return *this;
}

CDataImg::~CDataImg()
{
    if (m_nWidth != 0 && m_nHeight != 0) ZUtil::FreeIt(m_pData);
}

void CDataImg::Alloc(unsigned int width, unsigned int height)
{
    if (width == m_nWidth || height == m_nHeight) return;
    if (width != 0 && height != 0) {
        m_pData = static_cast<BYTE*>(ZUtil::Realloc(m_pData, width * height));
    } else {
        ZUtil::FreeIt(m_pData);
        m_pData = nullptr;
    }
    m_nWidth = width;
    m_nHeight = height;
}

void CDataImg::Clear()
{
    if (m_pData) std::memset(m_pData, 0, static_cast<size_t>(m_nWidth) * m_nHeight);
}
