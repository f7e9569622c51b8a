#include "convert.h"

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstdio>
#include <map>
#include <mutex>
#include <thread>

#include <ktclr.h>

#include "pipeline.h"
#include "profiles.h"
#include "report.h"

namespace ktcli {
namespace {

constexpr size_t kBandBytes = 4u << 20;

// Progress of the running files, in thousandths, one slot per worker.
struct ProgressState {
    std::vector<std::atomic<int>> slots;
    std::atomic<int> done{0};
    int total = 0;
    explicit ProgressState(size_t workers, int files) : slots(workers), total(files) {}
    double Fraction() const {
        double sum = done;
        for (const auto& s : slots) sum += s / 1000.0;
        return total ? sum / total : 1.0;
    }
};

std::string Stem(const std::string& path) {
    if (path == "-") return "stdin";
    std::string base = path.substr(path.find_last_of('/') + 1);
    const size_t dot = base.find_last_of('.');
    return dot == std::string::npos || dot == 0 ? base : base.substr(0, dot);
}

FileFormat OutputFormat(const ConvertOptions& o) {
    if (o.format != FileFormat::Unknown) return o.format;
    if (!o.output.empty() && o.output != "-") {
        const FileFormat f = FormatFromName(o.output);
        if (f != FileFormat::Unknown) return f;
    }
    return FileFormat::Tiff;
}

std::string OutputPath(const ConvertOptions& o, const std::string& input) {
    if (!o.output.empty()) return o.output;
    return o.directory + "/" + Stem(input) + "." + FormatExtension(OutputFormat(o));
}

Bytes EmbeddedProfile(const std::string& path) {
    ProfileRecord p;
    const std::u16string name = Wide(path);
    if (Vx_LoadICCProfile(reinterpret_cast<const KtChar16*>(name.c_str()), &p.r, nullptr) != STATUS_OK ||
        !p.r.profileData)
        return {};
    return Bytes(p.r.profileData, p.r.profileData + p.r.profileSize);
}

std::string ProfileOrigin(const std::string& given, bool embedded) {
    return !given.empty() ? given : embedded ? "embedded" : "built-in";
}

// Decides the method and the profiles for one file; fills the pipeline's
// spec and the profile to embed. Notes what it chose for -v.
void Choose(const ConvertOptions& o, const std::string& input, PipelineSpec* spec, Bytes* embed, std::string* note) {
    const int src = spec->src, dst = spec->dst;
    const bool customProfiles = !o.srcProfile.empty() || !o.dstProfile.empty();
    Method m = o.method.value_or(Method::Builtin);
    bool embedded = false;
    if (!o.method && Serves(Method::Icc, src, dst) && (src != dst || customProfiles)) m = Method::Icc;
    if (m == Method::Icc || m == Method::CustomIcc) {
        if (o.srcProfile.empty() && input != "-") {
            Bytes bytes = EmbeddedProfile(input);
            if (!bytes.empty() && ProfileColorSpace(bytes) == IccSignatureFor(src)) {
                spec->srcProfile = std::move(bytes);
                embedded = true;
            } else if (!bytes.empty() && o.verbose) {
                Note("ktclr: " + input + ": embedded profile is for " + SigText(ProfileColorSpace(bytes)) +
                     " pixels, not " + SpaceById(src)->name + ": not used");
            }
        }
        if (customProfiles || embedded) m = Method::CustomIcc;
    }
    if (!Serves(m, src, dst))
        throw Failure(std::string("method ") + MethodName(m) + " does not convert " + SpaceById(src)->name + " to " +
                      SpaceById(dst)->name + "; methods that do: " + ServingMethods(src, dst));
    // METHOD_ICC takes its intent from the built-in profile and converts
    // only pairs with RGB or Lab on a side; custom ICC on the built-in
    // profiles' bytes does the rest, with the same profiles.
    const bool needsBytes = o.intent >= 0 || (src != CS_RGB && src != CS_BGR && src != CS_LAB && dst != CS_RGB &&
                                                dst != CS_BGR && dst != CS_LAB);
    if (m == Method::Icc && needsBytes) m = Method::CustomIcc;
    if (m == Method::CustomIcc) {
        if (!o.srcProfile.empty()) spec->srcProfile = ReadFile(o.srcProfile);
        if (spec->srcProfile.empty()) spec->srcProfile = BuiltinProfile(BuiltinProfileFor(src));
        spec->dstProfile = o.dstProfile.empty() ? BuiltinProfile(BuiltinProfileFor(dst)) : ReadFile(o.dstProfile);
        if (ProfileColorSpace(spec->srcProfile) != IccSignatureFor(src))
            throw Failure("source profile is for " + SigText(ProfileColorSpace(spec->srcProfile)) + " pixels, not " +
                          SpaceById(src)->name);
        if (o.intent >= 0) spec->dstProfile = WithIntent(spec->dstProfile, static_cast<uint32_t>(o.intent));
        *embed = spec->dstProfile;
    } else if (m == Method::Icc) {
        *embed = BuiltinProfile(BuiltinProfileFor(dst));
    }
    // The built-in Lab profile takes the signed a and b bytes as its device
    // values; readers that decode TIFF Lab themselves (tificc) would apply
    // it on top of their own decoding. Lab needs no profile.
    if (dst == CS_LAB && o.dstProfile.empty()) embed->clear();
    spec->method = m;
    spec->table = o.table;
    spec->black = o.black;
    *note = std::string("by ") + MethodName(m);
    if (m == Method::Icc) *note += " (built-in profiles)";
    if (m == Method::CustomIcc)
        *note += " (source profile " + ProfileOrigin(o.srcProfile, embedded) + ", destination profile " +
                 ProfileOrigin(o.dstProfile, false) + ")";
    if (o.intent >= 0) *note += std::string(", intent ") + kIntentNames[o.intent];
}

std::string RawLayout(int space, int width, int height) {
    const SpaceInfo* s = SpaceById(space);
    return std::string("raw ") + s->name + ", " + std::to_string(width) + " x " + std::to_string(height) + ", " +
           std::to_string(s->bits) + " bits a pixel (" + s->layout + "), rows of " +
           std::to_string(RowBytes(space, width)) + " bytes, " + std::to_string(RowBytes(space, width) * height) +
           " bytes";
}

void ConvertOne(const ConvertOptions& o, const std::string& input, const std::string& shown,
                std::atomic<int>* progress) {
    const auto start = std::chrono::steady_clock::now();
    const FileFormat inFormat = DetectFormat(input);
    std::unique_ptr<Reader> reader = OpenReader(input, inFormat, o.from, o.rawWidth, o.rawHeight);
    ImageInfo info = reader->info();
    if (inFormat != FileFormat::Raw && o.from >= 0) {
        if (SpaceById(o.from)->bits != SpaceById(info.space)->bits)
            throw Failure(std::string("the image holds ") + std::to_string(SpaceById(info.space)->bits / 8) +
                          "-byte pixels; --from " + SpaceById(o.from)->name + " needs " +
                          std::to_string(SpaceById(o.from)->bits / 8));
        info.space = o.from;
    }
    const FileFormat outFormat = OutputFormat(o);
    PipelineSpec spec;
    spec.src = info.space;
    spec.dst = o.to;
    if (o.bgr && inFormat == FileFormat::Raw && spec.src == CS_RGB) spec.src = CS_BGR;
    if (o.bgr && outFormat == FileFormat::Raw && spec.dst == CS_RGB) spec.dst = CS_BGR;
    if (!FormatHolds(outFormat, spec.dst))
        throw Failure(std::string(FormatName(outFormat)) + " cannot hold " + SpaceById(spec.dst)->name +
                      " pixels (PNG, JPEG and WebP hold rgb; TIFF the 3- and 4-byte spaces; raw all)");
    WriteSpec ws;
    std::string note;
    Choose(o, input, &spec, &ws.icc, &note);
    if (outFormat == FileFormat::Raw) ws.icc.clear();  // raw bytes hold no profile
    Pipeline pipeline(spec);

    const int w = info.width, h = info.height;
    const size_t inRow = RowBytes(spec.src, w), outRow = RowBytes(spec.dst, w);
    int band = o.bandRows > 0 ? o.bandRows : static_cast<int>(std::max<size_t>(1, kBandBytes / std::max(inRow, outRow)));
    band = std::min(band, h);
    if (spec.src == CS_YUV410_PLANAR || spec.dst == CS_YUV410_PLANAR) band = std::max(4, band / 4 * 4);
    std::vector<uint8_t> in(RowBytes(spec.src, w) * band + 16), out(RowBytes(spec.dst, w) * band + 16);

    ws.path = o.output.empty() ? OutputPath(o, input) : o.output;
    ws.format = outFormat;
    ws.width = w;
    ws.height = h;
    ws.space = spec.dst;
    ws.quality = o.quality;
    std::unique_ptr<Writer> writer = OpenWriter(ws);
    for (int y = 0; y < h; y += band) {
        const int rows = std::min(band, h - y);
        reader->read(in.data(), rows);
        pipeline.Convert(in.data(), out.data(), w, rows);
        writer->write(out.data(), rows);
        *progress = static_cast<int>(1000.0 * (y + rows) / h);
    }
    writer->finish();
    if (o.verbose) {
        const double seconds =
            std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
        char timing[64];
        snprintf(timing, sizeof timing, "%.3f s", seconds);
        Note("ktclr: " + shown + " (" + FormatName(inFormat) + " " + std::to_string(w) + "x" + std::to_string(h) +
             " " + SpaceById(spec.src)->name + ") -> " + ws.path + " (" + FormatName(outFormat) + " " +
             SpaceById(spec.dst)->name + ") " + note + ", bands of " + std::to_string(band) + " rows, " +
             (ws.icc.empty() ? "no profile embedded" : std::to_string(ws.icc.size()) + "-byte profile embedded") +
             ", " + timing);
        if (outFormat == FileFormat::Raw) Note("ktclr: " + ws.path + ": " + RawLayout(spec.dst, w, h));
    }
}

// Standard input as a file: the readers and the profile finder seek.
std::string SpoolStdin() {
    const char* dir = getenv("TMPDIR");
    std::string path = std::string(dir && *dir ? dir : "/tmp") + "/ktclr-stdin-XXXXXX";
    const int fd = mkstemp(path.data());
    if (fd < 0) throw Failure("cannot make a temporary file for standard input");
    char buf[1 << 16];
    for (ssize_t n; (n = read(STDIN_FILENO, buf, sizeof buf)) > 0;)
        if (write(fd, buf, static_cast<size_t>(n)) != n) {
            close(fd);
            unlink(path.c_str());
            throw Failure("cannot spool standard input");
        }
    close(fd);
    return path;
}

}  // namespace

int RunConvert(const ConvertOptions& o) {
    std::vector<std::string> files = o.inputs;
    std::string spooled;
    try {
        for (std::string& f : files)
            if (f == "-") f = spooled = SpoolStdin();
    } catch (const Failure& e) {
        ReportError("-", e.what());
        return 1;
    }
    const auto start = std::chrono::steady_clock::now();
    const unsigned cores = std::max(1u, std::thread::hardware_concurrency());
    const size_t workers = std::min<size_t>(files.size(), o.jobs > 0 ? static_cast<size_t>(o.jobs) : cores);
    ProgressState progress(workers, static_cast<int>(files.size()));
    std::atomic<size_t> next{0};
    std::atomic<int> failed{0};
    auto work = [&](size_t slot) {
        for (size_t i; (i = next++) < files.size();) {
            const std::string shown = o.inputs[i] == "-" ? "<stdin>" : o.inputs[i];
            try {
                ConvertOne(o, files[i], shown, &progress.slots[slot]);
            } catch (const Failure& e) {
                ReportError(shown, e.what(), e.status);
                ++failed;
            } catch (const std::exception& e) {
                ReportError(shown, e.what());
                ++failed;
            }
            progress.slots[slot] = 0;
            ++progress.done;
        }
    };
    std::mutex lock;
    std::condition_variable wake;
    bool finished = false;
    std::thread bar;
    if (StderrIsTerminal()) {
        bar = std::thread([&] {
            std::unique_lock<std::mutex> hold(lock);
            do
                Progress(progress.Fraction(),
                         std::to_string(progress.done) + "/" + std::to_string(progress.total) + " files");
            while (!wake.wait_for(hold, std::chrono::milliseconds(100), [&] { return finished; }));
        });
    }
    std::vector<std::thread> threads;
    for (size_t k = 1; k < workers; ++k) threads.emplace_back(work, k);
    work(0);
    for (std::thread& t : threads) t.join();
    if (bar.joinable()) {
        {
            std::lock_guard<std::mutex> hold(lock);
            finished = true;
        }
        wake.notify_all();
        bar.join();
        Progress(1, "", true);
    }
    if (!spooled.empty()) unlink(spooled.c_str());
    if (o.verbose || StderrIsTerminal()) {
        char line[160];
        snprintf(line, sizeof line, "ktclr: converted %zu of %zu file%s to %s in %.2f s on %zu thread%s%s",
                 files.size() - failed, files.size(), files.size() == 1 ? "" : "s", SpaceById(o.to)->name,
                 std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count(), workers,
                 workers == 1 ? "" : "s", failed ? " (some failed)" : "");
        Note(line);
    }
    return failed ? 1 : 0;
}

}  // namespace ktcli
