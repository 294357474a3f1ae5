// DSA: refused in the verified service. Where the module does not serve, what needs random numbers
// or hashes fails and the rest computes.
#include "tests/gates/gates.hpp"

namespace zel::test {
namespace {

struct Arena {
  DSA_PARAM param{};
  MINT x{}, y{};
  DSA_SIGNATURE_BODY body{}, of_value{};
  std::uint8_t value[20]{1}, out[64]{};
  std::uint32_t len = 0;
  FILE *stream = fmemopen(value, sizeof value, "rb");

  Arena() {
    static const DSA_PARAM made = [] {
      DSA_PARAM fresh;
      DSA_GenParam(&fresh, 256, 160);
      return fresh;
    }();
    param = made;
    DSA_GenKey(&x, &y, &param);
    DSA_SP(&of_value, value, &x, &param, &popsha1);
    DSA_SSA_S(&body, value, 20, &x, &param, &popsha1);
  }
};

Answers unless_approved(std::int64_t elsewhere) {
  return gives({elsewhere, elsewhere, elsewhere, 0, 0, 0, ZEL_ERR_APPROVED, elsewhere});
}
const Answers kComputes = unless_approved(ZEL_OK);
const Answers kFails = unless_approved(ZEL_ERR_GENERIC);

const Rows<Arena> kRows{
    {"DSA_EMSA1", kFails, [](Arena &a) { return DSA_EMSA1(a.out, &a.len, a.value, 20, &popsha1); }},
    {"DSA_EMSA1_File", kFails, [](Arena &a) { return DSA_EMSA1_File(a.out, &a.len, a.stream, 20, &popsha1); }},
    {"DSA_SP", kFails, [](Arena &a) { return DSA_SP(&a.body, a.value, &a.x, &a.param, &popsha1); }},
    {"DSA_VP", kComputes, [](Arena &a) { return DSA_VP(&a.of_value, a.value, &a.y, &a.param, &popsha1); }},
    {"DSA_SSA_S", kFails, [](Arena &a) { return DSA_SSA_S(&a.body, a.value, 20, &a.x, &a.param, &popsha1); }},
    {"DSA_SSA_S_Hash", kFails, [](Arena &a) { return DSA_SSA_S_Hash(&a.body, a.value, 20, &a.x, &a.param, &popsha1); }},
    {"DSA_SSA_S_File", kFails, [](Arena &a) { return DSA_SSA_S_File(&a.body, a.stream, 20, &a.x, &a.param, &popsha1); }},
    {"DSA_SSA_V_Hash", kComputes, [](Arena &a) { return DSA_SSA_V_Hash(&a.of_value, a.value, 20, &a.y, &a.param, &popsha1); }},
    {"DSA_SSA_V", kFails, [](Arena &a) { return DSA_SSA_V(&a.body, a.value, 20, &a.y, &a.param, &popsha1); }},
    {"DSA_SSA_V_File", kFails, [](Arena &a) { return DSA_SSA_V_File(&a.body, a.stream, 20, &a.y, &a.param, &popsha1); }},
    {"DSA_GenParam", kComputes, [](Arena &a) { return DSA_GenParam(&a.param, 256, 160); }},
    {"DSA_CheckParam", kComputes, [](Arena &a) { return DSA_CheckParam(&a.param); }},
    {"DSA_GenKey", kFails, [](Arena &a) { return DSA_GenKey(&a.x, &a.y, &a.param); }},
    {"DSA_CheckKey", kComputes, [](Arena &a) { return DSA_CheckKey(&a.x, &a.y, &a.param); }},
    {"DSA_CheckKeyPair", kComputes, [](Arena &a) { return DSA_CheckKeyPair(&a.x, &a.y, &a.param); }},
};

}  // namespace
}  // namespace zel::test
