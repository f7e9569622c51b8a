// Files: the scratch folder, whole-file helpers and the file-failure loop.
#include <gtest/gtest.h>
#include <stdlib.h>
#include <sys/wait.h>

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>

#include "platform/utf16.h"
#include "support/support.h"

namespace kt::test {

namespace fs = std::filesystem;

ScratchDir::ScratchDir() {
    char tmpl[] = "/tmp/ktclr-test-XXXXXX";
    if (!mkdtemp(tmpl)) ADD_FAILURE() << "mkdtemp failed";
    path_ = tmpl;
}

ScratchDir::~ScratchDir() {
    std::error_code ignored;
    fs::remove_all(path_, ignored);
}

std::string ScratchDir::Write(const std::string& name, const Bytes& b) const {
    WriteFile(File(name), std::string(b.begin(), b.end()));
    return File(name);
}

std::vector<std::string> ScratchDir::Entries() const {
    std::vector<std::string> names;
    for (const auto& e : fs::directory_iterator(path_)) names.push_back(e.path().filename());
    std::sort(names.begin(), names.end());
    return names;
}

std::string ReadFile(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    return fs::is_regular_file(path) ? std::string(std::istreambuf_iterator<char>(in), {}) : "";
}

void WriteFile(const std::string& path, const std::string& bytes) {
    std::ofstream(path, std::ios::binary | std::ios::trunc).write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
}

std::u16string Wide(const std::string& utf8) {
    std::u16string out(utf8.size() + 1, u'\0');
    out.resize(text::Utf8ToUtf16(utf8.c_str(), utf8.size(), out.data(), out.size()) - 1);
    return out;
}

int Run(const std::string& command, std::string* out) {
    FILE* p = popen(command.c_str(), "r");
    if (!p) return -1;
    std::string text;
    char buffer[65536];
    for (std::size_t n; (n = fread(buffer, 1, sizeof buffer, p)) > 0;) text.append(buffer, n);
    const int status = pclose(p);
    if (out) *out = std::move(text);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

int ForEachFileFault(const std::function<int()>& run, const std::function<void(file::faults::Op, int, int)>& check) {
    namespace ctl = file::faults::testing;
    int total = 0;
    for (int k = 0; k < static_cast<int>(file::faults::Op::count); ++k) {
        const auto op = static_cast<file::faults::Op>(k);
        for (int n = 1;; ++n) {
            ctl::FailNth(op, n);
            const int status = run();
            const bool fired = ctl::Fired();
            const int count = static_cast<int>(ctl::Count(op));
            ctl::Reset();
            if (!fired) total += count;
            if (n == 100000) ADD_FAILURE() << "operation never completed";
            if (!fired || n == 100000) break;
            check(op, n, status);
        }
    }
    return total;
}

}  // namespace kt::test
