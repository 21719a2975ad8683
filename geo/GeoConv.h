#pragma once
// GeoConv: conversions between geographic coordinates on a
// spheroid, Transverse Mercator grid coordinates, earth-centred cartesian
// coordinates, and two datums by a seven-parameter shift.
//
// Every function works in radians and metres. Positions travel in CV3:
//   geographic  x longitude (east +), y latitude (north +), z height (m)
//   grid        x easting, y northing (m); z is left alone
//   cartesian   X towards longitude 0 on the equator, Y, Z towards the
//               north pole (m)
// Records are used as they stand: a = m_semiMajor, b = m_semiMinor,
// e² = m_ecc2, none derived from another; φ0, λ0, E0, N0, k0 from the CProj.
//
// No function allocates. enz2llh keeps, per thread, constants worked out
// from the last spheroid and projection it was given, checked against the
// records on every call; nothing else keeps state. Any thread may call them
// at once on records that nobody is changing. Non-finite input gives
// non-finite output and never hangs an iteration.
#include "core/platform/CV3.h"

class CSphd;
class CProj;
class CShft;

class GeoConv {
public:
    // Geographic to grid by the Redfearn series (Ordnance Survey arrangement,
    // terms I-VI, meridian arc in n). Writes out.x (easting) and out.y
    // (northing); out.z and llh.z take no part.
    // Accuracy against the exact Transverse Mercator: better than 1 mm within
    // 3 degrees of the central meridian at any latitude; about 1 cm at 6
    // degrees. Beyond that the truncated series degrades quickly.
    static void llh2enz(const CSphd& sphd, const CProj& proj, CV3 llh, CV3& enz);

    // Grid to geographic (terms VII-XIIA) at the footpoint latitude where
    // the iteration φ′ += r/(a·k0) stops, r the meridian arc's residual: the
    // first pass whose |r| is under 1 mm, its correction applied. Writes
    // out.x (longitude) and out.y (latitude); out.z is left alone.
    // Within 6 degrees of the meridian and 85 of the equator the result
    // agrees with that iteration carried out literally to 2e-15 rad: the stop
    // is found without passes, from a reversion of the arc series (valid for
    // spheroids with n = (a−b)/(a+b) under 0.01, every earth spheroid) and
    // the iteration's known rate. Flatter spheroids and points beyond the
    // poles take the passes themselves.
    // Against the exact Transverse Mercator: better than 2e-8 degree within 3
    // degrees of the meridian; the round trip with llh2enz closes to better
    // than 1e-9 rad there. The passes stop after at most 64, so an absurd or
    // non-finite grid position returns (with a meaningless or non-finite
    // result) instead of looping.
    static void enz2llh(const CSphd& sphd, const CProj& proj, CV3 enz, CV3& llh);

    // Geographic (height in llh.z, metres above the spheroid) to cartesian.
    // Z is taken from the ellipse through a and b, so a record whose a, b and
    // e² disagree gives a Z that follows b. Exact to rounding.
    static void llh2xyz(const CSphd& sphd, CV3 llh, CV3& xyz);

    // Cartesian to geographic by fixed-point iteration on the latitude, until
    // a pass changes it by at most 1e-7 rad; the latitude is then within
    // about 5e-10 rad (3 mm) of the exact one, the height within 0.1 mm.
    // Uses a and e² only. Writes all three members. On the polar axis the
    // height is not meaningful. Non-finite input returns at once with
    // non-finite output.
    static void xyz2llh(const CSphd& sphd, CV3 xyz, CV3& llh);

    // Seven-parameter Helmert shift of cartesian coordinates (Bursa-Wolf,
    // position-vector rotations, small-angle matrix, scale applied to the
    // rotated vector before the translation). inverse 0: primary to
    // secondary datum. Non-zero: the first-order reverse (rotations, scale
    // and translation negated, the translation still added last), which does
    // not undo the forward exactly: the residual is about (rotation + scale)
    // times the translation plus rotation² times the radius, up to 1.5 cm
    // for common seven-parameter shifts. Exact for a pure translation.
    static void DShift(const CShft& shft, CV3 in, CV3& out, int inverse);

    // Grid convergence at a geographic position, radians, positive east of
    // the central meridian in the northern hemisphere. Infinite at a pole.
    static double GetConv(const CSphd& sphd, const CProj& proj, CV3 llh);
};
