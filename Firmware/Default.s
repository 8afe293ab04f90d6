# The default firmware of a simulated target domain. Every thread starts at
# the reset vector in real mode, enters protected mode and then long mode
# (identity-mapped through page tables kept in this ROM), and loops:
#   0x1000               the domain's iteration counter: every thread adds 1
#                        per loop iteration with a locked increment
#   0x1100 + 8 * apicId  each thread's own iteration count
# The bootstrap thread (APIC id 0) also prints a banner and a line
# "tick <n>" every 2^16 iterations on the UART at 0x3F8, and writes POST
# codes to port 0x80: 0x01 reset, 0x02 protected mode, 0x03 long mode,
# 0x10 UART ready, then the low byte of each tick.
# Every loop iteration is 5 instructions on every thread.

        .set ROM_BASE,      0xFFFF0000
        .set POST_PORT,     0x80
        .set UART,          0x3F8
        .set SHARED_COUNT,  0x1000
        .set THREAD_COUNTS, 0x1100
        .set STACK_TOP,     0x80000
        .set TICK_SHIFT,    16
        .set TICK_MASK,     (1 << TICK_SHIFT) - 1

# A POST code, written by the bootstrap thread only (%ebx holds the APIC id
# from the first instructions on).
        .macro post code
        test    %ebx, %ebx
        jnz     1f
        mov     $\code, %al
        out     %al, $POST_PORT
1:
        .endm

        .section .text, "ax"
        .code16
start16:
        cli
        mov     $1, %eax                        # APIC id: CPUID.1:EBX[31:24]
        cpuid
        shr     $24, %ebx
        post    0x01
        lgdtl   %cs:(gdt_pointer - ROM_BASE)
        mov     %cr0, %eax
        or      $1, %eax
        mov     %eax, %cr0
        ljmpl   $0x08, $start32

        .code32
start32:
        mov     $0x10, %ax
        mov     %ax, %ds
        mov     %ax, %es
        mov     %ax, %ss
        mov     %ax, %fs
        mov     %ax, %gs
        post    0x02
        mov     %cr4, %eax
        or      $0x20, %eax                     # PAE
        mov     %eax, %cr4
        mov     $pml4, %eax
        mov     %eax, %cr3
        mov     $0xC0000080, %ecx               # EFER.LME
        rdmsr
        or      $0x100, %eax
        wrmsr
        mov     %cr0, %eax
        or      $0x80000000, %eax               # PG
        mov     %eax, %cr0
        ljmp    $0x18, $start64

        .code64
start64:
        mov     $0x10, %ax
        mov     %ax, %ds
        mov     %ax, %es
        mov     %ax, %ss
        mov     %ebx, %ebx
        mov     %rbx, %rax
        shl     $12, %rax
        mov     $STACK_TOP, %rsp
        sub     %rax, %rsp
        test    %ebx, %ebx
        jnz     loop
        post    0x03
        call    uart_init
        post    0x10
        lea     banner(%rip), %rsi
        call    uart_puts

loop:
        incq    THREAD_COUNTS(,%rbx,8)
        lock incq SHARED_COUNT
        mov     THREAD_COUNTS(,%rbx,8), %rax
        test    $TICK_MASK, %eax
        jnz     loop
        test    %ebx, %ebx
        jnz     loop
        shr     $TICK_SHIFT, %rax
        out     %al, $POST_PORT
        mov     %rax, %rdx
        lea     tick(%rip), %rsi
        call    uart_puts
        call    uart_hex
        lea     newline(%rip), %rsi
        call    uart_puts
        jmp     loop

# 115200 8N1, FIFOs on.
uart_init:
        mov     $UART + 3, %dx
        mov     $0x80, %al
        out     %al, %dx
        mov     $UART + 0, %dx
        mov     $1, %al
        out     %al, %dx
        mov     $UART + 1, %dx
        xor     %al, %al
        out     %al, %dx
        mov     $UART + 3, %dx
        mov     $0x03, %al
        out     %al, %dx
        mov     $UART + 2, %dx
        mov     $0x07, %al
        out     %al, %dx
        ret

# Character in %al, once the transmit holding register is empty.
uart_putc:
        push    %rdx
        mov     %al, %ah
        mov     $UART + 5, %dx
1:      in      %dx, %al
        test    $0x20, %al
        jz      1b
        mov     $UART, %dx
        mov     %ah, %al
        out     %al, %dx
        pop     %rdx
        ret

# NUL-terminated text at %rsi.
uart_puts:
1:      lodsb
        test    %al, %al
        jz      2f
        call    uart_putc
        jmp     1b
2:      ret

# %rdx in hexadecimal, 8 digits.
uart_hex:
        mov     $8, %ecx
1:      rol     $4, %edx
        mov     %dl, %al
        and     $0x0F, %al
        add     $'0', %al
        cmp     $'9', %al
        jbe     2f
        add     $7, %al
2:      call    uart_putc
        loop    1b
        ret

        .section .rodata, "a"
banner: .asciz  "Voxtrel firmware: long mode reached\r\n"
tick:   .asciz  "tick "
newline: .asciz "\r\n"

# Descriptors with their accessed bits set, so that loading a segment never
# writes to this ROM.
        .balign 8
gdt:    .quad   0
        .quad   0x00CF9B000000FFFF              # 0x08 code, 32-bit
        .quad   0x00CF93000000FFFF              # 0x10 data
        .quad   0x00AF9B000000FFFF              # 0x18 code, 64-bit
gdt_end:
gdt_pointer:
        .word   gdt_end - gdt - 1
        .long   gdt

# 4 GiB identity map in 2 MiB pages; accessed and dirty bits already set,
# so the CPU never writes to this ROM.
        .balign 4096
pml4:   .quad   pdpt + 0x23
        .fill   511, 8, 0
pdpt:
        .set    i, 0
        .rept   4
        .quad   pd + i * 4096 + 0x23
        .set    i, i + 1
        .endr
        .fill   508, 8, 0
pd:
        .set    i, 0
        .rept   2048
        .quad   (i << 21) + 0xE3
        .set    i, i + 1
        .endr

        .section .reset, "ax"
        .code16
        .global reset_vector
reset_vector:
        jmp     start16
        .balign 16, 0xF4
