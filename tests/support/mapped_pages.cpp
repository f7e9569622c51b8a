// Memory with chosen protections, apart from the rest of the support code
// so that the fuzz targets, which do not link GoogleTest, can use it.
#include <sys/mman.h>
#include <unistd.h>

#include <stdexcept>

#include "support/support.h"

namespace kt::test {

MappedPages::MappedPages(std::size_t pages, Access access)
    : pages_(pages), page_(static_cast<std::size_t>(sysconf(_SC_PAGESIZE))) {
    void* p = mmap(nullptr, (pages + 2) * page_, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (p == MAP_FAILED) throw std::runtime_error("mmap");
    base_ = static_cast<unsigned char*>(p) + page_;
    munmap(p, page_);  // the guard pages
    munmap(end(), page_);
    for (std::size_t i = 0; i < pages; ++i) Protect(i, access);
}

MappedPages::~MappedPages() { munmap(base_, size()); }

void MappedPages::Protect(std::size_t page, Access access) {
    unsigned char* at = base_ + page * page_;
    if (access == Access::unmapped) {
        munmap(at, page_);
        return;
    }
    if (mmap(at, page_, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS | MAP_FIXED, -1, 0) == MAP_FAILED)
        throw std::runtime_error("mmap fixed");
    const int prot[] = {PROT_NONE, PROT_READ, PROT_READ | PROT_WRITE};
    mprotect(at, page_, prot[static_cast<int>(access)]);
}

}  // namespace kt::test
