// ktclr: convert images between color spaces and move ICC profiles in and
// out of files, through the library's public interface.
#include <unistd.h>

#include <CLI/CLI.hpp>
#include <cstdio>
#include <iterator>
#include <set>

#include <ktclr.h>

#include "convert.h"
#include "profile_cmd.h"
#include "profiles.h"
#include "report.h"
#include "spaces.h"

namespace {

using namespace ktcli;

// Usage problems found after parsing: one line, exit status 2.
struct Usage : std::runtime_error {
    using std::runtime_error::runtime_error;
};

int SpaceArg(const std::string& name, const char* option) {
    if (name.empty()) return -1;
    const SpaceInfo* s = SpaceByName(name);
    if (!s) throw Usage(std::string(option) + ": unknown space '" + name + "'; spaces: " + SpaceNames());
    return s->id;
}

void CheckConvert(ConvertOptions& o, const std::string& to, const std::string& from, const std::string& method,
                  const std::string& intent, const std::string& size, const std::string& format) {
    o.to = SpaceArg(to, "--to");
    o.from = SpaceArg(from, "--from");
    if (!method.empty()) {
        Method m;
        if (!MethodByName(method, &m))
            throw Usage("--method: unknown method '" + method + "'; methods: " + MethodNames());
        o.method = m;
    }
    if (!intent.empty()) {
        std::string names;
        for (int i = 0; i < static_cast<int>(std::size(kIntentNames)); ++i) {
            if (intent == kIntentNames[i]) o.intent = i;
            names += (i ? ", " : "") + std::string(kIntentNames[i]);
        }
        if (o.intent < 0) throw Usage("--intent: one of " + names);
    }
    if (!size.empty() && sscanf(size.c_str(), "%dx%d", &o.rawWidth, &o.rawHeight) != 2)
        throw Usage("--size: WIDTHxHEIGHT, as 640x480");
    if (!format.empty()) {
        o.format = FormatFromName("x." + format);
        if (o.format == FileFormat::Unknown) throw Usage("--format: one of tiff, png, jpeg, webp, raw");
    }
    if (o.output.empty() == o.directory.empty()) throw Usage("give the output: -o FILE (one input) or -d DIR");
    if (!o.output.empty() && o.inputs.size() > 1) throw Usage("-o takes one input; use -d DIR for several");
    if (std::count(o.inputs.begin(), o.inputs.end(), "-") > 1) throw Usage("standard input can be read once");
    if (o.output == "-" && o.format == FileFormat::Unknown) throw Usage("-o - needs --format");
    const bool customProfiles = !o.srcProfile.empty() || !o.dstProfile.empty();
    if (customProfiles && o.method && *o.method != Method::CustomIcc)
        throw Usage("--src-profile and --dst-profile serve --method custom-icc (the default when they are given)");
    if (o.intent >= 0 && o.method && *o.method != Method::Icc && *o.method != Method::CustomIcc)
        throw Usage("--intent serves the icc and custom-icc methods");
    if (o.method == Method::CustomEmulation && o.table.empty()) throw Usage("--method custom-emulation needs --table");
    // The library quietly falls back to a built-in profile for a path that
    // does not exist: a missing file is an error here.
    for (const std::string* p : {&o.srcProfile, &o.dstProfile, &o.table})
        if (!p->empty() && access(p->c_str(), R_OK) != 0)
            throw Failure(*p + (*p == o.table ? ": no such table file" : ": no such profile file"), ERR_FILE_NOT_FOUND);
    if (o.black > 255) throw Usage("--black: 0 to 255");
    if (!o.directory.empty()) {
        std::set<std::string> seen;
        for (const std::string& in : o.inputs) {
            std::string stem = in.substr(in.find_last_of('/') + 1);
            stem = stem.substr(0, stem.find_last_of('.'));
            if (!seen.insert(stem).second) throw Usage("two inputs named '" + stem + "' would write the same file in " + o.directory);
        }
    }
}

}  // namespace

int main(int argc, char** argv) {
    CLI::App app{"ktclr: color conversion and ICC profiles"};
    app.set_version_flag("--version", std::string("ktclr ") + KTCLR_VERSION);
    app.require_subcommand(1);
    bool verbose = false;
    app.add_flag("-v,--verbose", verbose, "say what was done");

    ConvertOptions co;
    std::string to, from, method, intent, size, format;
    CLI::App* convert = app.add_subcommand("convert", "convert images to another color space");
    convert->add_option("inputs", co.inputs, "PNG, JPEG, TIFF, WebP or .raw files; - for standard input")->required();
    convert->add_option("--to", to, "destination space (see `ktclr spaces`)")->required();
    convert->add_option("-o,--output", co.output, "output file (one input); - for standard output");
    convert->add_option("-d,--dir", co.directory, "output folder; files keep their names")->check(CLI::ExistingDirectory);
    convert->add_option("--from", from, "the space the input's samples are in (default: from the file)");
    convert->add_option("--method", method, "builtin, icc, custom-icc, emulation or custom-emulation");
    convert->add_option("--src-profile", co.srcProfile, "source ICC profile (default: embedded, else built-in)");
    convert->add_option("--dst-profile", co.dstProfile, "destination ICC profile (default: built-in)");
    convert->add_option("--intent", intent, "perceptual, relative, saturation or absolute");
    convert->add_option("--table", co.table, "emulation table (TIFF) for custom-emulation");
    convert->add_option("--black", co.black, "black generation for CMYK, 0-255 (default 175)")->check(CLI::NonNegativeNumber);
    convert->add_flag("--bgr", co.bgr, "raw RGB files hold B,G,R");
    convert->add_option("--size", size, "WIDTHxHEIGHT of a .raw input");
    convert->add_option("--format", format, "tiff, png, jpeg, webp or raw (default: from -o, else tiff)");
    convert->add_option("--quality", co.quality, "JPEG and WebP quality, 1-100")->check(CLI::Range(1, 100));
    convert->add_option("-j,--jobs", co.jobs, "files converted at once (default: every core)")->check(CLI::PositiveNumber);
    convert->add_option("--band", co.bandRows, "rows converted at a time (default: about 4 MiB)")->check(CLI::PositiveNumber);
    convert->add_flag("-v,--verbose", co.verbose, "say what was done, and the layout of .raw output");

    CLI::App* profile = app.add_subcommand("profile", "look into, extract and embed ICC profiles");
    profile->require_subcommand(1);
    std::string file, image, out, name, backup;
    bool json = false;
    CLI::App* info = profile->add_subcommand("info", "header and tag table of an ICC file or an image's profile");
    info->add_option("file", file, "ICC profile or image; - for a profile on standard input")->required();
    info->add_flag("--json", json, "JSON for machines");
    CLI::App* extract = profile->add_subcommand("extract", "write an image's embedded profile to a file");
    extract->add_option("image", image)->required()->check(CLI::ExistingFile);
    extract->add_option("out", out, "ICC file; - for standard output")->required();
    CLI::App* embed = profile->add_subcommand("embed", "embed a profile in an image, in place");
    embed->add_option("image", image, "JPEG, TIFF, GIF or WebP")->required()->check(CLI::ExistingFile);
    embed->add_option("profile", file, "ICC profile file")->required()->check(CLI::ExistingFile);
    embed->add_option("--backup", backup, "keep the original bytes under this name");
    CLI::App* builtin = profile->add_subcommand("builtin", "write one of the library's built-in profiles");
    builtin->add_option("name", name, "rgb, lab, cmyk or cmy")->required()->check(CLI::IsMember({"rgb", "lab", "cmyk", "cmy"}));
    builtin->add_option("out", out, "ICC file; - for standard output")->required();
    CLI::App* spaces = app.add_subcommand("spaces", "the color spaces, their byte layouts and the methods per pair");

    try {
        app.parse(argc, argv);
        if (*convert) {
            co.verbose = co.verbose || verbose;
            CheckConvert(co, to, from, method, intent, size, format);
            return RunConvert(co);
        }
        if (*info) return ProfileInfo(file, json);
        if (*extract) return ProfileExtract(image, out);
        if (*embed) return ProfileEmbed(image, file, backup);
        if (*builtin) return ProfileBuiltin(name, out);
        if (*spaces) return ListSpaces();
    } catch (const CLI::CallForHelp& e) {
        return app.exit(e);
    } catch (const CLI::CallForAllHelp& e) {
        return app.exit(e);
    } catch (const CLI::CallForVersion& e) {
        return app.exit(e);
    } catch (const CLI::ParseError& e) {
        ReportError("", std::string(e.what()) + " (see --help)");
        return 2;
    } catch (const Usage& e) {
        ReportError("", e.what());
        return 2;
    } catch (const Failure& e) {
        ReportError("", e.what(), e.status);
        return 2;
    }
    return 2;
}
