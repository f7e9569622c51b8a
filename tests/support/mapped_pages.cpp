// Memory with chosen protections, apart from the rest of the support code
// so that the fuzz targets, which do not link GoogleTest, can use it.
#include <sys/mman.h>
#include <unistd.h>

#include <stdexcept>

#include "support/support.h"

namespace kt::test {
namespace {
int Prot(MappedPages::Access a) {
    switch (a) {
        case MappedPages::Access::none: return PROT_NONE;
        case MappedPages::Access::read: return PROT_READ;
        default: return PROT_READ | PROT_WRITE;
    }
}
}  // namespace

MappedPages::MappedPages(std::size_t pages, Access access) : pages_(pages) {
    page_ = static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
    void* p = mmap(nullptr, (pages + 2) * page_, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (p == MAP_FAILED) throw std::runtime_error("mmap");
    region_ = static_cast<unsigned char*>(p);
    base_ = region_ + page_;
    munmap(region_, page_);
    munmap(base_ + pages * page_, page_);
    for (std::size_t i = 0; i < pages; ++i) Protect(i, access);
}

MappedPages::~MappedPages() { munmap(base_, pages_ * page_); }

void MappedPages::Protect(std::size_t page, Access access) {
    unsigned char* at = base_ + page * page_;
    if (access == Access::unmapped) {
        munmap(at, page_);
        return;
    }
    void* p = mmap(at, page_, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS | MAP_FIXED, -1, 0);
    if (p == MAP_FAILED) throw std::runtime_error("mmap fixed");
    mprotect(at, page_, Prot(access));
}

}  // namespace kt::test
