// SHA-512 with AVX2 and BMI2: the message schedule in vectors, four words at a time, spread evenly
// between scalar rounds. FIPS 180-4, section 6.4.
//
// In assembly because the order of instructions decides: a round has 22 operations for four integer
// units and two chains of dependent letters that are almost as long, and it needs every register.
// Compilers' own orders take an eighth more time. This one was found by measuring thousands.

// The letters a to h are passed to the macros by name. Always:
//   rsi, rdi, rbp, r12, r13   temporaries
//   r14                       b ^ c before four rounds and after them: the next majority's half
//   r15                       the round constants, 16 rounds ahead
//   ymm0 to ymm3              the last 16 words, ymm9 and ymm10 byte orders, ymm11 to ymm15 temporaries
// On the stack, aligned: sums of words and constants for the next 16 rounds, then
#define DATA 128(%rsp)
#define COUNT 136(%rsp)
#define STATE 144(%rsp)
#define CONSTANTS_END 152(%rsp)
#define CALLERS_RSP 160(%rsp)
#define FRAME 192

// Four rounds, which move every letter four places on. Meanwhile x0, the words of these rounds,
// becomes the words of the rounds 16 later, and their sums with the constants take the place of
// those used up. A line is one vector instruction and the scalar ones up to the next: sigma0 of words
// 1 to 4 plus words 0 to 3 and 9 to 12; then sigma1 of words 14 and 15; then sigma1 of the two words
// that this made.
.macro ROUNDS_AND_EXTEND a, b, c, d, e, f, g, h, x0, x1, x2, x3, at
  vperm2i128 $0x21, %ymm\x3, %ymm\x2, %ymm11; rorxq $14, %\e, %rsi; rorxq $18, %\e, %rdi; movq %\e, %rbp
  vperm2i128 $0x21, %ymm\x1, %ymm\x0, %ymm12; andq %\f, %rbp; rorxq $41, %\e, %r12; andnq %\g, %\e, %r13
  vpalignr $8, %ymm\x2, %ymm11, %ymm11    ; addq \at(%rsp), %\h; addq %r13, %\h
  vpalignr $8, %ymm\x0, %ymm12, %ymm12    ; xorq %r12, %rdi; xorq %rsi, %rdi; addq %rbp, %\h
  vpaddq %ymm11, %ymm\x0, %ymm\x0         ; movq %\a, %r13; xorq %\b, %r13
  vpsrlq $1, %ymm12, %ymm13               ; rorxq $34, %\a, %r12; rorxq $39, %\a, %rsi; addq %rdi, %\h
  vpsllq $63, %ymm12, %ymm14              ; rorxq $28, %\a, %rbp; xorq %r12, %rsi; andq %r13, %r14
  vpsrlq $7, %ymm12, %ymm15               ; addq %\h, %\d; xorq %\b, %r14
  vpshufb %ymm10, %ymm12, %ymm12          ; xorq %rbp, %rsi; addq %rsi, %r14; addq %r14, %\h
  vpxor %ymm13, %ymm14, %ymm14            ; rorxq $14, %\d, %rdi; rorxq $18, %\d, %r12
  vpxor %ymm15, %ymm12, %ymm12            ; movq %\d, %rbp; andq %\e, %rbp; rorxq $41, %\d, %rsi
  vpxor %ymm14, %ymm12, %ymm12            ; andnq %\f, %\d, %r14; addq 8*1+\at(%rsp), %\g; addq %r14, %\g
  vpaddq %ymm12, %ymm\x0, %ymm\x0         ; xorq %rsi, %r12; xorq %rdi, %r12
  vextracti128 $1, %ymm\x3, %xmm11        ; addq %rbp, %\g; movq %\h, %r14; xorq %\a, %r14
  vpsrlq $19, %xmm11, %xmm12              ; rorxq $34, %\h, %rsi; rorxq $39, %\h, %rdi
  vpsllq $45, %xmm11, %xmm13              ; addq %r12, %\g; rorxq $28, %\h, %rbp; xorq %rsi, %rdi
  vpxor %xmm12, %xmm13, %xmm13            ; andq %r14, %r13; addq %\g, %\c; xorq %\a, %r13
  vpsrlq $61, %xmm11, %xmm12              ; xorq %rbp, %rdi; addq %rdi, %r13
  vpsllq $3, %xmm11, %xmm14               ; addq %r13, %\g; rorxq $14, %\c, %r12; rorxq $18, %\c, %rsi
  vpxor %xmm12, %xmm13, %xmm13            ; movq %\c, %rbp; andq %\d, %rbp
  vpsrlq $6, %xmm11, %xmm12               ; rorxq $41, %\c, %rdi; andnq %\e, %\c, %r13; addq 8*2+\at(%rsp), %\f
  vpxor %xmm14, %xmm13, %xmm13            ; addq %r13, %\f; xorq %rdi, %rsi; xorq %r12, %rsi
  vpxor %xmm12, %xmm13, %xmm13            ; addq %rbp, %\f; movq %\g, %r13
  vpaddq %ymm13, %ymm\x0, %ymm\x0         ; xorq %\h, %r13; rorxq $34, %\g, %rdi; rorxq $39, %\g, %r12
  vpsrlq $19, %xmm\x0, %xmm12             ; addq %rsi, %\f; rorxq $28, %\g, %rbp
  vpsllq $45, %xmm\x0, %xmm13             ; xorq %rdi, %r12; andq %r13, %r14; addq %\f, %\b
  vpxor %xmm12, %xmm13, %xmm13            ; xorq %\h, %r14; xorq %rbp, %r12; addq %r12, %r14
  vpsrlq $61, %xmm\x0, %xmm12             ; addq %r14, %\f; rorxq $14, %\b, %rsi
  vpsllq $3, %xmm\x0, %xmm14              ; rorxq $18, %\b, %rdi; movq %\b, %rbp; andq %\c, %rbp
  vpxor %xmm12, %xmm13, %xmm13            ; rorxq $41, %\b, %r12; andnq %\d, %\b, %r14
  vpsrlq $6, %xmm\x0, %xmm12              ; addq 8*3+\at(%rsp), %\e; addq %r14, %\e; xorq %r12, %rdi
  vpxor %xmm14, %xmm13, %xmm13            ; xorq %rsi, %rdi; addq %rbp, %\e; movq %\f, %r14
  vpxor %xmm12, %xmm13, %xmm13            ; xorq %\g, %r14; rorxq $34, %\f, %r12
  vperm2i128 $0x08, %ymm13, %ymm13, %ymm13; rorxq $39, %\f, %rsi; addq %rdi, %\e; rorxq $28, %\f, %rbp
  vpaddq %ymm13, %ymm\x0, %ymm\x0         ; xorq %r12, %rsi; andq %r14, %r13
  vpaddq \at(%r15), %ymm\x0, %ymm11       ; addq %\e, %\a; xorq %\g, %r13; xorq %rbp, %rsi
  vmovdqa %ymm11, \at(%rsp)               ; addq %rsi, %r13; addq %r13, %\e
.endm

// Four of the last sixteen rounds, and four words of the next block into the places that get free.
.macro ROUNDS_AND_LOAD a, b, c, d, e, f, g, h, x0, at
  rorxq $14, %\e, %rsi; rorxq $18, %\e, %rdi; movq %\e, %rbp; andq %\f, %rbp
  rorxq $41, %\e, %r12; andnq %\g, %\e, %r13; addq \at(%rsp), %\h; addq %r13, %\h
  xorq %r12, %rdi; xorq %rsi, %rdi; addq %rbp, %\h; movq %\a, %r13
  xorq %\b, %r13; rorxq $34, %\a, %r12; rorxq $39, %\a, %rsi; addq %rdi, %\h
  rorxq $28, %\a, %rbp; xorq %r12, %rsi; andq %r13, %r14; addq %\h, %\d
  xorq %\b, %r14; xorq %rbp, %rsi; addq %rsi, %r14; addq %r14, %\h
  rorxq $14, %\d, %rdi; rorxq $18, %\d, %r12; movq %\d, %rbp; andq %\e, %rbp
  rorxq $41, %\d, %rsi; andnq %\f, %\d, %r14; addq 8*1+\at(%rsp), %\g; addq %r14, %\g
  xorq %rsi, %r12; xorq %rdi, %r12; addq %rbp, %\g; movq %\h, %r14
  xorq %\a, %r14; rorxq $34, %\h, %rsi; rorxq $39, %\h, %rdi; addq %r12, %\g
  rorxq $28, %\h, %rbp; xorq %rsi, %rdi; andq %r14, %r13; addq %\g, %\c
  xorq %\a, %r13; xorq %rbp, %rdi; addq %rdi, %r13; addq %r13, %\g
  rorxq $14, %\c, %r12; rorxq $18, %\c, %rsi; movq %\c, %rbp; andq %\d, %rbp
  rorxq $41, %\c, %rdi; andnq %\e, %\c, %r13; addq 8*2+\at(%rsp), %\f; addq %r13, %\f
  xorq %rdi, %rsi; xorq %r12, %rsi; addq %rbp, %\f; movq %\g, %r13
  xorq %\h, %r13; rorxq $34, %\g, %rdi; rorxq $39, %\g, %r12; addq %rsi, %\f
  rorxq $28, %\g, %rbp; xorq %rdi, %r12; andq %r13, %r14; addq %\f, %\b
  xorq %\h, %r14; xorq %rbp, %r12; addq %r12, %r14; addq %r14, %\f
  rorxq $14, %\b, %rsi; rorxq $18, %\b, %rdi; movq %\b, %rbp; andq %\c, %rbp
  rorxq $41, %\b, %r12; andnq %\d, %\b, %r14; addq 8*3+\at(%rsp), %\e; addq %r14, %\e
  xorq %r12, %rdi; xorq %rsi, %rdi; addq %rbp, %\e; movq %\f, %r14
  xorq %\g, %r14; rorxq $34, %\f, %r12; rorxq $39, %\f, %rsi; addq %rdi, %\e
  rorxq $28, %\f, %rbp; xorq %r12, %rsi; andq %r14, %r13; addq %\e, %\a
  xorq %\g, %r13; xorq %rbp, %rsi; addq %rsi, %r13; addq %r13, %\e
  movq DATA, %rsi
  vmovdqu \at(%rsi), %ymm\x0
  LOADED \x0, \at
.endm

// Most significant byte first; leaves the sums with the constants.
.macro LOADED x0, at
  vpshufb %ymm9, %ymm\x0, %ymm\x0
  vpaddq \at(%r15), %ymm\x0, %ymm11
  vmovdqa %ymm11, \at(%rsp)
.endm

.macro ADD_TO_STATE letter, at
  addq \at(%rsi), %\letter
  movq %\letter, \at(%rsi)
.endm

  .text
  .globl zel_sha512_blocks_avx2
  .hidden zel_sha512_blocks_avx2
  .type zel_sha512_blocks_avx2, @function
  .p2align 6
zel_sha512_blocks_avx2:
  .cfi_startproc
  pushq %rbx
  .cfi_adjust_cfa_offset 8
  .cfi_rel_offset %rbx, 0
  pushq %rbp
  .cfi_adjust_cfa_offset 8
  .cfi_rel_offset %rbp, 0
  pushq %r12
  .cfi_adjust_cfa_offset 8
  .cfi_rel_offset %r12, 0
  pushq %r13
  .cfi_adjust_cfa_offset 8
  .cfi_rel_offset %r13, 0
  pushq %r14
  .cfi_adjust_cfa_offset 8
  .cfi_rel_offset %r14, 0
  pushq %r15
  .cfi_adjust_cfa_offset 8
  .cfi_rel_offset %r15, 0
  movq %rsp, %rax
  subq $FRAME, %rsp
  andq $-64, %rsp
  movq %rax, CALLERS_RSP
  // The frame's address is what CALLERS_RSP holds, plus six registers and the return address.
  .cfi_escape 0x0f, 0x06, 0x77, 0xa0, 0x01, 0x06, 0x23, 0x38

  movq %rdi, STATE
  movq %rdx, COUNT
  movq %rsi, DATA
  movq %rcx, %r15
  leaq 640(%rcx), %rcx
  movq %rcx, CONSTANTS_END
  vmovdqa kSwap(%rip), %ymm9
  vmovdqa kRotate8(%rip), %ymm10
  // The first block may just have been written, in stores of 16 bytes: loads of 32 would wait.
  vmovdqu (%rsi), %xmm0
  vmovdqu 32(%rsi), %xmm1
  vmovdqu 64(%rsi), %xmm2
  vmovdqu 96(%rsi), %xmm3
  vinserti128 $1, 16(%rsi), %ymm0, %ymm0
  vinserti128 $1, 48(%rsi), %ymm1, %ymm1
  vinserti128 $1, 80(%rsi), %ymm2, %ymm2
  vinserti128 $1, 112(%rsi), %ymm3, %ymm3
  LOADED 0, 0
  LOADED 1, 32
  LOADED 2, 64
  LOADED 3, 96
  movq (%rdi), %rax
  movq 8(%rdi), %rbx
  movq 16(%rdi), %rcx
  movq 24(%rdi), %rdx
  movq 32(%rdi), %r8
  movq 40(%rdi), %r9
  movq 48(%rdi), %r10
  movq 56(%rdi), %r11

  .p2align 5
.Lblock:
  movq %rbx, %r14
  xorq %rcx, %r14
  subq $-128, %r15
  .p2align 5
.Lsixteen:
  ROUNDS_AND_EXTEND rax, rbx, rcx, rdx, r8, r9, r10, r11, 0, 1, 2, 3, 0
  ROUNDS_AND_EXTEND r8, r9, r10, r11, rax, rbx, rcx, rdx, 1, 2, 3, 0, 32
  ROUNDS_AND_EXTEND rax, rbx, rcx, rdx, r8, r9, r10, r11, 2, 3, 0, 1, 64
  ROUNDS_AND_EXTEND r8, r9, r10, r11, rax, rbx, rcx, rdx, 3, 0, 1, 2, 96
  subq $-128, %r15
  cmpq CONSTANTS_END, %r15
  jne .Lsixteen

  // After the last block, that block once more.
  subq $640, %r15
  movq DATA, %rsi
  leaq 128(%rsi), %rdi
  cmpq $1, COUNT
  cmovneq %rdi, %rsi
  movq %rsi, DATA
  ROUNDS_AND_LOAD rax, rbx, rcx, rdx, r8, r9, r10, r11, 0, 0
  ROUNDS_AND_LOAD r8, r9, r10, r11, rax, rbx, rcx, rdx, 1, 32
  ROUNDS_AND_LOAD rax, rbx, rcx, rdx, r8, r9, r10, r11, 2, 64
  ROUNDS_AND_LOAD r8, r9, r10, r11, rax, rbx, rcx, rdx, 3, 96
  movq STATE, %rsi
  ADD_TO_STATE rax, 0
  ADD_TO_STATE rbx, 8
  ADD_TO_STATE rcx, 16
  ADD_TO_STATE rdx, 24
  ADD_TO_STATE r8, 32
  ADD_TO_STATE r9, 40
  ADD_TO_STATE r10, 48
  ADD_TO_STATE r11, 56
  decq COUNT
  jne .Lblock

  // The words may be those of a key.
  vpxor %xmm0, %xmm0, %xmm0
  vmovdqa %ymm0, (%rsp)
  vmovdqa %ymm0, 32(%rsp)
  vmovdqa %ymm0, 64(%rsp)
  vmovdqa %ymm0, 96(%rsp)
  vzeroall
  movq CALLERS_RSP, %rsp
  .cfi_def_cfa %rsp, 56
  popq %r15
  .cfi_adjust_cfa_offset -8
  .cfi_restore %r15
  popq %r14
  .cfi_adjust_cfa_offset -8
  .cfi_restore %r14
  popq %r13
  .cfi_adjust_cfa_offset -8
  .cfi_restore %r13
  popq %r12
  .cfi_adjust_cfa_offset -8
  .cfi_restore %r12
  popq %rbp
  .cfi_adjust_cfa_offset -8
  .cfi_restore %rbp
  popq %rbx
  .cfi_adjust_cfa_offset -8
  .cfi_restore %rbx
  // What the caller kept in its registers may be part of a key too.
  vmovdqu %ymm0, -48(%rsp)
  vmovdqu %xmm0, -16(%rsp)
  ret
  .cfi_endproc
  .size zel_sha512_blocks_avx2, . - zel_sha512_blocks_avx2

  .section .rodata
  .p2align 5
kSwap:
  .rept 2
  .quad 0x0001020304050607, 0x08090a0b0c0d0e0f
  .endr
kRotate8:
  .rept 2
  .quad 0x0007060504030201, 0x080f0e0d0c0b0a09
  .endr

  .section .note.GNU-stack, "", @progbits
