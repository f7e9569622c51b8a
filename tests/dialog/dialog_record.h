// A ConversionParams record with its CMYK and white-point sub-records, and
// a byte snapshot to tell whether a call changed any of them.
#pragma once

#include <cstring>
#include <string>
#include <vector>

#include "ktclr.h"

namespace kt::test {

struct DialogRecord {
    ConversionParams p{};
    CmykOptions cmyk{KTCLR_SIZEOF_CMYK_OPTIONS, 640, 0};
    IccOptions icc{{KTCLR_WHITE_D65, 0, 0, 0, 0}};

    DialogRecord() {
        p.structSize = KTCLR_SIZEOF_CONVERSION_PARAMS_EX;
        p.method = METHOD_ICC;
        p.prepareMethods = 7;
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
    double X() const { return Double(1); }
    double Y() const { return Double(3); }
    double Double(int first) const {
        double v;
        std::memcpy(&v, &icc.values[first], sizeof v);
        return v;
    }

    std::vector<unsigned char> Bytes() const {
        std::vector<unsigned char> b(sizeof p + sizeof cmyk + sizeof icc);
        std::memcpy(b.data(), &p, sizeof p);
        std::memcpy(b.data() + sizeof p, &cmyk, sizeof cmyk);
        std::memcpy(b.data() + sizeof p + sizeof cmyk, &icc, sizeof icc);
        return b;
    }
};

}  // namespace kt::test
