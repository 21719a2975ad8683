// zanrec: synthesise, record, inspect and draw multibeam sonar pings with
// the ZanData library.
#include "Commands.h"

#include <zandata/ZanData.h>

#include <CLI/CLI.hpp>

#include <cstdio>

void AddGeoCommand(CLI::App& app);  // GeoCommand.cpp

int main(int argc, char** argv)
{
    CLI::App app{"zanrec: synthesise, record, inspect and draw multibeam sonar pings with ZanData"};
    app.require_subcommand(1);

    zanrec::SynthOptions so;
    auto* synth = app.add_subcommand("synth", "write a synthetic survey recording");
    synth->add_option("--out", so.out, "recording to write")->required();
    synth->add_option("--pings", so.pings, "number of pings")->check(CLI::Range(1, 100000));
    synth->add_option("--beams", so.beams, "beams per ping")->check(CLI::Range(8, 4096));
    synth->add_option("--ranges", so.ranges, "range lines per ping")->check(CLI::Range(16, 20000));
    synth->add_option("--seed", so.seed, "seed of the survey's randomness");
    synth->add_flag("--raw", so.raw, "record the raw 16-bit planes too");
    synth->add_option("--tide-out", so.tideOut, "tide file to write (default: the recording's name with .tid)");

    std::string file, tide;
    auto* info = app.add_subcommand("info", "list the records of a recording");
    info->add_option("file", file, "recording")->required();
    info->add_option("--tide", tide, "tide file (.csv or .tid): show the tide at each ping");

    int ping = 0;
    auto* dump = app.add_subcommand("dump", "print every field of one ping");
    dump->add_option("file", file, "recording")->required();
    dump->add_option("--ping", ping, "ping number, from 0")->required();

    zanrec::RenderOptions ro;
    auto* render = app.add_subcommand("render", "draw one ping as a fan into a PNG");
    render->add_option("file", ro.file, "recording")->required();
    render->add_option("--ping", ro.ping, "ping number, from 0")->required();
    render->add_option("--out", ro.out, "PNG to write")->required();
    render->add_option("--size", ro.size, "picture size in pixels");
    render->add_option("--colour", ro.colour, "colour table: grey or viridis");
    render->add_option("--depth", ro.depth, "colour by depth, MIN:MAX metres");
    render->add_option("--filter", ro.filter, "filter again with kernel 1..4");
    render->add_flag("--grid", ro.grid, "draw the range grid");
    render->add_flag("--overlays", ro.overlays, "draw targets and boundaries");
    render->add_option("--tide", ro.tide, "tide file: reduce the depths by the tide at the ping's time");

    zanrec::MosaicOptions mo;
    auto* mosaic = app.add_subcommand("mosaic", "lay every ping in the world into a PNG");
    mosaic->add_option("file", mo.file, "recording")->required();
    mosaic->add_option("--out", mo.out, "PNG to write")->required();
    mosaic->add_option("--size", mo.size, "picture size in pixels")->check(CLI::Range(16, 8192));
    mosaic->add_option("--depth", mo.depth, "colour by depth, MIN:MAX metres");
    mosaic->add_option("--tide", mo.tide, "tide file: reduce the depths by the tide at each ping's time");

    std::string type, at;
    auto* sensors = app.add_subcommand("sensors", "print sensor records, or all interpolated at one time");
    sensors->add_option("file", file, "recording")->required();
    sensors->add_option("--type", type, "sensor type name or id");
    sensors->add_option("--at", at, "time, seconds since 1970 UTC");

    std::string demoDir = "out/demo";
    int demoPings = 40;
    auto* demo = app.add_subcommand("demo", "synthesise, record, check and draw a survey");
    demo->add_option("--out", demoDir, "folder for the recording and the pictures");
    demo->add_option("--pings", demoPings, "number of pings")->check(CLI::Range(1, 10000));

    std::string panelDir;
    auto* panels = app.add_subcommand("panels", "replay the sensor records into the panels and save their pictures");
    panels->add_option("file", file, "recording")->required();
    panels->add_option("--out", panelDir, "folder for the pictures")->required();
    panels->add_option("--tide", tide, "tide file for the tide panel");

    auto* cat = app.add_subcommand("catalogue", "print the transducer array catalogue");

    AddGeoCommand(app);

    bool verbose = false;
    app.add_flag("-v,--verbose", verbose, "show the library's status lines");

    CLI11_PARSE(app, argc, argv);
    // The library reports status lines (timings, counts) for a live display;
    // the tool shows them only when asked, and always shows alarms.
    if (!verbose)
        Zan::SetSink([](Zan::Kind kind, unsigned long id, int level, const CString& text) {
            if (kind != Zan::Kind::Status)
                std::fprintf(stderr, "zandata %s %lu [%d]: %s\n", kind == Zan::Kind::Alarm ? "alarm" : "console", id,
                             level, text.Utf8().c_str());
        });
    int rc = 0;
    if (*synth) rc = zanrec::Synth(so);
    else if (*info) rc = zanrec::Info(file, tide);
    else if (*dump) rc = zanrec::Dump(file, ping);
    else if (*render) rc = zanrec::Render(ro);
    else if (*mosaic) rc = zanrec::Mosaic(mo);
    else if (*sensors) rc = zanrec::Sensors(file, type, at);
    else if (*panels) rc = zanrec::Panels(file, panelDir, tide);
    else if (*cat) rc = zanrec::Catalogue();
    else if (*demo) rc = zanrec::Demo(demoDir, demoPings);
    CTgtImg::CleanupStatic();
    Geo::ClearDb();
    return rc;
}
