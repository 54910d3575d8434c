Options that need or exclude each other are settled before the first file is read.
--- a.s
    .section .text._start, "ax"
    .thumb_func
    .global _start
_start: bx lr
--- case a shared library needs a platform
--- args
a.o --shared --entry_point=_start -o out.elf
--- stderr
warning: --shared option should be specified along with --platform; --shared
   ignored
--- readelf -h
Type: EXEC
--- case hiding and making global exclude each other
--- args
a.o --hide=a --make_global=b --entry_point=_start -o out.elf
--- exit
1
--- stderr has
error: --hide option conflicts with previous option --make_global
--- case an unknown entry point
--- args
a.o --entry_point=nowhere -o out.elf
--- exit
1
--- stderr has
warning: entry-point symbol "nowhere" undefined
--- case what is said of a library for start-up code with a watchdog
--- b.s
    .text
    .word WDTCTL_SYM
--- args
a.o b.o --entry_point=_start --cinit_hold_wdt=on --retain=*(.text) -o out.elf
--- exit
1
--- stderr has
error: The symbol "WDTCTL_SYM" is unresolved. This symbol is required when
 WDTCTL_SYM b.o
--- case arrays of variable length beside a kernel
--- b.s
    .text
    .global __vla_alloc, qv_rtkernel_KERNEL_start__E
__vla_alloc:
qv_rtkernel_KERNEL_start__E:
--- args
a.o b.o --entry_point=_start -o out.elf
--- stderr
warning: Use of variable-length arrays is not thread-safe.
