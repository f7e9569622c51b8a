// `ktclr convert`: inputs to one color space, in bands, over the cores.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "image.h"
#include "spaces.h"

namespace ktcli {

struct ConvertOptions {
    std::vector<std::string> inputs;
    std::string output, directory;
    int to = -1, from = -1;
    std::optional<Method> method;
    std::string srcProfile, dstProfile, table;
    int black = -1;       // -1: the library's default
    int intent = -1;      // -1: as the destination profile says
    bool bgr = false;     // raw RGB files hold B,G,R
    int rawWidth = 0, rawHeight = 0;
    FileFormat format = FileFormat::Unknown;
    int quality = 90;
    int jobs = 0;         // 0: every core
    int bandRows = 0;     // 0: about 4 MiB a band
    bool verbose = false;
};

// Converts every input; returns the exit status (0 all done, 1 some failed).
int RunConvert(const ConvertOptions& options);

}  // namespace ktcli
