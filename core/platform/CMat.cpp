#include "core/platform/CMat.h"

#include <cmath>

CMat::CMat(const CV3& org, double heading, double pitch, double roll)
    : m_org(org), m_heading(heading), m_pitch(pitch), m_roll(roll)
{
    Update();
}

void CMat::Set(const CV3& org, double heading, double pitch, double roll)
{
    m_org = org;
    SetAttitude(heading, pitch, roll);
}

void CMat::SetAttitude(double heading, double pitch, double roll)
{
    m_heading = heading;
    m_pitch = pitch;
    m_roll = roll;
    Update();
}

void CMat::Update()
{
    const double ch = std::cos(m_heading), sh = std::sin(m_heading);
    const double cp = std::cos(m_pitch), sp = std::sin(m_pitch);
    const double cr = std::cos(m_roll), sr = std::sin(m_roll);
    // Ry(roll): x' = x cr - z sr, z' = x sr + z cr
    // Rx(pitch): y' = y cp + z sp, z' = -y sp + z cp
    // Rz(heading): X = x ch + y sh, Y = -x sh + y ch
    const double ry[3][3] = {{cr, 0, -sr}, {0, 1, 0}, {sr, 0, cr}};
    const double rx[3][3] = {{1, 0, 0}, {0, cp, sp}, {0, -sp, cp}};
    const double rz[3][3] = {{ch, sh, 0}, {-sh, ch, 0}, {0, 0, 1}};
    double t[3][3] {};
    for (int i = 0; i < 3; ++i)
        for (int j = 0; j < 3; ++j)
            for (int k = 0; k < 3; ++k) t[i][j] += rx[i][k] * ry[k][j];
    for (int i = 0; i < 3; ++i)
        for (int j = 0; j < 3; ++j) {
            m_r[i][j] = 0;
            for (int k = 0; k < 3; ++k) m_r[i][j] += rz[i][k] * t[k][j];
        }
}

CV3 CMat::RotateToGlobal(const CV3& v) const
{
    return {m_r[0][0] * v.x + m_r[0][1] * v.y + m_r[0][2] * v.z,
            m_r[1][0] * v.x + m_r[1][1] * v.y + m_r[1][2] * v.z,
            m_r[2][0] * v.x + m_r[2][1] * v.y + m_r[2][2] * v.z};
}

CV3 CMat::LocalToGlobal(const CV3& v) const { return m_org + RotateToGlobal(v); }

CV3 CMat::GlobalToLocal(const CV3& w) const
{
    const CV3 d = w - m_org;  // the inverse of a rotation is its transpose
    return {m_r[0][0] * d.x + m_r[1][0] * d.y + m_r[2][0] * d.z,
            m_r[0][1] * d.x + m_r[1][1] * d.y + m_r[2][1] * d.z,
            m_r[0][2] * d.x + m_r[1][2] * d.y + m_r[2][2] * d.z};
}

int TgtCalc::RT(const CMat* sonar, double range, double bearing, const CMat* tilt, double angle, CV3& point)
{
    CV3 p(range * std::sin(angle) * std::cos(bearing), range * std::sin(angle) * std::sin(bearing),
          range * std::cos(angle));
    if (tilt) p = tilt->LocalToGlobal(p);
    if (sonar) p = sonar->LocalToGlobal(p);
    point = p;
    return 1;
}
