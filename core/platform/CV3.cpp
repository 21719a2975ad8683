#include "core/platform/CV3.h"

#include "core/platform/CArchive.h"

void CV3::Serialize(CArchive& ar)
{
    if (ar.IsStoring()) ar << x << y << z;
    else ar >> x >> y >> z;
}
