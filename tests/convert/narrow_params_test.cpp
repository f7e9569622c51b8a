// ConversionParamsA: the wide record it becomes and the back-copy (the two
// twins reaching the wide functions: handle_test.cpp). The text
// conversions themselves: tests/platform/narrow_text_test.cpp.
#include <gtest/gtest.h>

#include <string>

#include "convert/narrow_params.h"
#include "support/support.h"

namespace kt {
namespace {

void SetNarrow(char* field, const std::string& s) {
    std::memset(field, 0, KTCLR_PARAMS_PATH_BYTES);
    std::memcpy(field, s.data(), std::min<std::size_t>(s.size(), KTCLR_PARAMS_PATH_BYTES));
}

// Every field distinct, so a swap shows.
TEST(NarrowParams, WideRecordAndBackCopy) {
    test::ScopedLocale locale("C.UTF-8");
    ConversionParamsA a;
    std::memset(&a, 0, sizeof a);
    a.structSize = 12345;  // neither checked nor copied
    a.method = 3, a.prepareMethods = 7, a.emulationMethod = 9;
    a.iccOptions = reinterpret_cast<IccOptions*>(0x10);
    a.srcProfileMemory = reinterpret_cast<ProfileMemory*>(0x20), a.dstProfileMemory = reinterpret_cast<ProfileMemory*>(0x30);
    a.cmykOptions = reinterpret_cast<CmykOptions*>(0x40), a.yuvOptions = reinterpret_cast<YuvOptions*>(0x50);
    a.labOptions = reinterpret_cast<LabOptions*>(0x60);
    SetNarrow(a.srcProfilePath, "/p/caf\xC3\xA9.icc");
    SetNarrow(a.dstProfilePath, std::string(263, 'd'));
    SetNarrow(a.emulationTablePath, std::string(KTCLR_PARAMS_PATH_BYTES, 'e'));  // no terminator: arrives empty
    ConversionParams w, expected = test::Params(3, 7);  // iccFlags stays 0
    expected.iccOptions = a.iccOptions, expected.emulationMethod = 9;
    expected.srcProfileMemory = a.srcProfileMemory, expected.dstProfileMemory = a.dstProfileMemory;
    expected.cmykOptions = a.cmykOptions, expected.yuvOptions = a.yuvOptions, expected.labOptions = a.labOptions;
    std::u16string src = u"/p/café.icc", dst(263, u'd');
    std::copy(src.begin(), src.end(), expected.srcProfilePath);
    std::copy(dst.begin(), dst.end(), expected.dstProfilePath);
    std::memset(&w, 0xA5, sizeof w);
    kt::convert::ParamsFromNarrow(a, &w);
    EXPECT_EQ(std::memcmp(&w, &expected, sizeof w), 0);

    ConversionParamsA back;
    std::memset(&back, 0, sizeof back);
    kt::convert::ParamsToNarrow(w, &back);
    back.structSize = a.structSize;
    SetNarrow(back.emulationTablePath, std::string(KTCLR_PARAMS_PATH_BYTES, 'e'));
    EXPECT_EQ(std::memcmp(&back, &a, sizeof a), 0);
    test::ScopedLocale c("C");  // the back-copy substitutes what C cannot encode
    kt::convert::ParamsToNarrow(w, &back);
    EXPECT_EQ(std::string(back.srcProfilePath), "/p/caf?.icc");
}

}  // namespace
}  // namespace kt
