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
  std::uint8_t in[20]{1}, out[64]{};
  std::uint32_t len = 99;
  FILE *stream = std::tmpfile();

  Arena() {
    RSA_SSA_S(&signature, in, 20, &pri, nullptr, &popsha1);
    RSA_SSA_PSS_S(&pss, in, 20, &pri, nullptr, &popsha1);
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
};

}  // namespace
}  // namespace zel::test
