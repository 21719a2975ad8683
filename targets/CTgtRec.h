#pragma once
// CTgtRec: what one ping leaves behind apart from its image: its CPing, the
// targets found in it, and the values that place it in the world. The record
// is itself the target list (a CList_Ptr<CTgt*>) and owns the CTgt objects
// the list points to. A CTgtImg holds one as its first member.
//
// Two speeds of sound travel with it: m_ping.m_sosXd (at the transducer:
// bearings, the ping's own metre conversions, fans) and m_sosAvg (world
// geometry of the image's extents and drawn points).
//
// Note: the list operations inherited from CList_Ptr (RemoveAll, RemoveAt,
// ...) remove nodes only; to delete targets use ClearTgts, or delete the
// target the node held.
#include "core/CList_Ptr.h"
#include "core/platform/CMat.h"
#include "ping/CPing.h"
#include "targets/CTgt.h"

class CArchive;

class CTgtRec : public CList_Ptr<CTgt*> {
public:
    CPing m_ping;                  // parameters of the ping, by value
    short m_sonarNo = 0;           // sonar number; the record's status messages add it to their id
    unsigned short m_tgtSide = 0;  // 1 or 2: which of the two target colour sets to draw with
    double m_recVal1 = 0.0;        // stored and copied with the record
    double m_recVal2 = 0.0;        // stored and copied with the record
    double m_elevDeg = 0.0;        // elevation of the fan, degrees
    double m_sosAvg = 1500.0;      // speed of sound for world geometry, m/s
    CMat m_frame;                  // frame of the sonar at this ping (not recorded)

    // No targets, a default CPing, the default frame, the defaults above.
    CTgtRec() = default;
    // A default record, then assigned from src (targets copied into new
    // objects).
    CTgtRec(const CTgtRec& src);
    // ClearTgts, then the members and the base.
    ~CTgtRec() override;

    // Copies m_ping (by CPing assignment, which leaves some ping fields
    // alone), the fields above and m_frame, then brings the target list into
    // line with src's, reusing what is there: targets at the places both
    // lists have are overwritten in place (objects and nodes keep their
    // addresses), src's extra targets are copied into new objects added at
    // the tail, and this list's surplus targets are deleted with their nodes.
    // Self-assignment changes nothing.
    CTgtRec& operator=(const CTgtRec& src);

    // Deletes every CTgt, then every node; the list is left empty.
    void ClearTgts();

    // The record, both directions: the ping record (m_ping.Serialize: 69
    // bytes, then the feature set when m_ping.m_hasFtSet is set), then 36
    // bytes: i16 m_sonarNo, u16 m_tgtSide, f64 m_recVal1, f64 m_recVal2,
    // f64 m_elevDeg, f64 m_sosAvg. Neither the targets nor m_frame are in it.
    virtual void Serialize(CArchive& ar);
    // The target list in the range and bearing form: i32 count, then each
    // target's 20-byte record (CTgt::SerializeRngBrg), from the head.
    // Reading reuses the existing targets in order (x, y, z and the roll
    // fields stay as they were), makes new ones at the tail when the list is
    // short, and deletes the surplus. A count of zero or below empties the
    // list and reads nothing more. The count is trusted: a stream that ends
    // first raises CArchiveException cause 3 with the targets read so far in
    // the list (memory grows only with what the stream really holds).
    virtual void SerializeRB(CArchive& ar);
    // The same with the position form (CTgt::SerializeTgt, 44 bytes each).
    virtual void SerializeTgt(CArchive& ar);
    // The ping's zoom block: forwards to m_ping.SerializeAcousticZoom.
    virtual bool SerializeAcousticZoom(CArchive& ar);

private:
    // One target list in the position form (bPos) or the range and bearing
    // form.
    void SerializeList(CArchive& ar, bool bPos);
    // Deletes the target of every node from pos on, and the nodes.
    void DeleteFrom(CZanPtr* pos);
};
