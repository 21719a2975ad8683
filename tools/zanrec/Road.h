#pragma once
// The road of one ping through the library, as a host runs it: take an image
// from the pool, fill the ping and the raw plane, normalise, filter, place it
// in the world, build its display image, find targets and a boundary, record
// it, give it back.
#include "Survey.h"

#include <zandata/ZanData.h>

#include <cstdint>
#include <vector>

namespace zanrec {

// Milliseconds spent in each step, summed over the pings run.
struct StepTimes {
    double fill = 0, normalise = 0, filter = 0, extents = 0, create = 0, detect = 0, record = 0;
    int pings = 0;
};

struct PingResult {
    std::vector<std::uint8_t> record;  // the ping's frame payload
    unsigned rawBytes = 0;             // the intensity plane's size
    unsigned compressedBytes = 0;      // its compressed stream's size
    int targets = 0;
    int boundaries = 0;
};

// Block flags the tool records: intensity (compressed), targets by position,
// vectors; raw data too when asked.
unsigned int RecordFlags(bool withRaw);

// Writes the image record, the extended ping block and the zoom block.
std::vector<std::uint8_t> RecordImage(CTgtImg& img, unsigned int flags);
// Loads what RecordImage wrote into `img`. Throws CArchiveException on a
// damaged record; returns false when bytes are left over.
bool LoadImage(CTgtImg& img, const std::vector<std::uint8_t>& bytes);

class Road {
public:
    Road(Survey& survey, bool withRaw, int filterId);
    // Runs ping i at the given pose (the frame of the sonar comes from it).
    // The image goes back to the pool before this returns.
    PingResult Run(int i, const Pose& pose, StepTimes& times);

    // The filter used on every ping (a 16-entry echo pattern).
    CTgtImgFlt& Filter() { return m_flt; }

private:
    Survey& m_survey;
    bool m_bRaw;
    CTgtImgFlt m_flt;
    CColTbl m_tbl;
};

// A simple detector of the tool (not the library's): local maxima above a
// level become targets, placed in the world from the image's vectors; the
// first strong return of each bearing becomes one boundary, the seabed.
void Detect(CTgtImg& img);

// The filter settings of the road: Flt2..Flt4 need a bias below 1.
void SetupFilter(CTgtImgFlt& flt, int filterId);

} // namespace zanrec
