// The one list of instruction-set attributes. They are put on single functions, never on files: a
// file-wide flag would also recompile shared inline functions, and the linker may keep that copy
// for processors that cannot run it. Each macro has its Feature in base/cpu.hpp.
#pragma once

#define ZEL_ISA_AESNI __attribute__((target("aes,pclmul,ssse3,sse4.1")))
#define ZEL_ISA_AVX2 __attribute__((target("avx2")))
#define ZEL_ISA_AVX2_BMI2 __attribute__((target("avx2,bmi,bmi2")))
#define ZEL_ISA_VAES __attribute__((target("avx2,aes,pclmul,vaes,vpclmulqdq")))
#define ZEL_ISA_SHA __attribute__((target("sha,ssse3,sse4.1")))
#define ZEL_ISA_BMI2 __attribute__((target("bmi,bmi2")))
#define ZEL_ISA_ADX __attribute__((target("bmi,bmi2,adx")))
