#include "ping/CFtSet.h"

#include "core/platform/CArchive.h"

#include <cstring>

CFtSet::CFtSet()
{
    std::memset(m_nFeat, 0, sizeof m_nFeat);
    std::memset(m_aux, 0, sizeof m_aux);
    for (double& d : m_dFeat) d = 0.0;
}

void CFtSet::Serialize(CArchive& ar)
{
    // The doubles travel as 0, 3, 2, 1: recordings in the field have them so.
    static constexpr int order[4] = {0, 3, 2, 1};
    if (ar.IsStoring()) {
        for (unsigned int n : m_nFeat) ar << n;
        ar.Write(m_aux, sizeof m_aux);
        for (int i : order) ar << m_dFeat[i];
    } else {
        for (unsigned int& n : m_nFeat) ar >> n;
        if (ar.Read(m_aux, sizeof m_aux) != sizeof m_aux) ar.Throw(CArchiveException::endOfFile);
        for (int i : order) ar >> m_dFeat[i];
    }
}
