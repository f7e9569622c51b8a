// Conversion handles for one file: one handle, or two through RGB where the
// built-in formulas have no kernel for the pair; bands of packed rows in,
// bands out.
#pragma once

#include <string>
#include <vector>

#include <ktclr.h>

#include "profiles.h"
#include "spaces.h"

namespace ktcli {

struct PipelineSpec {
    int src = CS_RGB, dst = CS_RGB;
    Method method = Method::Builtin;
    Bytes srcProfile, dstProfile;  // custom ICC only
    std::string table;             // custom emulation only
    int black = -1;
};

class Pipeline {
public:
    explicit Pipeline(const PipelineSpec& spec);
    ~Pipeline();
    Pipeline(const Pipeline&) = delete;
    Pipeline& operator=(const Pipeline&) = delete;

    // Converts `rows` packed rows of `width` pixels; `in` may be changed.
    void Convert(uint8_t* in, uint8_t* out, int width, int rows);
    int Steps() const { return static_cast<int>(handles_.size()); }

private:
    void AddHandle(int src, int dst);
    void FreeAll();

    PipelineSpec spec_;
    std::vector<ClrHandle*> handles_;
    std::vector<uint8_t> middle_;
};

}  // namespace ktcli
