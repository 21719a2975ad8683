#pragma once
// Tide for the tool: a tide file read into the library's table, its height at
// a ping's time, and the small tide file synth writes beside a recording.
//
// Depths in the pictures are reduced by the tide: a point z metres below the
// surface lies z - h below chart datum when the tide stands h above it.
#include <zandata/ZanData.h>

#include <optional>
#include <string>

namespace zanrec {

// Reads the tide file `path` (".csv" or ".tid", any of the library's line
// forms) into `tide`, naming the table after the file. False, with a
// one-line reason in `why`, when the file cannot be opened or holds fewer
// than two points (one point answers no time at all).
bool LoadTide(const std::string& path, CTideObj& tide, std::string& why);

// The corrected tide height in metres at t (seconds since 1970, UTC), or
// nothing where the table has no tide (before its first point, from its
// last on).
std::optional<double> TideAt(CTideObj& tide, double t);

// The tide file synth writes for a recording: the recording's path with its
// extension replaced by ".tid".
std::string TidePathFor(const std::string& recording);

// Writes high and low waters every half tidal cycle (6 h 12.5 min) from half
// a day before t0 to half a day after t1, the survey falling on a rising
// tide halfway between low and high water. Lines are "d/m/Y H:M:S,height"
// under a heading. Throws std::runtime_error when the file cannot be written.
void WriteSynthTide(const std::string& path, double t0, double t1);

} // namespace zanrec
