// Entries of the ping model's loaders: the ping record and the zoom block.
#include "fuzz/FuzzTargets.h"
#include "fuzz/FuzzUtil.h"

#include <cstring>
#include <memory>

namespace zanfuzz {

namespace {
constexpr size_t kPingBytes = 69, kFtSetBytes = 100;

template <class T>
T At(const uint8_t* p, size_t off)
{
    T v;
    std::memcpy(&v, p + off, sizeof v);
    return v;
}
}  // namespace

// Byte 0: bit 0 sets m_hasFtSet on the reader, bit 1 makes it a ping already
// used with another beam count. The rest is the record.
void FuzzPing(const uint8_t* data, size_t size)
{
    Input in{data, size};
    const BYTE mode = in.Byte();
    CPing ping;
    ping.m_hasFtSet = mode & 1;
    if (mode & 2) {
        ping.SetNumBeams(96);
        ping.m_recTag = 0x5A5A;
    }
    const short nOld = ping.m_numBeams;
    const WORD tag = ping.m_recTag;
    size_t left = 0;
    if (!Load(in.p, in.n, [&](CArchive& ar) { ping.Serialize(ar); }, &left)) return;

    const size_t nRec = kPingBytes + (ping.m_hasFtSet ? kFtSetBytes : 0);
    Check(in.n - left == nRec, "ping: a record is 69 bytes, and 100 more with the feature set");
    Check(ping.m_numBeams > 0, "ping: a loaded ping has a positive beam count");
    Check(ping.m_brgCentre == ping.m_numBeams * 0.5, "ping: the centre beam is half the beam count");
    Check(ping.m_baseMF == ping.m_modFreq, "ping: the base rate is the record's rate");
    for (BYTE idx : {ping.m_rx1Idx, ping.m_rx2Idx, ping.m_tx1Idx, ping.m_tx2Idx})
        Check(idx < CArrType::s_nTypes, "ping: a loaded row index lies in the catalogue");

    // Storing gives back the record read, less what loading drops or
    // replaces: the tag is the object's, the second speed of sound stands in
    // both places, and a zero beam count leaves the old one.
    Bytes expect(in.p, in.p + nRec);
    std::memcpy(&expect[0], &tag, 2);
    std::memcpy(&expect[9], &expect[53], 4);
    if (At<short>(expect.data(), 51) == 0) std::memcpy(&expect[51], &nOld, 2);
    const Bytes stored = Store([&](CArchive& ar) { ping.Serialize(ar); });
    Check(stored == expect, "ping: storing a loaded ping gives other bytes than it read");

    // A copy of the loaded ping stores the same record.
    CPing copy;
    copy = ping;
    Check(Store([&](CArchive& ar) { copy.Serialize(ar); }) == stored, "ping: a copy stores other bytes");
}

// The zoom block, head and body, into a default ping.
void FuzzPingZoom(const uint8_t* data, size_t size)
{
    CPing ping;
    bool bOn = false;
    size_t left = 0;
    if (!Load(data, size, [&](CArchive& ar) { bOn = ping.SerializeAcousticZoom(ar); }, &left)) return;

    const WORD version = At<WORD>(data, 0);
    Check(ping.m_azVersion == version, "zoom: the version is the block's");
    size_t nBody = 3;
    if (bOn) nBody = version == 0 ? 15 : version == 1 ? 17 + 24 : 31;
    Check(size - left == 8 + nBody, "zoom: the block's length is that of its version");
    Check(bOn == (data[10] != 0), "zoom: any non-zero switch byte is on");

    // Storing writes the version 2 layout under the number 2; from a block
    // of version 2 or later that is the block itself, with the switch as 1.
    const Bytes stored = Store([&](CArchive& ar) { ping.SerializeAcousticZoom(ar); });
    Check(stored.size() == (bOn ? 39u : 11u), "zoom: a stored block is 39 bytes on, 11 off");
    if (!bOn || version >= 2) {
        Bytes expect(data, data + stored.size());
        expect[0] = 2;
        expect[1] = expect[2] = expect[3] = 0;
        expect[10] = bOn ? 1 : 0;
        Check(stored == expect, "zoom: storing a loaded block gives other bytes than it read");
    }
    CheckStable(
        stored, [] { return std::make_unique<CPing>(); },
        [](CPing& p, CArchive& ar) { p.SerializeAcousticZoom(ar); },
        [](CPing& p, CArchive& ar) { p.SerializeAcousticZoom(ar); }, "zoom");
}

}  // namespace zanfuzz
