// A ConversionParams record with its CMYK and white-point sub-records, and
// a byte snapshot to tell whether a call changed any of them.
#pragma once

#include <cstring>
#include <string>

#include <glib.h>

#include "ktclr.h"
#include "support/support.h"

namespace kt::test {

struct DialogRecord {
    ConversionParams p = Params(METHOD_ICC, 7);
    CmykOptions cmyk = Cmyk(640);
    IccOptions icc{{KTCLR_WHITE_D65, 0, 0, 0, 0}};

    DialogRecord() {
        p.emulationMethod = 3;
        p.cmykOptions = &cmyk;
        p.iccOptions = &icc;
        std::u16string(u"/profiles/source.icm").copy(p.srcProfilePath, 100);
        std::u16string(u"/profiles/destination.icm").copy(p.dstProfilePath, 100);
        std::u16string(u"/tables/grid.tif").copy(p.emulationTablePath, 100);
    }
    DialogRecord(const DialogRecord&) = delete;

    void SetCustom(double x, double y) {
        icc.values[0] = KTCLR_WHITE_CUSTOM;
        std::memcpy(&icc.values[1], &x, sizeof x);
        std::memcpy(&icc.values[3], &y, sizeof y);
    }
    // What the dialog writes, in words: method, white point, custom x and y,
    // GCR, flags, source, destination and table paths.
    std::string Written() const {
        double x, y;
        std::memcpy(&x, &icc.values[1], sizeof x);
        std::memcpy(&y, &icc.values[3], sizeof y);
        std::string s;
        for (const auto v : {p.method, icc.values[0]}) s += std::to_string(v) + " ";
        s += std::to_string(x) + " " + std::to_string(y) + " " + std::to_string(cmyk.value) + " " +
             std::to_string(cmyk.validMask);
        for (const KtChar16* path : {p.srcProfilePath, p.dstProfilePath, p.emulationTablePath}) {
            g_autofree gchar* utf8 = g_utf16_to_utf8(reinterpret_cast<const gunichar2*>(path), -1, nullptr, nullptr, nullptr);
            s += std::string(" ") + (utf8 ? utf8 : "?");
        }
        return s;
    }

    std::string Bytes() const {
        return std::string(reinterpret_cast<const char*>(&p), sizeof p) +
               std::string(reinterpret_cast<const char*>(&cmyk), sizeof cmyk) +
               std::string(reinterpret_cast<const char*>(&icc), sizeof icc);
    }
};

}  // namespace kt::test
