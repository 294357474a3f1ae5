// Block ciphers, modes and RC4.
#include "tests/gates/gates.hpp"

namespace zel::test {
namespace {

struct Arena {
  BCIPHER_KEY *aria_key = BCIPHER_NewKey(&aria);
  BCIPHER_KEY *aes_key = BCIPHER_NewKey(&rijndael);
  BCIPHER_CONTEXT aria_context{};
  BCIPHER_CONTEXT aes_context{};
  std::uint8_t in[32]{1, 2, 3};
  std::uint8_t out[48]{};
  std::uint32_t out_len = 77;
  std::uint8_t chain[16]{4, 5, 6};
  BCIPHER_CONTEXT aria_gcm{}, aes_gcm{};
  CMAC_CONTEXT cmac{};
  DAC_CONTEXT dac{};
  RC4_STATE rc4{};

  Arena() {
    BCIPHER_MakeKey(aria_key, in, 16, &aria);
    BCIPHER_MakeKey(aes_key, in, 16, &rijndael);
    BCIPHER_Initialize(&aria_context, ZEL_MODE_CBC, in, &aria);
    BCIPHER_Initialize(&aes_context, ZEL_MODE_CBC, in, &rijndael);
    BCIPHER_Initialize(&aria_gcm, ZEL_MODE_GCM, nullptr, &aria);
    BCIPHER_Initialize(&aes_gcm, ZEL_MODE_GCM, nullptr, &rijndael);
    CMAC_Initialize(&cmac, in, 16, &aria);
    DAC_Initialize(&dac, in, 16, &aria);
    RC4_init(&rc4, in, 128);
  }

  Bytes watched() const {
    Bytes bytes;
    for (const BCIPHER_KEY *key : {aria_key, aes_key}) {
      const auto add = [&bytes](const void *from, std::size_t len) {
        const auto *const first = static_cast<const std::uint8_t *>(from);
        bytes.insert(bytes.end(), first, first + len);
      };
      add(key, sizeof *key);
      add(key->round_keys, key->descriptor->round_keys_len);
    }
    return bytes;
  }

  std::int64_t operate(decltype(&BCIPHER_Encrypt) call, BCIPHER_CONTEXT &context, BCIPHER_KEY *key) {
    return call(out, &out_len, in, sizeof in, &context, key, 0);
  }
  /// Without a tag of its own a message never passes, so a decryption that was served says -10.
  std::int64_t authenticate(decltype(&BCIPHER_EncryptAuth) call, const BCIPHER_CONTEXT &context, BCIPHER_KEY *key) {
    const std::int64_t code = call(out, &out_len, in, sizeof in, nullptr, 0, chain, 12, &context, key, 16);
    return code == ZEL_ERR_TAG ? 0 : code;
  }
};

std::int64_t releases(Arena &arena) {
  const bool released = is_given_back(arena.aes_key, BCIPHER_DelKey);
  arena.aes_key = arena.aria_key;
  return released ? 1 : 0;
}

std::int64_t on_streams(Arena &a, decltype(&BCIPHER_EncryptFile) call, BCIPHER_CONTEXT &context, BCIPHER_KEY *key) {
  std::FILE *const in = fmemopen(a.in, sizeof a.in, "rb"), *const out = std::fopen("/dev/null", "wb");
  const std::int64_t code = call(out, &a.out_len, in, 16, &context, key, 0);
  std::fclose(in);
  std::fclose(out);
  return code;
}
std::int64_t on_streams_by_16(Arena &a, decltype(&BCIPHER_EncryptFile_BSize) call) {
  std::FILE *const in = fmemopen(a.in, sizeof a.in, "rb"), *const out = std::fopen("/dev/null", "wb");
  const std::int64_t code = call(out, &a.out_len, in, 32, &a.aria_context, a.aria_key, 0, 16);
  std::fclose(in);
  std::fclose(out);
  return code;
}
std::int64_t on_paths(Arena &a, decltype(&BCIPHER_EncryptFilePath) call) {
  return call("/dev/null", &a.out_len, "/dev/null", 0, &a.aria_context, a.aria_key, 0);
}
std::int64_t on_paths_from(Arena &a, decltype(&BCIPHER_EncryptFilePath_Offset) call) {
  return call("/dev/null", &a.out_len, "/dev/null", 0, 0, &a.aria_context, a.aria_key, 0);
}

/// Without a gate but for the verified service, where nothing is computed.
const Answers kInApproved = not_approved(works(), 0);

/// Empty functions: nothing happens in any state.
Answers empty() {
  Answers answers;
  answers.fill({Expected::Kind::kRefuses, 0});
  return answers;
}

/// A message with a wrong tag is judged in every state.
const Answers kNotGenuine = [] {
  Answers answers;
  answers.fill({Expected::Kind::kGives, ZEL_ERR_TAG});
  return answers;
}();

const Rows<Arena> kRows{
    {"BCIPHER_NewKey", null_object(), [](Arena &) { return BCIPHER_NewKey(&aria); }},
    {"BCIPHER_NewKey", null_object(), [](Arena &) { return BCIPHER_NewKey(&rijndael); }},
    {"BCIPHER_DupKey", null_object(), [](Arena &a) { return BCIPHER_DupKey(a.aes_key); }},
    {"BCIPHER_DelKey", gives({0, 0, 0, 1, 1, 1, 1, 0}), releases},
    {"BCIPHER_WipeKey", inert(), [](Arena &a) { BCIPHER_WipeKey(a.aria_key); }},
    {"BCIPHER_MakeKey", code(), [](Arena &a) { return BCIPHER_MakeKey(a.aria_key, a.in + 1, 16, &aria); }},
    {"BCIPHER_MakeKey", code(), [](Arena &a) { return BCIPHER_MakeKey(a.aes_key, a.in + 1, 16, &rijndael); }},
    {"BCIPHER_Initialize", code(), [](Arena &a) { return BCIPHER_Initialize(&a.aes_context, 1, nullptr, &rijndael); }},
    {"BCIPHER_Encrypt", code(), [](Arena &a) { return a.operate(BCIPHER_Encrypt, a.aria_context, a.aria_key); }},
    {"BCIPHER_Decrypt", code(), [](Arena &a) { return a.operate(BCIPHER_Decrypt, a.aria_context, a.aria_key); }},
    {"BCIPHER_Encrypt", not_approved(code()), [](Arena &a) { return a.operate(BCIPHER_Encrypt, a.aes_context, a.aes_key); }},
    {"BCIPHER_Decrypt", not_approved(code()), [](Arena &a) { return a.operate(BCIPHER_Decrypt, a.aes_context, a.aes_key); }},
    // No gate of its own: the generator refuses, and that is a failure of the module.
    {"BCIPHER_GenKey", gives({-1, -1, -1, 0, 0, 0, 0, -1}), [](Arena &a) { return BCIPHER_GenKey(a.out, 16); }},
    {"BCIPHER_GenKey", gives({-98, -98, -98, 1, 0, 3, 4, -98}), [](Arena &a) { BCIPHER_GenKey(a.out, 16); return KZEL_CC_GetState(); }},
    {"BCIPHER_EncryptCTR", works(), [](Arena &a) { return BCIPHER_EncryptCTR(a.in, 32, a.aria_key->round_keys, a.chain, 16, ARIA_EncryptBlock); }},
    {"BCIPHER_EncryptOFB", works(), [](Arena &a) { return BCIPHER_EncryptOFB(a.in, 32, a.aria_key->round_keys, a.chain, 16, ARIA_EncryptBlock); }},
    {"BCIPHER_EncryptOFB_BYTE", works(), [](Arena &a) { return BCIPHER_EncryptOFB_BYTE(a.in, 32, a.aria_key->round_keys, a.chain, 16, ARIA_EncryptBlock); }},
    {"BCIPHER_EncryptAuth", code(), [](Arena &a) { return a.authenticate(BCIPHER_EncryptAuth, a.aria_gcm, a.aria_key); }},
    {"BCIPHER_DecryptAuth", code(), [](Arena &a) { return a.authenticate(BCIPHER_DecryptAuth, a.aria_gcm, a.aria_key); }},
    {"BCIPHER_EncryptAuth", not_approved(code()), [](Arena &a) { return a.authenticate(BCIPHER_EncryptAuth, a.aes_gcm, a.aes_key); }},
    {"BCIPHER_DecryptAuth", not_approved(code()), [](Arena &a) { return a.authenticate(BCIPHER_DecryptAuth, a.aes_gcm, a.aes_key); }},
    {"BCIPHER_EncryptCCM", works(), [](Arena &a) { return BCIPHER_EncryptCCM(a.out, 32, 16, a.chain, 12, nullptr, 0, a.aria_key->round_keys, 16, ARIA_EncryptBlock); }},
    {"BCIPHER_DecryptCCM", kNotGenuine, [](Arena &a) { return BCIPHER_DecryptCCM(a.out, 32, 16, a.chain, 12, nullptr, 0, a.aria_key->round_keys, 16, ARIA_EncryptBlock); }},
    {"CCM_FormatNAP", works(), [](Arena &a) { return CCM_FormatNAP(a.out, &a.out_len, a.chain, 12, nullptr, 0, a.in, 32, 16); }},
    {"CCM_FormatCNT", works(), [](Arena &a) { return CCM_FormatCNT(a.out, 48, a.chain, 12, 16, 3); }},
    {"GMAC_Encrypt", works(), [](Arena &a) { return GMAC_Encrypt(a.in, 32, a.out, nullptr, 0, a.aria_key->round_keys, a.chain, 12, 16, ARIA_EncryptBlock); }},
    {"GMAC_Decrypt", works(), [](Arena &a) { return GMAC_Decrypt(a.in, 32, a.out, nullptr, 0, a.aria_key->round_keys, a.chain, 12, 16, ARIA_EncryptBlock); }},
    {"GMAC_GHash", works(), [](Arena &a) { return GMAC_GHash(a.out, a.in, 32, a.chain, 16); }},
    {"GMAC_Mult", works(), [](Arena &a) { return GMAC_Mult(a.out, a.in, a.chain, 16); }},
    {"GMAC_GCTR", works(), [](Arena &a) { return GMAC_GCTR(a.out, a.chain, a.in, 32, 16, a.aria_key->round_keys, ARIA_EncryptBlock); }},
    {"GMAC_Inc", works(), [](Arena &a) { return GMAC_Inc(a.chain, 16, 4); }},
    {"CMAC_Initialize", works(), [](Arena &a) { return CMAC_Initialize(&a.cmac, a.chain, 16, &rijndael); }},
    {"CMAC_Update", works(), [](Arena &a) { return CMAC_Update(&a.cmac, a.in, 32); }},
    {"CMAC_Finalize", works(), [](Arena &a) { return CMAC_Finalize(a.out, 16, &a.cmac); }},
    {"DAC_Initialize", not_approved(code(), ZEL_STATE_VERIFIED), [](Arena &a) { return DAC_Initialize(&a.dac, a.chain, 16, &aria); }},
    {"DAC_Update", kInApproved, [](Arena &a) { DAC_Update(&a.dac, a.in, 5); }},
    {"DAC_Finalize", kInApproved, [](Arena &a) { DAC_Finalize(a.out, 16, &a.dac); }},
    {"BCIPHER_EncryptFile", code(), [](Arena &a) { return on_streams(a, BCIPHER_EncryptFile, a.aria_context, a.aria_key); }},
    {"BCIPHER_DecryptFile", code(), [](Arena &a) { return on_streams(a, BCIPHER_DecryptFile, a.aria_context, a.aria_key); }},
    {"BCIPHER_DecryptFile_S", code(), [](Arena &a) { return on_streams(a, BCIPHER_DecryptFile_S, a.aria_context, a.aria_key); }},
    // The cipher layer refuses what is not approved, once the file has been read.
    {"BCIPHER_EncryptFile", gives({-9001, -9001, -9001, 0, 0, 0, -9002, -9001}), [](Arena &a) { return on_streams(a, BCIPHER_EncryptFile, a.aes_context, a.aes_key); }},
    {"BCIPHER_EncryptFile_BSize", code(), [](Arena &a) { return on_streams_by_16(a, BCIPHER_EncryptFile_BSize); }},
    {"BCIPHER_DecryptFile_BSize", code(), [](Arena &a) { return on_streams_by_16(a, BCIPHER_DecryptFile_BSize); }},
    {"BCIPHER_EncryptFilePath", code(), [](Arena &a) { return on_paths(a, BCIPHER_EncryptFilePath); }},
    {"BCIPHER_DecryptFilePath", code(), [](Arena &a) { return on_paths(a, BCIPHER_DecryptFilePath); }},
    {"BCIPHER_EncryptFilePath_Offset", code(), [](Arena &a) { return on_paths_from(a, BCIPHER_EncryptFilePath_Offset); }},
    {"BCIPHER_DecryptFilePath_Offset", code(), [](Arena &a) { return on_paths_from(a, BCIPHER_DecryptFilePath_Offset); }},
    {"AddPadding", works(), [](Arena &a) { return AddPadding(a.out, a.in, 32, 16); }},
    {"RemovePadding", works(), [](Arena &a) { return RemovePadding(a.out, a.in, 32); }},
    {"RC4_init", kInApproved, [](Arena &a) { RC4_init(&a.rc4, a.in + 1, 128); }},
    {"RC4_crypt", kInApproved, [](Arena &a) { RC4_crypt(a.out, a.in, 32, &a.rc4); }},
    {"RC4_crypt_core", kInApproved, [](Arena &a) { RC4_crypt_core(a.out, 32, &a.rc4); }},
    {"TAVOOLD_AddPadding", kInApproved, [](Arena &a) { return TAVOOLD_AddPadding(a.out, a.in, 32); }},
    {"TAVOOLD_RemovePadding", kInApproved, [](Arena &a) { return TAVOOLD_RemovePadding(a.out, a.in, 32); }},
    {"Check_CPU_support_AES", ungated(), [](Arena &) { return Check_CPU_support_AES(); }},
};

/// The entry points of one cipher.
struct Cipher {
  const char *schedule_name;
  decltype(&ARIA_MakeRoundKey) schedule;
  const char *encrypt_name;
  BCIPHER_BLOCK_FN encrypt;
  const char *decrypt_name;
  BCIPHER_BLOCK_FN decrypt;
};

struct BlockArena {
  std::uint8_t round_keys[4168]{};
  std::uint8_t key[32]{7, 8, 9};
  std::uint8_t block[16]{1, 2, 3};
};

void add(const Cipher &cipher, const Answers &answers) {
  const Rows<BlockArena> rows{
      {cipher.schedule_name, answers, [cipher](BlockArena &a) { cipher.schedule(a.round_keys, a.key, 16); }},
      {cipher.encrypt_name, answers, [cipher](BlockArena &a) { cipher.encrypt(a.block, a.round_keys); }},
      {cipher.decrypt_name, answers, [cipher](BlockArena &a) { cipher.decrypt(a.block, a.round_keys); }},
  };
}

const Cipher kApproved[] = {
    {"ARIA_MakeRoundKey", ARIA_MakeRoundKey, "ARIA_EncryptBlock", ARIA_EncryptBlock, "ARIA_DecryptBlock", ARIA_DecryptBlock},
    {"ARIA192_MakeRoundKey", ARIA192_MakeRoundKey, "ARIA192_EncryptBlock", ARIA192_EncryptBlock, "ARIA192_DecryptBlock", ARIA192_DecryptBlock},
    {"ARIA256_MakeRoundKey", ARIA256_MakeRoundKey, "ARIA256_EncryptBlock", ARIA256_EncryptBlock, "ARIA256_DecryptBlock", ARIA256_DecryptBlock},
    {"SEED_MakeRoundKey", SEED_MakeRoundKey, "SEED_EncryptBlock", SEED_EncryptBlock, "SEED_DecryptBlock", SEED_DecryptBlock}};
const Cipher kOthers[] = {
    {"RIJNDAEL_MakeRoundKey", RIJNDAEL_MakeRoundKey, "RIJNDAEL_EncryptBlock", RIJNDAEL_EncryptBlock, "RIJNDAEL_DecryptBlock", RIJNDAEL_DecryptBlock},
    {"RIJNDAEL256_MakeRoundKey", RIJNDAEL256_MakeRoundKey, "RIJNDAEL256_EncryptBlock", RIJNDAEL256_EncryptBlock, "RIJNDAEL256_DecryptBlock", RIJNDAEL256_DecryptBlock},
    {"DES_MakeRoundKey", DES_MakeRoundKey, "DES_EncryptBlock", DES_EncryptBlock, "DES_DecryptBlock", DES_DecryptBlock},
    {"TDES_MakeRoundKey", TDES_MakeRoundKey, "TDES_EncryptBlock", TDES_EncryptBlock, "TDES_DecryptBlock", TDES_DecryptBlock},
    {"BLOWFISH_MakeRoundKey", BLOWFISH_MakeRoundKey, "BLOWFISH_EncryptBlock", BLOWFISH_EncryptBlock, "BLOWFISH_DecryptBlock", BLOWFISH_DecryptBlock},
    {"CAST128_MakeRoundKey", CAST128_MakeRoundKey, "CAST128_EncryptBlock", CAST128_EncryptBlock, "CAST128_DecryptBlock", CAST128_DecryptBlock},
    {"IDEA_MakeRoundKey", IDEA_MakeRoundKey, "IDEA_EncryptBlock", IDEA_EncryptBlock, "IDEA_DecryptBlock", IDEA_DecryptBlock},
    {"RC2_MakeRoundKey", RC2_MakeRoundKey, "RC2_EncryptBlock", RC2_EncryptBlock, "RC2_DecryptBlock", RC2_DecryptBlock},
    {"RC5_MakeRoundKey", RC5_MakeRoundKey, "RC5_EncryptBlock", RC5_EncryptBlock, "RC5_DecryptBlock", RC5_DecryptBlock},
    {"TAVO_MakeRoundKey", TAVO_MakeRoundKey, "TAVO_EncryptBlock", TAVO_EncryptBlock, "TAVO_DecryptBlock", TAVO_DecryptBlock},
    {"TAVOOLD_MakeRoundKey", TAVOOLD_MakeRoundKey, "TAVOOLD_EncryptBlock", TAVOOLD_EncryptBlock, "TAVOOLD_DecryptBlock", TAVOOLD_DecryptBlock}};
const Cipher kInstructions[] = {
    {"RIJNDAEL_MakeRoundKey_AESNI", RIJNDAEL_MakeRoundKey_AESNI, "RIJNDAEL_EncryptBlock_AESNI", RIJNDAEL_EncryptBlock_AESNI, "RIJNDAEL_DecryptBlock_AESNI", RIJNDAEL_DecryptBlock_AESNI},
    {"RIJNDAEL256_MakeRoundKey_AESNI", RIJNDAEL256_MakeRoundKey_AESNI, "RIJNDAEL256_EncryptBlock_AESNI", RIJNDAEL256_EncryptBlock_AESNI, "RIJNDAEL256_DecryptBlock_AESNI", RIJNDAEL256_DecryptBlock_AESNI}};

const bool kAdded = [] {
  for (const Cipher &cipher : kApproved)
    add(cipher, works());
  for (const Cipher &cipher : kOthers)
    add(cipher, kInApproved);
  for (const Cipher &cipher : kInstructions)
    add(cipher, Check_CPU_support_AES() == 1 ? kInApproved : empty());
  return true;
}();

}  // namespace
}  // namespace zel::test
