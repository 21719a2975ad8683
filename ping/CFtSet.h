#pragma once
// CFtSet: the feature set of a ping. The library only constructs, copies and
// records it; what the words and values mean is the host's business.
#include "core/platform/Types.h"

class CArchive;

class CFtSet {
public:
    unsigned int m_nFeat[9]; // feature words
    BYTE m_aux[32];          // opaque bytes, copied and recorded as they are
    double m_dFeat[4];       // feature values

    // m_dFeat all 0.0. The words and m_aux are zeroed as well, so that a new
    // set records deterministically.
    CFtSet();
    CFtSet(const CFtSet&) = default;
    CFtSet& operator=(const CFtSet&) = default; // the whole object

    // The 100-byte record, both directions: 9 u32 m_nFeat, 32 bytes m_aux,
    // then f64 m_dFeat[0], m_dFeat[3], m_dFeat[2], m_dFeat[1] (in that
    // order). No tag, no version. A short stream raises CArchiveException
    // cause 3 with the fields read so far kept.
    void Serialize(CArchive& ar);
};
