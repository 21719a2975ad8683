// Entries of the target and boundary loaders.
#include "fuzz/FuzzTargets.h"
#include "fuzz/FuzzUtil.h"

#include <memory>

namespace zanfuzz {

namespace {
void SerializeTgt(CTgt& t, CArchive& ar, bool bPos)
{
    if (bPos) t.SerializeTgt(ar);
    else t.SerializeRngBrg(ar);
}

// A record with targets already in its list, as a recycled image has.
void AddTargets(CTgtRec& rec, int n)
{
    for (int i = 0; i < n; ++i) {
        CTgt* t = new CTgt;
        t->x = i;
        t->m_rngK = 1000u * static_cast<UINT>(i);
        rec.AddTail(t);
    }
}
}  // namespace

// Byte 0: bit 0 picks the position form, else the range and bearing form.
// The rest is a run of target records, read into one reused target.
void FuzzTgt(const uint8_t* data, size_t size)
{
    Input in{data, size};
    const bool bPos = in.Byte() & 1;
    CTgt t;
    LoadEach(
        in.p, in.n, [&](CArchive& ar) { SerializeTgt(t, ar, bPos); },
        [&](const Bytes& rec) {
            // Every stored field is read unchanged, so storing gives the record back.
            Check(rec.size() == (bPos ? 44u : 20u), "tgt: a target record is 44 or 20 bytes");
            Check(Store([&](CArchive& ar) { SerializeTgt(t, ar, bPos); }) == rec,
                  "tgt: storing a loaded target gives other bytes than it read");
            CTgt copy(t);
            Check(Store([&](CArchive& ar) { SerializeTgt(copy, ar, bPos); }) == rec, "tgt: a copy stores other bytes");
        });
}

// Byte 0: bit 0 picks the position form of the list, bit 1 gives the
// reader three targets beforehand, bit 2 sets m_hasFtSet. The rest is a run
// of pairs: a CTgtRec record, then a target list.
void FuzzTgtRec(const uint8_t* data, size_t size)
{
    Input in{data, size};
    const BYTE mode = in.Byte();
    const bool bPos = mode & 1;
    CTgtRec rec;
    rec.m_ping.m_hasFtSet = (mode >> 2) & 1;
    if (mode & 2) AddTargets(rec, 3);
    const auto read = [bPos](CTgtRec& r, CArchive& ar) {
        r.Serialize(ar);
        if (bPos) r.SerializeTgt(ar);
        else r.SerializeRB(ar);
    };
    LoadEach(
        in.p, in.n, [&](CArchive& ar) { read(rec, ar); },
        [&](const Bytes& bytes) {
            const size_t nHead = bytes.size() - 4 - static_cast<size_t>(rec.GetCount()) * (bPos ? 44 : 20);
            Check(nHead == 105u + (rec.m_ping.m_hasFtSet ? 100u : 0u),
                  "tgtrec: a record is its head and the count's targets");
            const Bytes stored = Store([&](CArchive& ar) { read(rec, ar); });
            const bool bFt = rec.m_ping.m_hasFtSet != 0;
            CheckStable(
                stored,
                [bFt] {
                    auto p = std::make_unique<CTgtRec>();
                    p->m_ping.m_hasFtSet = bFt;
                    return p;
                },
                read, read, "tgtrec");
            CTgtRec copy(rec);
            Check(Store([&](CArchive& ar) { read(copy, ar); }) == stored, "tgtrec: a copy stores other bytes");
        });
}

// Byte 0: bit 0 gives the reader a boundary with entries beforehand. The
// rest is a run of boundary records, read into one reused boundary.
void FuzzBnd(const uint8_t* data, size_t size)
{
    Input in{data, size};
    CBnd bnd;
    if (in.Byte() & 1) {
        bnd.m_name = CString(u"old");
        bnd.SetNRngs(5);
    }
    const auto load = [](CBnd& b, CArchive& ar) { b.Serialize(ar); };
    LoadEach(
        in.p, in.n, [&](CArchive& ar) { bnd.Serialize(ar); },
        [&](const Bytes&) {
            Check((bnd.m_pRngs != nullptr) == (bnd.m_nRngs != 0), "bnd: a block exactly when there are entries");
            const Bytes stored = Store([&](CArchive& ar) { bnd.Serialize(ar); });
            CheckStable(stored, [] { return std::make_unique<CBnd>(); }, load, load, "bnd");
            CBnd copy(bnd);
            Check(Store([&](CArchive& ar) { copy.Serialize(ar); }) == stored, "bnd: a copy stores other bytes");
        });
}

}  // namespace zanfuzz
