#pragma once
// CBnd: a boundary marked on a sonar image. For the run of bearings from
// m_firstBrg on, one CSbRng per bearing gives the near and far range between
// which something lies. An image owns a list of these.
#include "core/platform/CString.h"

class CArchive;

// CSbRng: one sub-range on one bearing. Its 32-byte memory image (two f64,
// three i32, 4 bytes of padding at 28) is itself a record format: CBnd stores
// its array of these raw. The constructor zeroes all 32 bytes, padding
// included, so a recorded block does not carry stray memory. Copying copies
// the whole object.
class CSbRng {
public:
    double m_dNear;  // near end, metres along the bearing; below 0: left out of the drawn outline
    double m_dFar;   // far end, metres along the bearing
    int m_nVal1;     // stored with the sub-range
    int m_nVal2;     // stored with the sub-range
    int m_nVal3;     // kept with the sub-range; not in the 24-byte form

    // Every field 0, padding too.
    CSbRng();
    // The 24-byte form, both directions: f64 m_dNear, f64 m_dFar, i32 m_nVal1,
    // i32 m_nVal2. m_nVal3 is neither written nor read. (The library's own
    // recording of sub-ranges is the raw 32-byte form inside CBnd::Serialize.)
    void Serialize(CArchive& ar);
};
static_assert(sizeof(CSbRng) == 32, "CSbRng's memory image is a record format");

class CBnd {
public:
    CString m_name;                 // name of the boundary
    int m_firstBrg = 0;             // bearing index of the first range entry
    CSbRng* m_pRngs = nullptr;      // m_nRngs entries, a ZUtil block owned by the boundary
    unsigned int m_nRngs = 0;       // number of range entries
    unsigned int m_bndType = 0;     // type; only type 0 is drawn

    // Empty name, no entries, zero bearing and type.
    CBnd() = default;
    // Copy the name, the type, the first bearing and the entries into a
    // block of the boundary's own.
    CBnd(const CBnd& src);
    CBnd& operator=(const CBnd& src);
    // Releases the block if m_nRngs is not zero.
    virtual ~CBnd();

    // Resizes the block to n entries with ZUtil::Realloc: entries below
    // min(old, n) are kept, new ones are zeroed (all 32 bytes). n equal to
    // m_nRngs does nothing; 0 releases the block and nulls m_pRngs.
    // Throws std::bad_alloc if the heap refuses the block.
    void SetNRngs(unsigned int n);

    // Both directions:
    //   string m_name (wide), u32 m_bndType, i32 m_firstBrg, u32 m_nRngs,
    //   then m_nRngs raw 32-byte CSbRng images (nothing when the count is 0).
    // Note the type before the first bearing. Reading resizes the block to
    // the stored count after checking that the archive holds that many bytes
    // (a shorter archive raises CArchiveException cause 3 before anything is
    // allocated).
    void Serialize(CArchive& ar);
};
