// The functions of the module state have no gate: their table says what each gives in each state.
#include "tests/gates/gates.hpp"

namespace zel::test {
namespace {

struct Arena {};

constexpr std::int64_t kNo = ZEL_ERR_STATE;

//                                             -98  -1    0    1    2    3    4    5
const Rows<Arena> kRows{
    {"KZEL_CC_GetState", gives({-98, -1, 0, 1, 2, 3, 4, 5}), [](Arena &) { return KZEL_CC_GetState(); }},
    {"KZEL_CC_GetPreState", gives({0, 0, 0, 0, 0, 0, 0, 0}), [](Arena &) { return KZEL_CC_GetPreState(); }},
    {"KZEL_CC_SetState", gives({-98, 7, 7, 7, 7, 7, 7, 7}), [](Arena &) { return KZEL_CC_SetState(7); }},
    {"KZEL_CC_Initialize", gives({0, 0, 0, 0, 0, 0, 0, 0}), [](Arena &) { return KZEL_CC_Initialize(); }},
    {"KZEL_CC_Finalize", gives({-98, -1, 0, 1, 2, 3, 4, 5}), [](Arena &) { return KZEL_CC_Finalize(); }},
    {"KZEL_CC_SetStateVerifiedService", gives({kNo, kNo, kNo, kNo, kNo, 4, kNo, kNo}), [](Arena &) { return KZEL_CC_SetStateVerifiedService(); }},
    {"KZEL_CC_SetStateNotVerifiedService", gives({kNo, kNo, kNo, kNo, kNo, kNo, 3, kNo}), [](Arena &) { return KZEL_CC_SetStateNotVerifiedService(); }},
    {"KZEL_CC_SetStateConditionalSelfTest", gives({-98, -1, 0, 1, 2, 2, 2, 5}), [](Arena &) { return KZEL_CC_SetStateConditionalSelfTest(); }},
    {"KZEL_CC_SetPreStateConditionalSelfTest", gives({-98, -1, 0, 1, 0, 3, 4, 5}), [](Arena &) { return KZEL_CC_SetPreStateConditionalSelfTest(); }},
};

}  // namespace
}  // namespace zel::test
