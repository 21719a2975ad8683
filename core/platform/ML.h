#pragma once
// Mathematical constants of the core.
#include <numbers>

struct ML {
    static constexpr double pi = std::numbers::pi;
    static constexpr double pi2 = 2.0 * std::numbers::pi;
    static constexpr double pi_2 = std::numbers::pi / 2.0;
    static constexpr double d2r = std::numbers::pi / 180.0;
    static constexpr double r2d = 180.0 / std::numbers::pi;
    // Two doubles of geodetic records count as equal within this. Parameters
    // in the database are printed with at most 9-10 significant decimals
    // (semi-axes to 0.0001 m, angles to 1e-9 degree), so 1e-9 separates
    // distinct published values while absorbing text round-trip noise.
    static constexpr double threshold = 1e-9;
};
