// Key sharing, which is not approved.
#include "tests/gates/gates.hpp"

namespace zel::test {
namespace {

struct Arena {
  KEYSHAREFS_SHARE_SET set{};
  KEYSHAREFS_SHARE share{};
  std::uint8_t secret[3]{1, 2, 3};
  std::uint8_t out[8]{};
  std::uint32_t out_len = 0;

  Arena() { KEYSHAREFS_Gen3SharedInfo(&set, secret, 3, 3); }
};

const Answers kCode = not_approved(code());

const Rows<Arena> kRows{
    {"KEYSHAREFS_Gen2SharedInfo", kCode, [](Arena &a) { return KEYSHAREFS_Gen2SharedInfo(&a.set, a.secret, 3, 2); }},
    {"KEYSHAREFS_Gen3SharedInfo", kCode, [](Arena &a) { return KEYSHAREFS_Gen3SharedInfo(&a.set, a.secret, 3, 3); }},
    {"KEYSHAREFS_Recover2SharedInfo", kCode, [](Arena &a) { return KEYSHAREFS_Recover2SharedInfo(a.out, &a.out_len, &a.set); }},
    {"KEYSHAREFS_Recover3SharedInfo", kCode, [](Arena &a) { return KEYSHAREFS_Recover3SharedInfo(a.out, &a.out_len, &a.set); }},
    {"KEYSHAREFS_Repro2SharedInfo", kCode, [](Arena &a) { return KEYSHAREFS_Repro2SharedInfo(&a.share, &a.set); }},
};

}  // namespace
}  // namespace zel::test
