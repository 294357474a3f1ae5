// KCDSA: null arguments, and sizes that there are no parameters for.
#include "tests/support/discrete_log.hpp"

namespace {

using namespace zel::test;

TEST(Kcdsa, RefusesNullArguments) {
  KCDSA_PARAM param{};
  KCDSA_PARAM_EX extended{};
  MINT x{}, y{};
  uint8_t out[64], z[64] = {};
  uint32_t len = 0;
  Bytes message(9);
  uint8_t *const text = message.data();
  Stream stream(message);
  KCDSA_SIGNATURE_BODY some{}, *const body = &some;
  const auto refuses = [](auto function, auto... given) {
    for (const int32_t status : with_each_null(function, given...))
      EXPECT_EQ(status, ZEL_ERR_GENERIC);
  };
  refuses(KCDSA_EMSA1, out, &len, text, 9, z, 9, &sha256);
  refuses(KCDSA_EMSA1_File, out, &len, stream.file, 9, z, 9, &sha256);
  refuses(KCDSA_SP, body, text, &x, &param, &sha256);
  refuses(KCDSA_VP, body, text, &y, &param, &sha256);
  refuses(KCDSA_SSA_S, body, text, 9, &x, &param, &sha256, &y);
  refuses(KCDSA_SSA_S_File, body, stream.file, 9, &x, &param, &sha256, &y);
  refuses(KCDSA_SSA_S_Hash, body, text, 9, &x, &param, &sha256, z);
  refuses(KCDSA_SSA_S0, body, text, 9, &x, &param, &sha256, z);
  refuses(KCDSA_SSA_S0_File, body, stream.file, 9, &x, &param, &sha256, z);
  refuses(KCDSA_SSA_V, body, text, 9, &y, &param, &sha256);
  refuses(KCDSA_SSA_V_File, body, stream.file, 9, &y, &param, &sha256);
  refuses(KCDSA_SSA_V_Hash, body, text, 9, &y, &param, &sha256);
  refuses(KCDSA_SSA_V0, body, text, 9, &y, &param, &sha256, z);
  refuses(KCDSA_SSA_V0_File, body, stream.file, 9, &y, &param, &sha256, z);
  refuses(KCDSA_GenParam, &param, 320, 160);
  refuses(KCDSA_GenParamEx, &extended, 320, 160);
  refuses(KCDSA_CheckParam, &param);
  refuses(KCDSA_GenKey, &x, &y, &param);
  refuses(KCDSA_GenKeyEx, &x, &y, &extended);
  refuses(KCDSA_GenKey_UDK, &x, &y, &param, text, 9);
  refuses(KCDSA_CheckKey, &x, &y, &param);
  refuses(KCDSA_CheckKeyPair, &x, &y, &param);
}

TEST(Kcdsa, RefusesSizesWithoutParameters) {
  KCDSA_PARAM_EX param;
  for (const auto &[p_bits, q_bits] : {std::pair{0U, 0U},
                                       {1024U, 0U},
                                       {160U, 160U},
                                       {164U, 160U},
                                       {165U, 160U},
                                       {1023U, 160U},
                                       {1025U, 257U},
                                       {4128U, 256U},
                                       {0xffffffffU, 160U},
                                       {160U, 0xffffffffU}}) {
    EXPECT_EQ(KCDSA_GenParam(&param, p_bits, q_bits), ZEL_ERR_GENERIC) << p_bits << " " << q_bits;
    EXPECT_EQ(KCDSA_GenParamEx(&param, p_bits, q_bits), ZEL_ERR_GENERIC) << p_bits << " " << q_bits;
  }
  EXPECT_EQ(KCDSA_GenParamEx(&param, 2048, 160), ZEL_ERR_GENERIC) << "J is longer than its field";
}

}  // namespace
