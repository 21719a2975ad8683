#pragma once
// The navigation stream of a synthetic survey, and how the tool reads it back:
// sensor records at their own rates, each a frame of the recording, and the
// ping's frame interpolated from them at the ping's time.
#include "Recording.h"
#include "Survey.h"

#include <zandata/ZanData.h>

#include <map>
#include <memory>
#include <string>
#include <vector>

namespace zanrec {

// Geographic <-> survey grid: x east, y north from the survey origin, in
// metres of the UTM zone of the origin on WGS84, converted through Geo with
// the shipped database (a local tangent plane if the database is missing).
class GridRef {
public:
    GridRef() = default;
    GridRef(double lat0, double lon0) { SetOrigin(lat0, lon0); }
    void SetOrigin(double lat0, double lon0);
    void ToLatLon(double x, double y, double& lat, double& lon) const;
    void ToGrid(double lat, double lon, double& x, double& y) const;
    bool UsesGeo() const { return m_bGeo; }

private:
    double m_lat0 = 0.0, m_lon0 = 0.0;  // degrees
    double m_e0 = 0.0, m_n0 = 0.0;      // grid of the origin
    bool m_bGeo = false;
};

// The records of one survey second by second, in time order: position 10 Hz,
// heading 20 Hz, motion 50 Hz, depth and altitude 5 Hz, speed of sound,
// time and pressure 1 Hz. A second bank of heading and depth (5 Hz) stands
// beside the first so that a grid of banks has more than one row.
std::vector<std::unique_ptr<CSnsrInf>> SynthNav(const Survey& s, const GridRef& ref, double t0, double t1);

// Sensor records of a recording, by type id, each run in time order.
class NavStore {
public:
    void Add(std::unique_ptr<CSnsrInf> rec);
    // Sorts each run by time; call once after the last Add.
    void Finish();
    const std::vector<std::unique_ptr<CSnsrInf>>& Of(int type) const;
    const std::map<int, std::vector<std::unique_ptr<CSnsrInf>>>& All() const { return m_recs; }
    bool Empty() const { return m_recs.empty(); }
    // Every type with records, interpolated at t; records of bank 0 only.
    std::vector<std::unique_ptr<CSnsrInf>> At(double t) const;
    // The sonar's pose at t from the records (false when position or heading
    // is missing).
    bool PoseAt(double t, const GridRef& ref, Pose& pose) const;

private:
    // Records of bank 0 by type, in time order: the ones a ping's frame uses.
    const std::vector<const CSnsrInf*>& Run0(int type) const;
    std::map<int, std::vector<std::unique_ptr<CSnsrInf>>> m_recs;
    std::map<int, std::vector<const CSnsrInf*>> m_bank0;
};

// A sensor frame's payload from a record, and back (null, with the reason,
// when the type byte names no class or the bytes are damaged).
std::vector<std::uint8_t> StoreSensor(CSnsrInf& rec);
std::unique_ptr<CSnsrInf> LoadSensor(std::uint8_t type, const std::vector<std::uint8_t>& bytes, std::string& why);

} // namespace zanrec
