// The grid inverse from several threads at once, each switching between
// grids from one point to the next: the constants it keeps for the last grid
// are each thread's own, so every answer equals the one-thread answer.
#include "core/platform/ML.h"
#include "geo/CProj.h"
#include "geo/CSphd.h"
#include "geo/GeoConv.h"

#include <gtest/gtest.h>

#include <atomic>
#include <thread>
#include <vector>

TEST(GeoConvThreads, InverseOnSwitchingGridsFromFourThreads)
{
    CSphd wgs, clarke;
    wgs.m_semiMajor = 6378137.0;
    wgs.m_semiMinor = 6356752.314245;
    wgs.m_ecc2 = 0.00669437999014;
    clarke.m_semiMajor = 6378249.145;
    clarke.m_semiMinor = 6356514.870;
    clarke.m_ecc2 = 0.006803511283;
    CProj utm, bng;
    utm.m_lonOrigin = 9.0 * ML::d2r;
    bng.m_latOrigin = 49.0 * ML::d2r;
    bng.m_lonOrigin = -2.0 * ML::d2r;
    bng.m_falseEast = 400000.0;
    bng.m_falseNorth = -100000.0;
    bng.m_scale = 0.9996012717;
    const CSphd* sphds[2] = {&wgs, &clarke};
    const CProj* projs[2] = {&utm, &bng};

    constexpr int kPoints = 2000, kThreads = 4;
    std::vector<CV3> in;
    for (int i = 0; i < kPoints; ++i) in.emplace_back(200000.0 + 137.0 * i, -3e6 + 4711.0 * i, 0.0);
    const auto grid = [&](int i, int thread) { return (i + thread) % 4; };
    std::vector<std::vector<CV3>> wantFor(4, std::vector<CV3>(kPoints));
    for (int g = 0; g < 4; ++g)
        for (int i = 0; i < kPoints; ++i) GeoConv::enz2llh(*sphds[g % 2], *projs[g / 2], in[i], wantFor[g][i]);

    std::atomic<int> wrong{0};
    std::vector<std::thread> threads;
    for (int t = 0; t < kThreads; ++t) {
        threads.emplace_back([&, t] {
            for (int round = 0; round < 5; ++round) {
                for (int i = 0; i < kPoints; ++i) {
                    const int g = grid(i + round, t);
                    CV3 out;
                    GeoConv::enz2llh(*sphds[g % 2], *projs[g / 2], in[i], out);
                    if (out.x != wantFor[g][i].x || out.y != wantFor[g][i].y) ++wrong;
                }
            }
        });
    }
    for (std::thread& th : threads) th.join();
    EXPECT_EQ(wrong.load(), 0);
}
