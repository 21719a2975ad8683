#pragma once
// A recording read into memory: its frames, its pings' frames and its sensor
// records, with the first damage found.
#include "Nav.h"
#include "Recording.h"

#include <string>
#include <vector>

namespace zanrec {

struct Loaded {
    ReadResult rr;
    std::vector<int> pings;   // indices of ping frames in rr.frames
    NavStore nav;
    GridRef ref;              // survey origin: the first position fix
    bool hasRef = false;
    int badSensor = -1;       // first sensor frame whose record did not load
    std::string sensorError;
};

// Reads `path`. On a file that cannot be read as a recording at all, prints
// the error line and returns false.
bool LoadRecording(const std::string& path, Loaded& out);

// Loads ping frame `index` (0-based among the pings) into `img`. False with
// `why` when its record is damaged.
bool LoadPing(const Loaded& rec, int index, CTgtImg& img, std::string& why);

// The time a ping was recorded at (the tool keeps it in m_recVal1).
inline double PingTime(CTgtImg& img) { return img.m_tgtRec.m_recVal1; }

} // namespace zanrec
