#include "ping/CArrType.h"

#include <utility>

CArrType::CArrType(int type, CString name, unsigned int freq, unsigned int sampleRate, unsigned short nElements,
                   float pitch, double clkPeriod, const CV3& pos, float rotX, float rotY, float rotZ,
                   unsigned short flags)
    : m_type(type), m_name(std::move(name)), m_freq(freq), m_sampleRate(sampleRate), m_nElements(nElements),
      m_pitch(pitch), m_clkPeriod(clkPeriod), m_flags(flags), m_pos(pos), m_rotX(rotX), m_rotY(rotY),
      m_rotZ(rotZ)
{
}

namespace {
// Clock periods of the families, as the heads report them. The 80 kHz pinger
// (row 18) runs on the 240 kHz clock, unlike the 80 kHz arrays of rows 8 and 9.
constexpr double clk240 = 1.0416666666666667e-08;
constexpr double clk80 = 3.1250000000000005e-08;
constexpr double clk27 = 4.166666666666667e-08;
constexpr double clk723 = 1.3823992922115625e-08;
constexpr double clk620 = 1.6127991742468226e-08;
} // namespace

// Constructed first among the library's statics: a CPing built during static
// initialisation elsewhere already reads its rows.
__attribute__((init_priority(101))) CArrType CArrType::s_types[CArrType::s_nTypes] = {
    //        type name                freq    rate   nEl  pitch      clock   pos                          rotX rotY rotZ flags
    CArrType(1, u"Rx1",            240000, 30000,  64, 0.003123f, clk240, CV3(0.206, 0, -0.006), 0, 0,   0, 0x0001),
    CArrType(1, u"Rx2",            240000, 30000,  64, 0.003123f, clk240, CV3(0.217, 0, -0.151), 0, 0,  90, 0x0002),
    CArrType(4, u"Tx1",            240000, 30000,  32, 0.00625f,  clk240, CV3(0.207, 0, 0.036),  0, 0,   0, 0x0004),
    CArrType(4, u"Tx2",            240000, 30000,  32, 0.00625f,  clk240, CV3(0.176, 0, -0.15),  0, 0,  90, 0x0008),
    CArrType(1, u"RX",             240000, 30000, 128, 0.003123f, clk240, CV3(0.306, 0, -0.006), 0, 0,   0, 0x0000),
    CArrType(4, u"TX",             240000, 30000,  64, 0.00625f,  clk240, CV3(0.306, 0, 0.036),  0, 0,   0, 0x0000),
    CArrType(1, u"RX",             240000, 30000, 256, 0.003123f, clk240, CV3(0.56, 0, -0.003),  0, 0,   0, 0x1000),
    CArrType(4, u"TX",             240000, 30000, 128, 0.00625f,  clk240, CV3(0.56, 0, 0.039),   0, 0,   0, 0x0000),
    CArrType(1, u"RX",              80000, 10000,  64, 0.009375f, clk80,  CV3(0.421, 0, -0.007), 0, 0,   0, 0x0000),
    CArrType(4, u"TX",              80000, 10000,  32, 0.01875f,  clk80,  CV3(0.421, 0, 0.031),  0, 0,   0, 0x0000),
    CArrType(1, u"RX",              27000,  3375,  36, 0.052f,    clk27,  CV3(0, 0, 0),          0, 0,   0, 0x0010),
    CArrType(4, u"TX",              27000,  3375,  36, 0.052f,    clk27,  CV3(0, 0, 0),          0, 0,   0, 0x0020),
    CArrType(1, u"RX",             240000, 30000, 192, 0.003123f, clk240, CV3(0, 0, 0),          0, 0,   0, 0x0040),
    CArrType(4, u"Tx1",            240000, 30000,  32, 0.00625f,  clk240, CV3(0, 0, 0),          0, 0,   0, 0x0080),
    CArrType(4, u"Tx2",            240000, 30000,  32, 0.00625f,  clk240, CV3(0, 0, 0),          0, 0,  90, 0x0100),
    CArrType(4, u"TX3",            240000, 30000,  32, 0.00625f,  clk240, CV3(0, 0, 0),          0, 0, 180, 0x0200),
    CArrType(4, u"TX4",            240000, 30000,  32, 0.00625f,  clk240, CV3(0, 0, 0),          0, 0, 270, 0x0400),
    CArrType(2, u"240kHz Pinger",  240000, 30000,   1, 0.0f,      clk240, CV3(0, 0, 0),          0, 0,   0, 0x0800),
    CArrType(2, u"80kHz Pinger",    80000, 10000,   1, 0.0f,      clk240, CV3(0, 0, 0),          0, 0,   0, 0x0800),
    CArrType(1, u"RX",             240000, 30000, 128, 0.003123f, clk240, CV3(0.306, 0, -0.006), 0, 0,   0, 0x2000),
    CArrType(4, u"TX",             240000, 30000,  64, 0.00625f,  clk240, CV3(0.306, 0, 0.036),  0, 0,   0, 0x2000),
    CArrType(1, u"RX",             240000, 30000, 128, 0.003123f, clk240, CV3(0.306, 0, -0.006), 0, 0,   0, 0x0000),
    CArrType(4, u"TX",             240000, 30000,  32, 0.00625f,  clk240, CV3(0.306, 0, 0.036),  0, 0,  90, 0x0000),
    CArrType(1, u"RX",             723380, 90422,  96, 0.0011f,   clk723, CV3(0, 0, 0),          0, 0,   0, 0x8000),
    CArrType(2, u"TX",             723380, 90422,  96, 0.0011f,   clk723, CV3(0, 0, 0),          0, 0,  90, 0x8000),
    CArrType(1, u"RX",             620040, 77505,  96, 0.0012f,   clk620, CV3(0, 0, 0),          0, 0,   0, 0x8000),
    CArrType(2, u"TX",             620040, 77505,  96, 0.0012f,   clk620, CV3(0, 0, 0),          0, 0,  90, 0x8000),
};
