// Products, squares and Montgomery reductions of whole blocks of eight limbs, with MULX, ADCX and
// ADOX: two carry chains side by side, eight limbs of the sum in registers.
// Intel 64 and IA-32 Architectures Software Developer's Manual, volume 2; P. L. Montgomery,
// "Modular multiplication without trial division", Math. Comp. 44 (1985).
//
// Written for the assembler's own macros: the same rows serve all three functions. Registers:
//   r8-r15  eight limbs of the running sum, turning by one limb a row
//   rdi     the running sum in memory, at the limb that leaves the registers first
//   rsi     eight limbs of the multiplicand       rcx  eight limbs of the multiplier
//   rdx     the multiplier's limb                 rbp  zero
// A block adds 8 x 8 limbs of products to eight limbs; the sum fits sixteen limbs, also with
// another eight limbs added, so that one carry at most waits (as 0 or -1 in the frame) for the next
// block.
#include "mint/limbs_adx.hpp"

__asm__(R"(
    .text

    .macro  ENTER frame
    .cfi_startproc
    pushq   %rbx
    .cfi_adjust_cfa_offset 8
    .cfi_rel_offset rbx, 0
    pushq   %rbp
    .cfi_adjust_cfa_offset 8
    .cfi_rel_offset rbp, 0
    pushq   %r12
    .cfi_adjust_cfa_offset 8
    .cfi_rel_offset r12, 0
    pushq   %r13
    .cfi_adjust_cfa_offset 8
    .cfi_rel_offset r13, 0
    pushq   %r14
    .cfi_adjust_cfa_offset 8
    .cfi_rel_offset r14, 0
    pushq   %r15
    .cfi_adjust_cfa_offset 8
    .cfi_rel_offset r15, 0
    subq    $\frame, %rsp
    .cfi_adjust_cfa_offset \frame
    .endm

    .macro  LEAVE frame
    addq    $\frame, %rsp
    .cfi_adjust_cfa_offset -\frame
    popq    %r15
    .cfi_adjust_cfa_offset -8
    popq    %r14
    .cfi_adjust_cfa_offset -8
    popq    %r13
    .cfi_adjust_cfa_offset -8
    popq    %r12
    .cfi_adjust_cfa_offset -8
    popq    %rbp
    .cfi_adjust_cfa_offset -8
    popq    %rbx
    .cfi_adjust_cfa_offset -8
    ret
    .cfi_endproc
    .endm

    # Keeps the additions from running so far ahead of the products that they take the one unit that
    # multiplies: a tenth faster on Zen 4, where the first of two such instructions costs nothing.
    .macro  PACE
    nop
    nop
    .endm

    # One product into two neighbouring limbs.
    .macro  PRODUCT at, low, high
    mulxq   8*\at(%rsi), %rax, %rbx
    adcxq   %rax, \low
    PACE
    adoxq   %rbx, \high
    .endm

    # The last product of a row and both carries: \top takes a new limb.
    .macro  LAST_PRODUCT low, top
    mulxq   56(%rsi), %rax, \top
    adcxq   %rax, \low
    PACE
    adoxq   %rbp, \top
    adcxq   %rbp, \top
    .endm

    .macro  ROW_AFTER_FIRST r0, r1, r2, r3, r4, r5, r6, r7
    PRODUCT 1, \r1, \r2
    PRODUCT 2, \r2, \r3
    PRODUCT 3, \r3, \r4
    PRODUCT 4, \r4, \r5
    PRODUCT 5, \r5, \r6
    PRODUCT 6, \r6, \r7
    LAST_PRODUCT \r7, \r0
    .endm

    # Adds one limb of the multiplier times eight limbs; the finished limb goes to memory.
    .macro  ROW i, r0, r1, r2, r3, r4, r5, r6, r7
    movq    8*\i(%rcx), %rdx
    xorl    %eax, %eax
    PRODUCT 0, \r0, \r1
    movq    \r0, 8*\i(%rdi)
    ROW_AFTER_FIRST \r0, \r1, \r2, \r3, \r4, \r5, \r6, \r7
    .endm

    # Two limbs of the quotient at once, then their rows: q = (r1:r0) * -1/N modulo 2^128. The two
    # finished limbs are zero; the quotient takes their place in memory.
    .macro  REDUCE_TWO i, r0, r1, r2, r3, r4, r5, r6, r7
    movq    (%rsp), %rdx
    mulxq   \r0, %rax, %rcx
    movq    8(%rsp), %rbx
    imulq   \r0, %rbx
    addq    %rbx, %rcx
    imulq   \r1, %rdx
    addq    %rdx, %rcx
    movq    %rax, %rdx
    movq    %rax, 8*\i(%rdi)
    movq    %rcx, 8*\i+8(%rdi)
    xorl    %eax, %eax
    PRODUCT 0, \r0, \r1
    ROW_AFTER_FIRST \r0, \r1, \r2, \r3, \r4, \r5, \r6, \r7
    movq    %rcx, %rdx
    xorl    %eax, %eax
    PRODUCT 0, \r1, \r2
    ROW_AFTER_FIRST \r1, \r2, \r3, \r4, \r5, \r6, \r7, \r0
    .endm

    .macro  LOAD_SUM
    movq    (%rdi), %r8
    movq    8(%rdi), %r9
    movq    16(%rdi), %r10
    movq    24(%rdi), %r11
    movq    32(%rdi), %r12
    movq    40(%rdi), %r13
    movq    48(%rdi), %r14
    movq    56(%rdi), %r15
    .endm

    .macro  STORE_SUM
    movq    %r8, (%rdi)
    movq    %r9, 8(%rdi)
    movq    %r10, 16(%rdi)
    movq    %r11, 24(%rdi)
    movq    %r12, 32(%rdi)
    movq    %r13, 40(%rdi)
    movq    %r14, 48(%rdi)
    movq    %r15, 56(%rdi)
    .endm

    .macro  CLEAR_SUM
    xorl    %r8d, %r8d
    xorl    %r9d, %r9d
    xorl    %r10d, %r10d
    xorl    %r11d, %r11d
    xorl    %r12d, %r12d
    xorl    %r13d, %r13d
    xorl    %r14d, %r14d
    xorl    %r15d, %r15d
    .endm

    # The waiting carry and the sum in memory join the registers; a carry may wait again.
    .macro  JOIN_SUM carry
    movq    \carry(%rsp), %rax
    addq    %rax, %rax
    adcq    (%rdi), %r8
    adcq    8(%rdi), %r9
    adcq    16(%rdi), %r10
    adcq    24(%rdi), %r11
    adcq    32(%rdi), %r12
    adcq    40(%rdi), %r13
    adcq    48(%rdi), %r14
    adcq    56(%rdi), %r15
    sbbq    %rax, %rax
    movq    %rax, \carry(%rsp)
    .endm

    # The waiting carry joins the registers, which can take it.
    .macro  JOIN_CARRY carry
    movq    \carry(%rsp), %rax
    addq    %rax, %rax
    adcq    %rbp, %r8
    adcq    %rbp, %r9
    adcq    %rbp, %r10
    adcq    %rbp, %r11
    adcq    %rbp, %r12
    adcq    %rbp, %r13
    adcq    %rbp, %r14
    adcq    %rbp, %r15
    .endm

    .p2align 5
    .type   zel_adx_block, @function
zel_adx_block:
    .cfi_startproc
    ROW 0, %r8, %r9, %r10, %r11, %r12, %r13, %r14, %r15
    ROW 1, %r9, %r10, %r11, %r12, %r13, %r14, %r15, %r8
    ROW 2, %r10, %r11, %r12, %r13, %r14, %r15, %r8, %r9
    ROW 3, %r11, %r12, %r13, %r14, %r15, %r8, %r9, %r10
    ROW 4, %r12, %r13, %r14, %r15, %r8, %r9, %r10, %r11
    ROW 5, %r13, %r14, %r15, %r8, %r9, %r10, %r11, %r12
    ROW 6, %r14, %r15, %r8, %r9, %r10, %r11, %r12, %r13
    ROW 7, %r15, %r8, %r9, %r10, %r11, %r12, %r13, %r14
    leaq    64(%rdi), %rdi
    leaq    64(%rsi), %rsi
    ret
    .cfi_endproc
    .size   zel_adx_block, .-zel_adx_block

    # void zel_adx_mul(t: rdi, a: rsi, b: rdx, blocks: rcx)
    # Frame: 0 end of a, 8 end of b, 16 bytes of a - 64, 24 carry.
    .p2align 5
    .globl  zel_adx_mul
    .hidden zel_adx_mul
    .type   zel_adx_mul, @function
zel_adx_mul:
    ENTER   40
    shlq    $6, %rcx
    leaq    (%rsi,%rcx), %rax
    movq    %rax, (%rsp)
    leaq    (%rdx,%rcx), %rax
    movq    %rax, 8(%rsp)
    leaq    -64(%rcx), %rax
    movq    %rax, 16(%rsp)
    movq    %rdx, %rcx
    xorl    %ebp, %ebp
    CLEAR_SUM
1:  call    zel_adx_block
    cmpq    (%rsp), %rsi
    jne     1b
    STORE_SUM
2:  addq    $64, %rcx
    cmpq    8(%rsp), %rcx
    je      5f
    subq    16(%rsp), %rdi
    subq    16(%rsp), %rsi
    subq    $64, %rsi
    movq    %rbp, 24(%rsp)
    LOAD_SUM
3:  call    zel_adx_block
    cmpq    (%rsp), %rsi
    je      4f
    JOIN_SUM 24
    jmp     3b
4:  JOIN_CARRY 24
    STORE_SUM
    jmp     2b
5:  LEAVE   40
    .size   zel_adx_mul, .-zel_adx_mul

    # void zel_adx_sqr(t: rdi, a: rsi, blocks: rdx)
    # Products of different limbs, block row by block row; then everything twice and the squares.
    # Frame: 0 end of a, 8 a, 16 t, 24 carry, 32 blocks, 40 bytes from the end of a row's sum to the
    # start of the next one.
    .p2align 5
    .globl  zel_adx_sqr
    .hidden zel_adx_sqr
    .type   zel_adx_sqr, @function
zel_adx_sqr:
    ENTER   56
    movq    %rdx, 32(%rsp)
    shlq    $6, %rdx
    leaq    (%rsi,%rdx), %rax
    movq    %rax, (%rsp)
    movq    %rsi, 8(%rsp)
    movq    %rdi, 16(%rsp)
    subq    $128, %rdx
    movq    %rdx, 40(%rsp)
    xorl    %ebp, %ebp
    CLEAR_SUM
1:  movq    %rsi, %rcx
    movq    %rbp, 24(%rsp)
    # Row p of the triangle starts at limb 2p + 1; limb p is finished.
    movq    %r8, (%rdi)
    movq    (%rcx), %rdx
    xorl    %eax, %eax
    PRODUCT 1, %r9, %r10
    PRODUCT 2, %r10, %r11
    PRODUCT 3, %r11, %r12
    PRODUCT 4, %r12, %r13
    PRODUCT 5, %r13, %r14
    PRODUCT 6, %r14, %r15
    LAST_PRODUCT %r15, %r8
    movq    %r9, 8(%rdi)
    movq    8(%rcx), %rdx
    xorl    %eax, %eax
    PRODUCT 2, %r11, %r12
    PRODUCT 3, %r12, %r13
    PRODUCT 4, %r13, %r14
    PRODUCT 5, %r14, %r15
    PRODUCT 6, %r15, %r8
    LAST_PRODUCT %r8, %r9
    movq    %r10, 16(%rdi)
    movq    16(%rcx), %rdx
    xorl    %eax, %eax
    PRODUCT 3, %r13, %r14
    PRODUCT 4, %r14, %r15
    PRODUCT 5, %r15, %r8
    PRODUCT 6, %r8, %r9
    LAST_PRODUCT %r9, %r10
    movq    %r11, 24(%rdi)
    movq    24(%rcx), %rdx
    xorl    %eax, %eax
    PRODUCT 4, %r15, %r8
    PRODUCT 5, %r8, %r9
    PRODUCT 6, %r9, %r10
    LAST_PRODUCT %r10, %r11
    movq    %r12, 32(%rdi)
    movq    32(%rcx), %rdx
    xorl    %eax, %eax
    PRODUCT 5, %r9, %r10
    PRODUCT 6, %r10, %r11
    LAST_PRODUCT %r11, %r12
    movq    %r13, 40(%rdi)
    movq    40(%rcx), %rdx
    xorl    %eax, %eax
    PRODUCT 6, %r11, %r12
    LAST_PRODUCT %r12, %r13
    movq    %r14, 48(%rdi)
    movq    48(%rcx), %rdx
    xorl    %eax, %eax
    LAST_PRODUCT %r13, %r14
    movq    %r15, 56(%rdi)
    xorl    %r15d, %r15d
    leaq    64(%rdi), %rdi
    leaq    64(%rsi), %rsi
    cmpq    (%rsp), %rsi
    je      4f
    cmpq    8(%rsp), %rcx
    je      3f
2:  JOIN_SUM 24
    call    zel_adx_block
    cmpq    (%rsp), %rsi
    jne     2b
    JOIN_CARRY 24
    jmp     5f
3:  # Nothing to join in the first row.
    call    zel_adx_block
    cmpq    (%rsp), %rsi
    jne     3b
5:
    STORE_SUM
    leaq    64(%rcx), %rsi
    subq    40(%rsp), %rdi
    subq    $64, 40(%rsp)
    LOAD_SUM
    jmp     1b
4:  STORE_SUM
    movq    16(%rsp), %rdi
    movq    8(%rsp), %rsi
    movq    32(%rsp), %rcx
    xorl    %eax, %eax
6:  .irp    i, 0, 1, 2, 3, 4, 5, 6, 7
    movq    8*\i(%rsi), %rdx
    mulxq   %rdx, %rax, %rbx
    movq    16*\i(%rdi), %r8
    movq    16*\i+8(%rdi), %r9
    adcxq   %r8, %r8
    adcxq   %r9, %r9
    adoxq   %rax, %r8
    adoxq   %rbx, %r9
    movq    %r8, 16*\i(%rdi)
    movq    %r9, 16*\i+8(%rdi)
    .endr
    leaq    128(%rdi), %rdi
    leaq    64(%rsi), %rsi
    leaq    -1(%rcx), %rcx
    jrcxz   7f
    jmp     6b
7:  LEAVE   56
    .size   zel_adx_sqr, .-zel_adx_sqr

    # void zel_adx_redc(r: rdi, t: rsi, modulus: rdx, inverse: rcx, blocks: r8)
    # Frame: 0 and 8 -1/N modulo 2^128, 16 N, 24 end of N, 32 carry of the row, 40 carry of the top,
    # 48 r, 56 bytes of N, 64 rows to go.
    .p2align 5
    .globl  zel_adx_redc
    .hidden zel_adx_redc
    .type   zel_adx_redc, @function
zel_adx_redc:
    ENTER   72
    movq    (%rcx), %rax
    movq    %rax, (%rsp)
    movq    8(%rcx), %rax
    movq    %rax, 8(%rsp)
    movq    %rdi, 48(%rsp)
    movq    %r8, 64(%rsp)
    shlq    $6, %r8
    movq    %r8, 56(%rsp)
    movq    %rdx, 16(%rsp)
    addq    %rdx, %r8
    movq    %r8, 24(%rsp)
    movq    %rsi, %rdi
    movq    %rdx, %rsi
    xorl    %ebp, %ebp
    movq    %rbp, 40(%rsp)
1:  LOAD_SUM
    movq    %rbp, 32(%rsp)
    REDUCE_TWO 0, %r8, %r9, %r10, %r11, %r12, %r13, %r14, %r15
    REDUCE_TWO 2, %r10, %r11, %r12, %r13, %r14, %r15, %r8, %r9
    REDUCE_TWO 4, %r12, %r13, %r14, %r15, %r8, %r9, %r10, %r11
    REDUCE_TWO 6, %r14, %r15, %r8, %r9, %r10, %r11, %r12, %r13
    movq    %rdi, %rcx
    leaq    64(%rdi), %rdi
    leaq    64(%rsi), %rsi
    cmpq    24(%rsp), %rsi
    je      3f
2:  JOIN_SUM 32
    call    zel_adx_block
    cmpq    24(%rsp), %rsi
    jne     2b
3:  # The carry that the row above left belongs here, and so does the one of this row.
    JOIN_CARRY 32
    JOIN_SUM 40
    STORE_SUM
    leaq    64(%rcx), %rdi
    movq    16(%rsp), %rsi
    decq    64(%rsp)
    jne     1b
    # r = the upper half, less N where a carry left the top.
    # Multiplying by 0 or 1 is the mask that leaves the borrow alone.
    movq    40(%rsp), %rdx
    negq    %rdx
    movq    48(%rsp), %rbx
    movq    56(%rsp), %rcx
    shrq    $6, %rcx
    xorl    %eax, %eax
4:  .irp    i, 0, 1, 2, 3, 4, 5, 6, 7
    mulxq   8*\i(%rsi), %r8, %r10
    movq    8*\i(%rdi), %r9
    sbbq    %r8, %r9
    movq    %r9, 8*\i(%rbx)
    .endr
    leaq    64(%rdi), %rdi
    leaq    64(%rsi), %rsi
    leaq    64(%rbx), %rbx
    leaq    -1(%rcx), %rcx
    jrcxz   5f
    jmp     4b
5:  LEAVE   72
    .size   zel_adx_redc, .-zel_adx_redc
)");
