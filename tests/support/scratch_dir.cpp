#include "support/scratch_dir.h"

#include <dirent.h>
#include <gtest/gtest.h>
#include <stdlib.h>
#include <sys/stat.h>
#include <sys/wait.h>

#include <algorithm>
#include <cstdio>
#include <fstream>
#include <iterator>

#include "platform/utf16.h"

namespace kt::test {

ScratchDir::ScratchDir() {
    char tmpl[] = "/tmp/ktclr-test-XXXXXX";
    if (!mkdtemp(tmpl)) ADD_FAILURE() << "mkdtemp failed";
    path_ = tmpl;
}

ScratchDir::~ScratchDir() { Run("rm -rf '" + path_ + "'"); }

std::vector<std::string> ScratchDir::Entries() const {
    std::vector<std::string> names;
    if (DIR* d = opendir(path_.c_str())) {
        while (dirent* e = readdir(d))
            if (std::string(e->d_name) != "." && std::string(e->d_name) != "..") names.push_back(e->d_name);
        closedir(d);
    }
    std::sort(names.begin(), names.end());
    return names;
}

std::string ReadFile(const std::string& path) {
    struct stat st;
    if (stat(path.c_str(), &st) != 0 || !S_ISREG(st.st_mode)) return "";
    std::ifstream in(path, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(in), {});
}

void WriteFile(const std::string& path, const std::string& bytes) {
    std::ofstream out(path, std::ios::binary | std::ios::trunc);
    out.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
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

}  // namespace kt::test
