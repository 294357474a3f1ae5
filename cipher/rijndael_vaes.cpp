// AES through the processor's AES instructions on 256-bit registers: sixteen blocks side by side.
// FIPS 197.
#include "base/isa.hpp"
#include "cipher/algorithms.hpp"
#include "cipher/lanes_vaes.hpp"
#define ZEL_KERNEL_ISA ZEL_ISA_VAES
#include "cipher/rijndael_kernels.hpp"

namespace zel::aes {
namespace {

template <class Size>
constexpr bulk::Ops ops() noexcept {
  using Blocks = Kernel<Ymm, Size>;
  constexpr bool kShort = Size::kRounds == Aes128::kRounds;
  return {.encrypt = Blocks::encrypt,
          .decrypt = Blocks::decrypt,
          .ctr = Blocks::ctr,
          .cbc_decrypt = Blocks::cbc_decrypt,
          .serial = kShort ? serial128_aesni : serial256_aesni,
          .counter_mac = kShort ? counter_mac128_aesni : counter_mac256_aesni};
}

}  // namespace
}  // namespace zel::aes

namespace zel::bulk {

constinit const Ops rijndael128_vaes = aes::ops<aes::Aes128>();
constinit const Ops rijndael256_vaes = aes::ops<aes::Aes256>();

}  // namespace zel::bulk
