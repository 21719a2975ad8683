#pragma once
// The subcommands of zanrec. Each returns the process's exit code and
// reports errors as one line on stderr.
#include <string>

class CTgtImg;

namespace zanrec {

struct SynthOptions {
    std::string out;
    int pings = 40, beams = 256, ranges = 1000;
    unsigned seed = 1;
    bool raw = false;
    int filter = 2;
    std::string tideOut;  // tide file to write; empty: beside the recording (TidePathFor)
};

struct RenderOptions {
    std::string file, out;
    int ping = 0;
    int size = 800;
    std::string colour = "grey";
    std::string depth;  // "MIN:MAX" colours by depth
    int filter = 0;     // 1..4 refilters the loaded image
    bool grid = false, overlays = false;
    std::string tide;   // tide file: depths are reduced by the tide at the ping's time
};

struct MosaicOptions {
    std::string file, out;
    int size = 1000;
    std::string depth;  // "MIN:MAX" colours by depth
    std::string tide;   // tide file: depths are reduced by the tide at each ping's time
};

// Draws one loaded image as a fan into a PNG (used by render and demo).
bool RenderFan(CTgtImg& img, const RenderOptions& o, bool byDepth, double lo, double hi);

// What synth did, for the demo's table.
struct SynthReport {
    double ms[7] = {};  // fill, normalise, filter, extents, create, detect, record: per ping
    int pings = 0;
    double imageBytes = 0, recordBytes = 0, fileBytes = 0;
    size_t sensorRecords = 0;
    std::string tideFile;
};

int Synth(const SynthOptions& o, SynthReport* report = nullptr);
int Info(const std::string& file, const std::string& tide = {});
int Dump(const std::string& file, int ping);
int Render(const RenderOptions& o);
int Mosaic(const MosaicOptions& o);
int Sensors(const std::string& file, const std::string& type, const std::string& at);
int Catalogue();
// Pictures of the sensor grids, the speed of sound panel, the tide panel (of
// `tide`, when given), the tide selection and the geodetic selection.
int Panels(const std::string& file, const std::string& outDir, const std::string& tide = {});
int Demo(const std::string& outDir, int pings);

} // namespace zanrec
