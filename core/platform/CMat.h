#pragma once
// CMat: a coordinate frame, an origin in the world and an attitude.
//
// Axes. World: x east, y north, z down (metres). The frame's own axes:
// x starboard, y forward, z down. Angles in radians:
//   heading: clockwise from north seen from above (0 = forward along +y,
//            pi/2 = forward along +x, east);
//   pitch:   bow up positive (a point ahead rises, z decreases);
//   roll:    starboard down positive (a point to starboard sinks).
// A local point p goes to the world as  org + Rz(heading) * Rx(pitch) * Ry(roll) * p,
// that is roll is applied first, then pitch, then heading.
#include "core/platform/CV3.h"

class CMat {
public:
    CMat() { Update(); }
    CMat(const CV3& org, double heading, double pitch = 0.0, double roll = 0.0);
    virtual ~CMat() = default;
    CMat(const CMat&) = default;
    CMat& operator=(const CMat&) = default;

    void Set(const CV3& org, double heading, double pitch, double roll);
    void SetOrg(const CV3& org) { m_org = org; }
    void SetAttitude(double heading, double pitch, double roll);

    // A point given in this frame, as a point in the world.
    CV3 LocalToGlobal(const CV3& v) const;
    // A world point, in this frame's axes.
    CV3 GlobalToLocal(const CV3& v) const;
    // A direction (no translation) from the frame to the world.
    CV3 RotateToGlobal(const CV3& v) const;

    CV3 Org() const { return m_org; }
    double X() const { return m_org.x; }
    double Y() const { return m_org.y; }
    double Z() const { return m_org.z; }
    double Heading() const { return m_heading; }
    double Pitch() const { return m_pitch; }
    double Roll() const { return m_roll; }

    CV3 m_org;
    double m_heading = 0.0, m_pitch = 0.0, m_roll = 0.0;

private:
    void Update();
    double m_r[3][3] {};  // rotation, frame to world, rows by world axis
};

// The core's target geometry.
struct TgtCalc {
    // The world position of an echo at slant `range` (metres) seen from the
    // sonar. `bearing` is the angle in the sonar's horizontal plane measured
    // from its x axis (starboard) toward y (forward): callers pass
    // pi/2 - beam bearing, so a beam bearing of 0 points ahead and a positive
    // one to starboard. `angle` is measured from the frame's z axis (down):
    // callers pass pi/2 - depression, so 0 depression is horizontal.
    // The point  range * (sin(angle)cos(bearing), sin(angle)sin(bearing), cos(angle))
    // is taken through `tilt` (the head's mounting, may be null) and then
    // through `sonar` (may be null, then the world is the sonar's frame).
    // Returns 1; non-finite inputs give non-finite points.
    static int RT(const CMat* sonar, double range, double bearing, const CMat* tilt, double angle, CV3& point);
};
