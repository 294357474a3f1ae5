// One row of a product with MULX, ADCX and ADOX: the low and the high halves of the products join
// the sum in two carry chains side by side.
// Intel 64 and IA-32 Architectures Software Developer's Manual, volume 2.
//
// Registers: rdi the sum, rsi the multiplicand, rdx the multiplier's limb, r9 the limb that moves
// up, r10 the limbs that do not fill a run of eight, rcx those runs.
#include "mint/rows_adx.hpp"

__asm__(R"(
    .text

    # Two limbs; CF carries the products, OF the sum.
    .macro  ZEL_TWO_LIMBS at
    mulxq   \at(%rsi), %rax, %r8
    adcxq   %r9, %rax
    adoxq   \at(%rdi), %rax
    movq    %rax, \at(%rdi)
    mulxq   8+\at(%rsi), %rax, %r9
    adcxq   %r8, %rax
    adoxq   8+\at(%rdi), %rax
    movq    %rax, 8+\at(%rdi)
    .endm

    # Both carries join the limb that moves up.
    .macro  ZEL_END_RUN
    movl    $0, %eax
    adcxq   %rax, %r9
    adoxq   %rax, %r9
    .endm

    .globl  zel_adx_add_row
    .hidden zel_adx_add_row
    .type   zel_adx_add_row, @function
    .p2align 5
zel_adx_add_row:
    .cfi_startproc
    movq    %rdx, %r10
    movq    %rcx, %rdx
    movq    %r10, %rcx
    shrq    $3, %rcx
    xorl    %r9d, %r9d
    testl   $1, %r10d
    jz      1f
    xorl    %eax, %eax
    mulxq   (%rsi), %rax, %r9
    addq    %rax, (%rdi)
    adcq    $0, %r9
    leaq    8(%rsi), %rsi
    leaq    8(%rdi), %rdi
1:  testl   $2, %r10d
    jz      2f
    xorl    %eax, %eax
    ZEL_TWO_LIMBS 0
    ZEL_END_RUN
    leaq    16(%rsi), %rsi
    leaq    16(%rdi), %rdi
2:  testl   $4, %r10d
    jz      3f
    xorl    %eax, %eax
    ZEL_TWO_LIMBS 0
    ZEL_TWO_LIMBS 16
    ZEL_END_RUN
    leaq    32(%rsi), %rsi
    leaq    32(%rdi), %rdi
3:  testq   %rcx, %rcx
    jz      5f
    .p2align 4
4:  ZEL_TWO_LIMBS 0
    ZEL_TWO_LIMBS 16
    ZEL_TWO_LIMBS 32
    ZEL_TWO_LIMBS 48
    leaq    64(%rsi), %rsi
    leaq    64(%rdi), %rdi
    leaq    -1(%rcx), %rcx
    jrcxz   5f
    jmp     4b
5:  ZEL_END_RUN
    movq    %r9, %rax
    ret
    .cfi_endproc
    .size   zel_adx_add_row, . - zel_adx_add_row
)");
