// Hashes and HMAC.
#include "tests/gates/gates.hpp"

namespace zel::test {
namespace {

struct Arena {
  HASH_CONTEXT hash{};
  HMAC_CONTEXT hmac{};
  std::uint8_t in[100]{};
  std::uint8_t out[ZEL_MAX_DIGEST_LEN]{};
  std::uint32_t out_len = 0;
  std::uint32_t hmac_len = 77;
  HASH_CONTEXT md5{}, ripemd{}, md2_context{};

  Arena() {
    HASH_Initialize(&hash, &sha256);
    HASH_Initialize(&md5, &popmd5);
    HASH_Initialize(&ripemd, &ripemd160);
    HASH_Initialize(&md2_context, &md2);
    HMAC_Initialize(&hmac, in, sizeof in, &sha256);
  }
};

const Rows<Arena> kRows{
    {"HASH_InitializeEx", code(), [](Arena &a) { return HASH_InitializeEx(&a.hash, &sha512); }},
    {"HASH_InitializeEx", not_approved(code()), [](Arena &a) { return HASH_InitializeEx(&a.hash, &popsha1); }},
    {"HASH_InitializeEx", not_approved(code()), [](Arena &a) { return HASH_InitializeEx(&a.hash, &pophas160); }},
    {"HASH_InitializeEx", not_approved(code()), [](Arena &a) { return HASH_InitializeEx(&a.hash, &popmd5); }},
    {"HASH_InitializeEx", not_approved(code()), [](Arena &a) { return HASH_InitializeEx(&a.hash, &ripemd160); }},
    {"HASH_InitializeEx", not_approved(code()), [](Arena &a) { return HASH_InitializeEx(&a.hash, &md2); }},
    {"HASH_Initialize", state_value(), [](Arena &a) { return HASH_Initialize(&a.hash, &sha512); }},
    {"HASH_Initialize", state_value(), [](Arena &a) { return HASH_Initialize(&a.hash, &popsha1); }},
    {"HASH_Update", inert(), [](Arena &a) { HASH_Update(&a.hash, a.in, sizeof a.in); }},
    {"HASH_Update", not_approved(inert(), 0), [](Arena &a) { HASH_Update(&a.md2_context, a.in, sizeof a.in); }},
    {"HASH_Update_KZEL", inert(), [](Arena &a) { HASH_Update_KZEL(&a.hash, a.in, sizeof a.in); }},
    {"HASH_Update_clone", inert(), [](Arena &a) { HASH_Update_clone(&a.hash, a.in, sizeof a.in); }},
    {"HASH_Finalize", inert(), [](Arena &a) { HASH_Finalize(a.out, &a.out_len, &a.hash); }},
    {"HASH_Finalize", gives({0, 0, 0, 32, 32, 32, 32, 0}), [](Arena &a) { a.out_len = 77; HASH_Finalize(a.out, &a.out_len, &a.hash); return a.out_len; }},
    // MD5, RIPEMD-160 and MD2 report a length in state 4 although they leave the digest as it was.
    {"HASH_Finalize", gives({0, 0, 0, 16, 16, 16, 16, 0}), [](Arena &a) { HASH_Finalize(a.out, &a.out_len, &a.md5); return a.out_len; }},
    {"HASH_Finalize", not_approved(inert(), 0), [](Arena &a) { HASH_Finalize(a.out, &a.out_len, &a.md5); a.out_len = 0; }},
    {"HASH_Finalize", not_approved(inert(), 0), [](Arena &a) { HASH_Finalize(a.out, &a.out_len, &a.ripemd); a.out_len = 0; }},
    {"HASH_Finalize", not_approved(inert(), 0), [](Arena &a) { HASH_Finalize(a.out, &a.out_len, &a.md2_context); a.out_len = 0; }},
    {"HMAC_InitializeEx", code(), [](Arena &a) { return HMAC_InitializeEx(&a.hmac, a.in, 20, &sha384); }},
    {"HMAC_InitializeEx", not_approved(code()), [](Arena &a) { return HMAC_InitializeEx(&a.hmac, a.in, 20, &popsha1); }},
    {"HMAC_Initialize", state_value(), [](Arena &a) { return HMAC_Initialize(&a.hmac, a.in, 20, &popsha1); }},
    {"__HMAC_Update", inert(), [](Arena &a) { __HMAC_Update(&a.hmac, a.in, sizeof a.in); }},
    {"HMAC_Finalize", inert(), [](Arena &a) { HMAC_Finalize(a.out, &a.hmac_len, &a.hmac); }},
};

}  // namespace
}  // namespace zel::test
