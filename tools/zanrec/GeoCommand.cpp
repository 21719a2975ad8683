// zanrec geo: coordinates from standard input to standard output through the
// library's geodesy, one point a line, like PROJ's cs2cs; and a listing of
// the geodetic database.
#include <zandata/ZanData.h>

#include <CLI/CLI.hpp>

#include <cmath>
#include <cstdio>
#include <iostream>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

namespace {

struct CGeoArgs {
    std::string db;
    std::string from = "WGS84";
    std::string to;
    std::string toSphd;
    std::string shift;
    std::string lo;
    bool inverse = false;
    bool list = false;
};

int Fail(const std::string& msg)
{
    std::fprintf(stderr, "zanrec geo: %s\n", msg.c_str());
    return 2;
}

void List()
{
    std::printf("# spheroids: name, a, b, e2, 1/f\n");
    for (CZanPtr* pos = Geo::sphds.GetHeadPos(); pos;) {
        const CSphd* s = Geo::sphds.GetNext(pos);
        std::printf("SPHD  %-22s %.4f %.6f %.15g %.10g\n", s->m_name.Utf8().c_str(), s->m_semiMajor,
                    s->m_semiMinor, s->m_ecc2, s->m_invFlat);
    }
    std::printf("# projections: name, false easting, false northing, central meridian, latitude of origin, scale\n");
    for (CZanPtr* pos = Geo::projs.GetHeadPos(); pos;) {
        const CProj* p = Geo::projs.GetNext(pos);
        std::printf("PROJ  %-22s %.3f %.3f %.9g %.9g %.10g\n", p->m_name.Utf8().c_str(), p->m_falseEast,
                    p->m_falseNorth, p->m_lonOrigin * ML::r2d, p->m_latOrigin * ML::r2d, p->m_scale);
    }
    std::printf("# shifts: name, dX, dY, dZ (m), rX, rY, rZ (arc-seconds), scale (ppm)\n");
    for (CZanPtr* pos = Geo::shfts.GetHeadPos(); pos;) {
        const CShft* t = Geo::shfts.GetNext(pos);
        std::printf("SHIFT %-22s %.4f %.4f %.4f %.5f %.5f %.5f %.5f\n", t->m_name.Utf8().c_str(), t->m_dX, t->m_dY,
                    t->m_dZ, t->m_rotX, t->m_rotY, t->m_rotZ, t->m_ppm);
    }
}

// Two or three numbers separated by blanks or commas; nothing else.
bool ParsePoint(const std::string& line, CV3& v, bool& hasZ)
{
    std::string s = line;
    for (char& ch : s)
        if (ch == ',' || ch == '\t') ch = ' ';
    std::istringstream in(s);
    std::vector<double> nums;
    std::string tok;
    while (in >> tok) {
        size_t used = 0;
        double d = 0.0;
        try {
            d = std::stod(tok, &used);
        } catch (...) {
            return false;
        }
        if (used != tok.size() || !std::isfinite(d)) return false;
        nums.push_back(d);
    }
    if (nums.size() < 2 || nums.size() > 3) return false;
    v = CV3(nums[0], nums[1], nums.size() == 3 ? nums[2] : 0.0);
    hasZ = nums.size() == 3;
    return true;
}

int Run(const CGeoArgs& a)
{
    const std::string db = a.db.empty() ? Geo::DefaultDbPath().Utf8() : a.db;
    Geo::ClearDb();
    Geo::ReadDb(CString::FromUtf8(db));
    if (a.list) {
        List();
        return 0;
    }

    if (!a.lo.empty()) {
        int concession = 0, meridian = 0;
        char colon = 0, extra = 0;
        if (std::sscanf(a.lo.c_str(), "%d%c%d%c", &concession, &colon, &meridian, &extra) != 3 || colon != ':')
            return Fail("--lo wants CONCESSION:MERIDIAN, e.g. 1:17, not '" + a.lo + "'");
        Geo::type = 1;
        Geo::concession = concession;
        Geo::loSystem = meridian;
    } else {
        Geo::type = 0;
        if (a.to.empty()) return Fail("give --to PROJECTION (or --lo, or --list)");
        CSphd* from = Geo::GetSphd(CString::FromUtf8(a.from));
        if (!from) return Fail("unknown spheroid '" + a.from + "' in " + db);
        CProj* to = Geo::GetProj(CString::FromUtf8(a.to));
        if (!to) return Fail("unknown projection '" + a.to + "' in " + db);
        Geo::pSphdP = from;
        Geo::pProjP = to;
        if (!a.shift.empty()) {
            CShft* shift = Geo::GetShft(CString::FromUtf8(a.shift));
            if (!shift) return Fail("unknown shift '" + a.shift + "' in " + db);
            const std::string sName = a.toSphd.empty() ? a.from : a.toSphd;
            CSphd* toSphd = Geo::GetSphd(CString::FromUtf8(sName));
            if (!toSphd) return Fail("unknown spheroid '" + sName + "' in " + db);
            Geo::pShift = shift;
            Geo::pSphdS = toSphd;
            Geo::pProjS = to;
        } else if (!a.toSphd.empty()) {
            return Fail("--to-sphd needs --shift");
        }
    }

    int bad = 0, lineNo = 0;
    std::string line;
    while (std::getline(std::cin, line)) {
        ++lineNo;
        if (!line.empty() && line.back() == '\r') line.pop_back();
        if (line.find_first_not_of(" \t") == std::string::npos || line[line.find_first_not_of(" \t")] == '#') {
            std::printf("%s\n", line.c_str());
            continue;
        }
        CV3 in, out;
        bool hasZ = false;
        if (!ParsePoint(line, in, hasZ)) {
            std::fprintf(stderr, "zanrec geo: line %d is not a coordinate: %s\n", lineNo, line.c_str());
            ++bad;
            continue;
        }
        if (a.inverse) {
            out.z = in.z;
            if (!Geo::ENZ_LLH(in, out, 1)) return Fail("the selection cannot convert");
            if (hasZ)
                std::printf("%.9f %.9f %.3f\n", out.x, out.y, out.z);
            else
                std::printf("%.9f %.9f\n", out.x, out.y);
        } else {
            out.z = in.z;
            if (!Geo::LLH_ENZ(in, out, 1)) return Fail("the selection cannot convert");
            if (hasZ)
                std::printf("%.3f %.3f %.3f\n", out.x, out.y, out.z);
            else
                std::printf("%.3f %.3f\n", out.x, out.y);
        }
    }
    Geo::ClearDb();
    return bad ? 1 : 0;
}

} // namespace

// Registers "geo" on the tool. Points are "longitude latitude [height]" in
// degrees going in (easting northing [z] in metres with --inverse),
// separated by blanks or commas; lines that are empty or begin with '#' are
// copied through. Output: metres to the millimetre, degrees to 1e-9.
void AddGeoCommand(CLI::App& app)
{
    auto args = std::make_shared<CGeoArgs>();
    CLI::App* geo = app.add_subcommand(
        "geo", "convert coordinates from standard input through the geodetic database (like cs2cs)");
    geo->add_option("--db", args->db, "geodetic database file (default: the installed GeoDB.csv)");
    geo->add_option("--from", args->from, "spheroid of the geographic positions (primary datum)")
        ->capture_default_str();
    geo->add_option("--to", args->to, "projection of the grid, e.g. UTM_31N");
    geo->add_option("--shift", args->shift, "datum shift from the primary datum to the grid's datum");
    geo->add_option("--to-sphd", args->toSphd, "spheroid of the grid's datum when a shift is given");
    geo->add_option("--lo", args->lo, "line and sample grid instead: CONCESSION:MERIDIAN, e.g. 1:17");
    geo->add_flag("--inverse", args->inverse, "grid to geographic");
    geo->add_flag("--list", args->list, "list the database and stop");
    geo->callback([args] {
        const int rc = Run(*args);
        if (rc != 0) throw CLI::RuntimeError(rc);
    });
}
