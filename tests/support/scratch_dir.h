// A fresh temporary folder per test, and whole-file helpers.
#pragma once

#include <string>
#include <vector>

namespace kt::test {

class ScratchDir {
public:
    ScratchDir();
    ~ScratchDir();
    ScratchDir(const ScratchDir&) = delete;
    ScratchDir& operator=(const ScratchDir&) = delete;
    const std::string& path() const { return path_; }
    std::string File(const std::string& name) const { return path_ + "/" + name; }
    // Names in the folder, sorted.
    std::vector<std::string> Entries() const;

private:
    std::string path_;
};

std::string ReadFile(const std::string& path);
void WriteFile(const std::string& path, const std::string& bytes);
std::u16string Wide(const std::string& utf8);
// Runs a shell command; returns its exit status and fills `out` with stdout.
int Run(const std::string& command, std::string* out = nullptr);

}  // namespace kt::test
