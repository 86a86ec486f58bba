#include "kernels/picture_kernel_check.h"
#include "support/reorder_cases.h"

namespace pixmorph_test {
namespace {

const bool kChecked = [] {
    for (const ReorderCase& c : kReorderCases) CheckedSlots().insert(c.slot);
    return true;
}();

class ReorderKernels : public testing::TestWithParam<ReorderCase> {};

TEST_P(ReorderKernels, VariantsEqualThePlainForm) {
    const ReorderCase& c = GetParam();
    CheckPictureKernel({c.slot, c.to, c.from, c.WidthStep(), c.HeightStep()});
}

INSTANTIATE_TEST_SUITE_P(ConvertReorder, ReorderKernels, testing::ValuesIn(kReorderCases),
                         SlotTestName<testing::TestParamInfo<ReorderCase>>);

}  // namespace
}  // namespace pixmorph_test
