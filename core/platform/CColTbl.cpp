#include "core/platform/CColTbl.h"

CColTbl CColTbl::Grey()
{
    CColTbl t;
    for (int i = 0; i < 256; ++i) t[i] = CRgb(static_cast<BYTE>(i), static_cast<BYTE>(i), static_cast<BYTE>(i), 255);
    return t;
}
