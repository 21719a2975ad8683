#pragma once
// CV3: three doubles x, y, z in this order and nothing else, so an array of
// CV3 is a plain run of triples (the raw vector blocks of the image record).
// In geodesy and sensors x is the longitude or easting, y the latitude or
// northing; z is positive downward.
#include <cmath>

class CArchive;

class CV3 {
public:
    double x = 0.0, y = 0.0, z = 0.0;

    CV3() = default;
    CV3(double x_, double y_, double z_) : x(x_), y(y_), z(z_) {}

    CV3 operator+(const CV3& o) const { return {x + o.x, y + o.y, z + o.z}; }
    CV3 operator-(const CV3& o) const { return {x - o.x, y - o.y, z - o.z}; }
    CV3 operator*(const double& s) const { return {x * s, y * s, z * s}; }
    CV3& operator+=(const CV3& o) { x += o.x; y += o.y; z += o.z; return *this; }
    CV3& operator-=(const CV3& o) { x -= o.x; y -= o.y; z -= o.z; return *this; }
    bool operator==(const CV3& o) const = default;

    double Length() const { return std::sqrt(x * x + y * y + z * z); }
    // Scales to unit length and returns the former length. A zero vector is
    // left as it is (no division by zero).
    double Normalise()
    {
        const double l = Length();
        if (l > 0.0) { x /= l; y /= l; z /= l; }
        return l;
    }
    // Non-zero when all three components are finite.
    int Finite() const { return std::isfinite(x) && std::isfinite(y) && std::isfinite(z); }
    // Three f64, x then y then z.
    void Serialize(CArchive& ar);
};
static_assert(sizeof(CV3) == 24, "CV3 is a plain triple");
