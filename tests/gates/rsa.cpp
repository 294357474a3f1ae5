// The RSA schemes: none of them asks for the module state, but hashing is refused where the module
// does not serve, and they say so.
#include "tests/gates/gates.hpp"

namespace zel::test {
namespace {

MINT hex(const char *digits) {
  MINT a{};
  MINT_SetByHexString(&a, digits);
  return a;
}

struct Arena {
  /// 512 bits.
  RSA_PRIVATE_KEY pri{
      hex("D7109FCBC000EC442B054C45297CC75DF38C6F4D0B5F12356DCD07FB60218629219C3BFDD460A977"
          "6222F4FDF7DA04AB4E95DF8E3E7BF801788E56BC194BBC91"),
      hex("10001"),
      hex("74C8EE3D32324E1A6652262C986ECDC452F0BBAFD6B0F5AE55C5B4C3E85BCC01A2B0CB8CD0342326"
          "54CAEB19C0B95CD98AE805BD4DD9CEA2455B45F46C162001"),
      hex("F774EB5248DB40AF72158370D269A9A5AE658F33FE3B890B93F448B3A5AA3C81"),
      hex("DE7D6B377936D536243D35702C1EEA1F265974A7CC966F46C6AA7D550101B811"),
      hex("DDA149366C6C7AF5E81EDE9788CCFC159929FAE55D5963380C6EA942C528C081"),
      hex("423E8382D3D370AE1B22225C10B6EFAC70A5A7E722321455B56723C40075BB91"),
      hex("12436CDA408C2416FFED6E8BCCC80DDF40D366407CB1C455D7955F29AD82532E"),
  };
  RSA_PUBLIC_KEY pub{pri.n, pri.e};
  MINT a{2, {5, 6}}, r{}, signature{}, pss{};
  std::uint8_t in[20]{1}, out[64]{}, block[64]{}, sealed[64]{}, padded[64]{};
  std::uint32_t len = 99;
  FILE *stream = std::tmpfile();

  // What a refused call must leave is not zero, so that zeros written there show.
  Arena() {
    r = {2, {9, 9}};
    std::memset(out, 0xa5, sizeof out);
    RSA_SSA_S(&signature, in, 20, &pri, nullptr, &popsha1);
    RSA_SSA_PSS_S(&pss, in, 20, &pri, nullptr, &popsha1);
    EME_OAEP_ENCODE21(block, 64, in, 20, nullptr, 0, &popsha1);
    RSAES_OAEP_ENCRYPT21(sealed, &len, in, 20, &pub, nullptr, &popsha1, nullptr);
    EME_OAEP_ENCODE(padded, &len, in, 20, 512, nullptr, nullptr, nullptr);
  }
};

Answers hashes() { return refusing(ZEL_ERR_GENERIC); }

const Rows<Arena> kRows{
    {"RSA_SP1", ungated(), [](Arena &a) { return RSA_SP1(&a.r, &a.a, &a.pri); }},
    {"RSA_VP1", ungated(), [](Arena &a) { return RSA_VP1(&a.r, &a.a, &a.pub); }},
    {"RSA_I2OSP", ungated(), [](Arena &a) { return RSA_I2OSP(a.out, &a.len, &a.a); }},
    {"RSA_MGF1", ungated(), [](Arena &a) { return RSA_MGF1(a.out, 9, a.in, 20, &sha256); }},
    {"EMSA_PKCS1_v1_5_ENCODE", hashes(), [](Arena &a) { return EMSA_PKCS1_v1_5_ENCODE(a.out, 64, a.in, 20, &popsha1); }},
    {"EMSA_PKCS1_v1_5_ENCODE_Hash", ungated(), [](Arena &a) { return EMSA_PKCS1_v1_5_ENCODE_Hash(a.out, 64, a.in, 20, &popsha1); }},
    {"EMSA_PKCS1_v1_5_ENCODE_File", hashes(), [](Arena &a) { return EMSA_PKCS1_v1_5_ENCODE_File(a.out, 64, a.stream, 20, &popsha1); }},
    {"RSA_SSA_S", hashes(), [](Arena &a) { return RSA_SSA_S(&a.r, a.in, 20, &a.pri, nullptr, &popsha1); }},
    {"RSA_SSA_S_Hash", ungated(), [](Arena &a) { return RSA_SSA_S_Hash(&a.r, a.in, 20, &a.pri, nullptr, &popsha1); }},
    {"RSA_SSA_S_File", hashes(), [](Arena &a) { return RSA_SSA_S_File(&a.r, a.stream, 20, &a.pri, nullptr, &popsha1); }},
    {"RSA_SSA_V", hashes(), [](Arena &a) { return RSA_SSA_V(&a.signature, a.in, 20, &a.pub, nullptr, &popsha1); }},
    {"RSA_SSA_V_Hash", ungated(), [](Arena &a) { return RSA_SSA_V_Hash(&a.signature, a.in, 20, &a.pub, nullptr, &popsha1); }},
    {"RSA_SSA_V_File", hashes(), [](Arena &a) { return RSA_SSA_V_File(&a.signature, a.stream, 20, &a.pub, nullptr, &popsha1); }},
    {"RSA_SSA_PSS_S", hashes(), [](Arena &a) { return RSA_SSA_PSS_S(&a.r, a.in, 20, &a.pri, nullptr, &popsha1); }},
    {"RSA_SSA_PSS_S_Hash", hashes(), [](Arena &a) { return RSA_SSA_PSS_S_Hash(&a.r, a.in, 20, &a.pri, nullptr, &popsha1); }},
    {"RSA_SSA_PSS_S_File", hashes(), [](Arena &a) { return RSA_SSA_PSS_S_File(&a.r, a.stream, 20, &a.pri, nullptr, &popsha1); }},
    {"RSA_SSA_PSS_V", hashes(), [](Arena &a) { return RSA_SSA_PSS_V(&a.pss, a.in, 20, &a.pub, nullptr, &popsha1); }},
    {"RSA_SSA_PSS_V_Hash", hashes(), [](Arena &a) { return RSA_SSA_PSS_V_Hash(&a.pss, a.in, 20, &a.pub, nullptr, &popsha1); }},
    {"RSA_SSA_PSS_V_File", hashes(), [](Arena &a) { return RSA_SSA_PSS_V_File(&a.pss, a.stream, 20, &a.pub, nullptr, &popsha1); }},
    {"EME_OAEP_ENCODE21", hashes(), [](Arena &a) { return EME_OAEP_ENCODE21(a.out, 64, a.in, 20, nullptr, 0, &popsha1); }},
    {"EME_OAEP_DECODE21", hashes(), [](Arena &a) { return EME_OAEP_DECODE21(a.out, &a.len, a.block, 64, nullptr, 0, &popsha1); }},
    // The length of the ciphertext is told before anything is hashed.
    {"RSAES_OAEP_ENCRYPT21", gives({-1, -1, -1, 0, 0, 0, 0, -1}), [](Arena &a) { return RSAES_OAEP_ENCRYPT21(a.out, &a.len, a.in, 20, &a.pub, nullptr, &popsha1, nullptr); }},
    {"RSAES_OAEP_DECRYPT21", hashes(), [](Arena &a) { return RSAES_OAEP_DECRYPT21(a.out, &a.len, a.sealed, 64, &a.pri, nullptr, &popsha1, nullptr); }},
    {"RSA_GenKey", ungated(), [](Arena &a) { return RSA_GenKey(&a.pri, &a.pub, 176); }},
    {"RSA_GenKeyE", ungated(), [](Arena &a) { return RSA_GenKeyE(&a.pri, &a.pub, 176, 3); }},
    {"RSA_GenKeyEx", gives({-9001, -9001, -9001, 0, 0, 0, 0, -9001}), [](Arena &a) { return RSA_GenKeyEx(&a.pri, &a.pub, 640, 3); }},
    {"RSA_GenKey_Exact", gives({-9001, -9001, -9001, 0, 0, 0, 0, -9001}), [](Arena &a) { return RSA_GenKey_Exact(&a.pri, &a.pub, 640, 3); }},
    {"RSA_CheckKey", ungated(), [](Arena &a) { return RSA_CheckKey(&a.pri, &a.pub); }},
    {"RSA_CheckKeyPair", ungated(), [](Arena &a) { return RSA_CheckKeyPair(&a.pri, &a.pub); }},
    {"CONDITIONAL_SELFTEST_KEYPAIR_RSAES_OAEP", gives({-9001, -9001, -9001, -9182, -9182, -9182, -9182, -9001}), [](Arena &a) { return CONDITIONAL_SELFTEST_KEYPAIR_RSAES_OAEP(&a.pri, &a.pub); }},
    {"CONDITIONAL_SELFTEST_KEYPAIR_RSASSA_PSS", code(), [](Arena &a) { return CONDITIONAL_SELFTEST_KEYPAIR_RSASSA_PSS(&a.pri, &a.pub); }},
    {"CONDITIONAL_SELFTEST_KEYPAIR_RSASSA_PKCS1_V15", code(), [](Arena &a) { return CONDITIONAL_SELFTEST_KEYPAIR_RSASSA_PKCS1_V15(&a.pri, &a.pub); }},

    {"RSA20_SP1", ungated(), [](Arena &a) { return RSA20_SP1(&a.r, &a.a, &a.pri); }},
    {"RSA20_VP1", ungated(), [](Arena &a) { return RSA20_VP1(&a.r, &a.a, &a.pub); }},
    {"RSA20_I2OSP", not_approved(ungated()), [](Arena &a) { return RSA20_I2OSP(a.out, &a.len, &a.a); }},
    {"RSA20_MGF1", ungated(), [](Arena &a) { return RSA20_MGF1(a.out, 9, a.in, 20, &sha256); }},
    {"RSA20_EMSA2", hashes(), [](Arena &a) { return RSA20_EMSA2(a.out, 63, a.in, 20, &popsha1); }},
    {"RSA20_EMSA2_Hash", ungated(), [](Arena &a) { return RSA20_EMSA2_Hash(a.out, 63, a.in, 20, &popsha1); }},
    {"RSA20_EMSA2_File", hashes(), [](Arena &a) { return RSA20_EMSA2_File(a.out, 63, a.stream, 20, &popsha1); }},
    {"RSA20_SSA_S", not_approved(hashes()), [](Arena &a) { return RSA20_SSA_S(&a.r, a.in, 20, &a.pri, nullptr, &popsha1); }},
    {"RSA20_SSA_S_Hash", not_approved(ungated()), [](Arena &a) { return RSA20_SSA_S_Hash(&a.r, a.in, 20, &a.pri, nullptr, &popsha1); }},
    {"RSA20_SSA_S_File", not_approved(hashes()), [](Arena &a) { return RSA20_SSA_S_File(&a.r, a.stream, 20, &a.pri, nullptr, &popsha1); }},
    {"RSA20_SSA_V", not_approved(hashes()), [](Arena &a) { return RSA20_SSA_V(&a.signature, a.in, 20, &a.pub, nullptr, &popsha1); }},
    {"RSA20_SSA_V_Hash", not_approved(ungated()), [](Arena &a) { return RSA20_SSA_V_Hash(&a.signature, a.in, 20, &a.pub, nullptr, &popsha1); }},
    {"RSA20_SSA_V_File", not_approved(hashes()), [](Arena &a) { return RSA20_SSA_V_File(&a.signature, a.stream, 20, &a.pub, nullptr, &popsha1); }},
    {"RSA20_EME1_E", hashes(), [](Arena &a) { return RSA20_EME1_E(a.out, 63, a.in, 20, nullptr, 0, &popsha1); }},
    {"RSA20_EME1_D", hashes(), [](Arena &a) { return RSA20_EME1_D(a.out, &a.len, a.block + 1, 63, nullptr, 0, &popsha1); }},
    {"RSA20_EME2_E", not_approved(code()), [](Arena &a) { return RSA20_EME2_E(a.out, 63, a.in, 20); }},
    {"RSA20_EME2_D", not_approved(ungated()), [](Arena &a) { return RSA20_EME2_D(a.out, &a.len, a.padded + 1, 63); }},
    {"RSA20_ES_E", not_approved(gives({-1, -1, -1, 0, 0, 0, 0, -1})), [](Arena &a) { return RSA20_ES_E(a.out, &a.len, a.in, 20, &a.pub, nullptr, &popsha1, nullptr); }},
    {"RSA20_ES_D", not_approved(hashes()), [](Arena &a) { return RSA20_ES_D(a.out, &a.len, a.sealed, 64, &a.pri, nullptr, &popsha1, nullptr); }},
    {"EME_OAEP_ENCODE", gives({-1, -1, -1, 0, 0, 0, 0, -1}), [](Arena &a) { return EME_OAEP_ENCODE(a.out, &a.len, a.in, 20, 512, nullptr, &popsha1, nullptr); }},
    {"EME_OAEP_DECODE", hashes(), [](Arena &a) { return EME_OAEP_DECODE(a.out, &a.len, a.block, 64, 512, nullptr, &popsha1, nullptr); }},
    {"RSA20_GenKey", not_approved(ungated()), [](Arena &a) { return RSA20_GenKey(&a.pri, &a.pub, 176); }},
    {"RSA20_CheckKey", not_approved(ungated()), [](Arena &a) { return RSA20_CheckKey(&a.pri, &a.pub); }},
    {"RSA20_CheckKeyPair", not_approved(ungated()), [](Arena &a) { return RSA20_CheckKeyPair(&a.pri, &a.pub); }},
};

}  // namespace
}  // namespace zel::test
