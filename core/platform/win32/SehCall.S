/*
 * DWORD SehCall(HRESULT (*corpo)(void *), void *pContexto, Quadro *pQuadro)
 *
 * Runs corpo(pContexto) under a structured-exception frame. The compiler has no statement for such a frame, so the
 * function and its scope table are written out here; x64 calling convention throughout.
 *
 * Returns 0 with the body's result in pQuadro->hr when the body came back, 1 when the filter took an exception. The
 * filter notes the exception code in the Quadro: at the handler the code is not reliable.
 *
 *     Quadro:   0  LONG (*filtra)(EXCEPTION_POINTERS *, Quadro *)   1 takes the exception, 0 lets it pass on
 *               8  void (*desenrola)(Quadro *)                      the frame is being unwound
 *              16  HRESULT hr
 *
 * The second scope is a termination handler: it runs when somebody further out took an exception and the system unwinds
 * this frame, and on some systems also when the frame's own filter took it.
 *
 * The frame keeps pQuadro in a stack slot, where the thunks find it through the establisher frame (the value of rsp
 * after the prologue):
 *
 *     0(%rsp)  home area of the called function, 32 bytes
 *    32(%rsp)  pQuadro
 */
    .text
    .globl SehCall
    .def SehCall; .scl 2; .type 32; .endef
    .seh_proc SehCall
SehCall:
    subq $40, %rsp
    .seh_stackalloc 40
    .seh_endprologue
    movq %r8, 32(%rsp)
    movq %rcx, %rax
    movq %rdx, %rcx
.Linicio:
    callq *%rax
    nop                         /* keeps the return address inside the guarded range */
.Lfim:
    movq 32(%rsp), %rdx
    movl %eax, 16(%rdx)
    xorl %eax, %eax
    addq $40, %rsp
    ret
.Ltratador:                     /* the system unwound to this frame: rsp and the preserved registers are restored */
    movl $1, %eax
    addq $40, %rsp
    ret
    .seh_handler __C_specific_handler, @except, @unwind
    .seh_handlerdata
    .long 2
    .rva .Linicio, .Lfim, .Lfiltro, .Ltratador
    .rva .Linicio, .Lfim, .Ldesenrolo
    .long 0
    .text
    .seh_endproc

/* Filter of the first scope: rcx = EXCEPTION_POINTERS, rdx = establisher frame. A jump: no frame of its own. */
.Lfiltro:
    movq 32(%rdx), %rdx
    jmpq *(%rdx)

/* Handler of the second scope: rcx = TRUE, rdx = establisher frame. */
.Ldesenrolo:
    movq 32(%rdx), %rcx
    jmpq *8(%rcx)
