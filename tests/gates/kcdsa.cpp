// KCDSA asks for the module state only where the state makes hashes and random numbers fail.
#include "tests/gates/gates.hpp"

namespace zel::test {
namespace {

struct Arena {
  KCDSA_PARAM param{};
  KCDSA_PARAM_EX extended{};
  MINT x{}, y{};
  KCDSA_SIGNATURE_BODY body{}, of_value{}, with_z{};
  std::uint8_t value[20]{1}, hash[20]{1}, z[20]{2}, out[64]{};
  std::uint32_t len = 0;
  FILE *stream = fmemopen(value, sizeof value, "rb");

  Arena() {
    KCDSA_GenParam(&param, 224, 160);
    param.seed_len = 0;
    extended.p = param.p, extended.q = param.q, extended.g = param.g;
    KCDSA_GenKey(&x, &y, &param);
    KCDSA_SSA_S(&body, value, 20, &x, &param, &popsha1, &y);
    KCDSA_SSA_S0(&with_z, value, 20, &x, &param, &popsha1, z);
    KCDSA_SSA_S_Hash(&of_value, value, 20, &x, &param, &popsha1, z);
  }
};

const Answers kComputes = gives({0, 0, 0, 0, 0, 0, 0, 0});
const Answers kFails = gives({-1, -1, -1, 0, 0, 0, 0, -1});

const Rows<Arena> kRows{
    {"KCDSA_EMSA1", kFails, [](Arena &a) { return KCDSA_EMSA1(a.out, &a.len, a.value, 20, a.z, 20, &popsha1); }},
    {"KCDSA_EMSA1_File", kFails, [](Arena &a) { return KCDSA_EMSA1_File(a.out, &a.len, a.stream, 20, a.z, 20, &popsha1); }},
    {"KCDSA_SP", kFails, [](Arena &a) { return KCDSA_SP(&a.body, a.hash, &a.x, &a.param, &popsha1); }},
    {"KCDSA_VP", kFails, [](Arena &a) { return KCDSA_VP(&a.of_value, a.value, &a.y, &a.param, &popsha1); }},
    {"KCDSA_SSA_S", kFails, [](Arena &a) { return KCDSA_SSA_S(&a.body, a.value, 20, &a.x, &a.param, &popsha1, &a.y); }},
    {"KCDSA_SSA_S_File", kFails, [](Arena &a) { return KCDSA_SSA_S_File(&a.body, a.stream, 20, &a.x, &a.param, &popsha1, &a.y); }},
    {"KCDSA_SSA_S_Hash", kFails, [](Arena &a) { return KCDSA_SSA_S_Hash(&a.body, a.value, 20, &a.x, &a.param, &popsha1, &a.y); }},
    {"KCDSA_SSA_S0", kFails, [](Arena &a) { return KCDSA_SSA_S0(&a.body, a.value, 20, &a.x, &a.param, &popsha1, a.z); }},
    {"KCDSA_SSA_S0_File", kFails, [](Arena &a) { return KCDSA_SSA_S0_File(&a.body, a.stream, 20, &a.x, &a.param, &popsha1, a.z); }},
    {"KCDSA_SSA_V", kFails, [](Arena &a) { return KCDSA_SSA_V(&a.body, a.value, 20, &a.y, &a.param, &popsha1); }},
    {"KCDSA_SSA_V_File", kFails, [](Arena &a) { return KCDSA_SSA_V_File(&a.body, a.stream, 20, &a.y, &a.param, &popsha1); }},
    {"KCDSA_SSA_V_Hash", kFails, [](Arena &a) { return KCDSA_SSA_V_Hash(&a.of_value, a.value, 20, &a.y, &a.param, &popsha1); }},
    {"KCDSA_SSA_V0", kFails, [](Arena &a) { return KCDSA_SSA_V0(&a.with_z, a.value, 20, &a.y, &a.param, &popsha1, a.z); }},
    {"KCDSA_SSA_V0_File", kFails, [](Arena &a) { return KCDSA_SSA_V0_File(&a.with_z, a.stream, 20, &a.y, &a.param, &popsha1, a.z); }},
    {"KCDSA_GenParam", kFails, [](Arena &a) { return KCDSA_GenParam(&a.param, 224, 160); }},
    {"KCDSA_GenParamEx", kFails, [](Arena &a) { return KCDSA_GenParamEx(&a.extended, 224, 160); }},
    {"KCDSA_CheckParam", kComputes, [](Arena &a) { return KCDSA_CheckParam(&a.param); }},
    {"KCDSA_GenKey", kFails, [](Arena &a) { return KCDSA_GenKey(&a.x, &a.y, &a.param); }},
    {"KCDSA_GenKeyEx", kFails, [](Arena &a) { return KCDSA_GenKeyEx(&a.x, &a.y, &a.extended); }},
    {"KCDSA_GenKey_UDK", kFails, [](Arena &a) { return KCDSA_GenKey_UDK(&a.x, &a.y, &a.param, a.value, 20); }},
    {"KCDSA_CheckKey", kComputes, [](Arena &a) { return KCDSA_CheckKey(&a.x, &a.y, &a.param); }},
    {"KCDSA_CheckKeyPair", kComputes, [](Arena &a) { return KCDSA_CheckKeyPair(&a.x, &a.y, &a.param); }},
    {"CONDITIONAL_SELFTEST_KEYPAIR_KCDSA", code(), [](Arena &a) { return CONDITIONAL_SELFTEST_KEYPAIR_KCDSA(&a.x, &a.y, &a.param); }},
};

}  // namespace
}  // namespace zel::test
