// One-line messages on standard error, whole lines even from many threads.
#pragma once

#include <cstdint>
#include <string>

namespace ktcli {

// "ktclr: FILE: WORDS (NAME NUMBER)"; the status part only when status != 0.
void ReportError(const std::string& file, const std::string& words, int32_t status = 0);
// A line on standard error as it is (verbose notes, summaries).
void Note(const std::string& line);
// Draws the progress bar (stderr on a terminal only); `clear` erases it.
void Progress(double fraction, const std::string& text, bool clear = false);
bool StderrIsTerminal();

}  // namespace ktcli
