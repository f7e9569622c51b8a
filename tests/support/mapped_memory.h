// Memory with chosen protections for the pointer-probe tests.
#pragma once

#include <cstddef>

namespace kt::test {

// A run of pages, each mapped with its own protection, surrounded by
// unmapped guard pages. Unmapped pages inside the run are allowed too.
class MappedPages {
public:
    enum class Access { none, read, readWrite, unmapped };
    MappedPages(std::size_t pages, Access access);
    ~MappedPages();
    MappedPages(const MappedPages&) = delete;
    MappedPages& operator=(const MappedPages&) = delete;

    void Protect(std::size_t page, Access access);
    unsigned char* data() const { return base_; }
    std::size_t size() const { return pages_ * page_; }
    std::size_t page() const { return page_; }
    // First byte past the run (an unmapped guard page).
    unsigned char* end() const { return base_ + size(); }

private:
    unsigned char* region_ = nullptr;
    unsigned char* base_ = nullptr;
    std::size_t pages_ = 0;
    std::size_t page_ = 0;
};

}  // namespace kt::test
