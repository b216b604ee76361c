/*
 * DWORD SehCall(HRESULT (*corpo)(void *), void *pContexto, FiltroQuadro filtro, QuadroSEH *pQuadro)
 *
 * Runs corpo(pContexto) under a structured-exception frame. The compiler has no statement for such a frame, so the
 * function and its scope table are written out here; x64 calling convention throughout.
 *
 * Returns 0 with the body's result in pQuadro->hr when the body came back, 1 when the filter took an exception. The
 * filter receives pQuadro, through which it hands out the exception code: at the handler the code is not reliable.
 *
 * The frame keeps the filter and pQuadro in its own stack slots, where the filter thunk finds them through the
 * establisher frame (the value of rsp after the prologue):
 *
 *     0(%rsp)  home area of the called function, 32 bytes
 *    32(%rsp)  filter
 *    40(%rsp)  pQuadro
 */
    .text
    .globl SehCall
    .def SehCall; .scl 2; .type 32; .endef
    .seh_proc SehCall
SehCall:
    subq $56, %rsp
    .seh_stackalloc 56
    .seh_endprologue
    movq %r8, 32(%rsp)
    movq %r9, 40(%rsp)
    movq %rcx, %rax
    movq %rdx, %rcx
.Linicio:
    callq *%rax
    nop                         /* keeps the return address inside the guarded range */
.Lfim:
    movq 40(%rsp), %rdx
    movl %eax, (%rdx)
    xorl %eax, %eax
    addq $56, %rsp
    ret
.Ltratador:                     /* the system unwound to this frame: rsp and the preserved registers are restored */
    movl $1, %eax
    addq $56, %rsp
    ret
    .seh_handler __C_specific_handler, @except
    .seh_handlerdata
    .long 1
    .rva .Linicio, .Lfim, .Lfiltro, .Ltratador
    .text
    .seh_endproc

/* Filter of the scope above: rcx = EXCEPTION_POINTERS, rdx = establisher frame; 1 handles, 0 continues the search. */
    .seh_proc SehCallFiltro
SehCallFiltro:
.Lfiltro:
    subq $40, %rsp
    .seh_stackalloc 40
    .seh_endprologue
    movq 32(%rdx), %rax
    movq 40(%rdx), %rdx
    callq *%rax
    addq $40, %rsp
    ret
    .seh_endproc
