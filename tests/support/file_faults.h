// Runs an operation once per file operation of each kind it makes, failing
// that one operation, until a run completes without the failure firing.
#pragma once

#include <functional>

#include "platform/file_faults.h"

namespace kt::test {

// `run` returns the status it got; `check(op, n, status)` judges each run in
// which the n-th operation of kind `op` failed. Returns the number of
// operations of all kinds in a clean run.
int ForEachFileFault(const std::function<int()>& run,
                     const std::function<void(file::faults::Op op, int n, int status)>& check);

}  // namespace kt::test
