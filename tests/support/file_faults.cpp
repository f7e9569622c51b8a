#include "support/file_faults.h"

#include <gtest/gtest.h>

namespace kt::test {

int ForEachFileFault(const std::function<int()>& run,
                     const std::function<void(file::faults::Op, int, int)>& check) {
    using file::faults::Op;
    namespace ctl = file::faults::testing;
    int total = 0;
    for (int k = 0; k < static_cast<int>(Op::count); ++k) {
        const auto op = static_cast<Op>(k);
        for (int n = 1;; ++n) {
            if (n > 100000) {
                ADD_FAILURE() << "operation never completed";
                break;
            }
            ctl::FailNth(op, n);
            const int status = run();
            const bool fired = ctl::Fired();
            const int count = static_cast<int>(ctl::Count(op));
            ctl::Reset();
            if (!fired) {
                total += count;
                break;
            }
            check(op, n, status);
        }
    }
    return total;
}

}  // namespace kt::test
