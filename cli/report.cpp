#include "report.h"

#include <unistd.h>

#include <cstdio>
#include <mutex>

#include <ktclr.h>

namespace ktcli {
namespace {
std::mutex gLock;
bool gBarShown = false;

void EraseBar() {
    if (gBarShown) fputs("\r\033[K", stderr);
    gBarShown = false;
}
}  // namespace

bool StderrIsTerminal() { return isatty(STDERR_FILENO) == 1; }

void ReportError(const std::string& file, const std::string& words, int32_t status) {
    std::string line = "ktclr: " + (file.empty() ? "" : file + ": ") + words;
    if (status != 0)
        line += std::string(" (") + Vx_ClrGetStatusName(status) + " " + std::to_string(status) + ": " +
                Vx_ClrGetStatusText(status) + ")";
    Note(line);
}

void Note(const std::string& line) {
    std::lock_guard<std::mutex> hold(gLock);
    EraseBar();
    fprintf(stderr, "%s\n", line.c_str());
}

void Progress(double fraction, const std::string& text, bool clear) {
    if (!StderrIsTerminal()) return;
    std::lock_guard<std::mutex> hold(gLock);
    if (clear) {
        EraseBar();
        return;
    }
    constexpr int kWidth = 30;
    const int filled = static_cast<int>(fraction * kWidth);
    std::string bar(static_cast<size_t>(filled), '#');
    bar.resize(kWidth, '.');
    fprintf(stderr, "\r[%s] %3d%% %s\033[K", bar.c_str(), static_cast<int>(fraction * 100), text.c_str());
    gBarShown = true;
}

}  // namespace ktcli
