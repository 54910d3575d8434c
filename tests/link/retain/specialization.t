A function of the run-time library gives way to the smallest variant that serves; what loses leaves the link.
--- main.s
    .global _start
    .section .text._start, "ax"
    .thumb_func
_start: b exit
--- nouse.s
    .global _start
    .section .text._start, "ax"
    .thumb_func
_start: bx lr
--- cleanup.s
    .global _start
    .section .text._start, "ax"
    .thumb_func
_start: b exit
    .balign 4
    .word __QV_cleanup_ptr
--- prof.s
    .global __QV_path_prof_out
    .global _start
    .section .text._start, "ax"
    .thumb_func
_start: b exit
    .section .text.prof, "ax"
    .thumb_func
__QV_path_prof_out: bx lr
--- exit.s
    .global exit, __QV_default_exit, __QV_cleanup_ptr
    .set __QV_default_exit, 1
    .section .text.exit, "ax"
    .thumb_func
exit: ldr r0, =__QV_cleanup_ptr
    b only_exit
    .ltorg
    .section .data.cleanup, "aw"
__QV_cleanup_ptr: .word 0
    .section .text.only_exit, "ax"
    .thumb_func
only_exit: nop
    b abort
--- abort.s
    .global abort
    .section .text.abort, "ax"
    .thumb_func
abort: b only_abort
    .section .text.only_abort, "ax"
    .thumb_func
only_abort: nop
    nop
    b .
--- ownexit.s
    .global exit
    .section .text.exit, "ax"
    .thumb_func
exit: b .
--- boot.s
    .global _c_int00, __QV_default_c_int00, __QV_auto_init
    .set __QV_default_c_int00, 1
    .section .text._c_int00, "ax"
    .thumb_func
_c_int00: movs r1, #3
    b .
    .section .text.auto, "ax"
    .thumb_func
__QV_auto_init: bx lr
    .set __QV_default_auto_init, 1
--- variants.s
    .global _c_int00_noinit_noargs, _c_int00_noargs, _c_int00_noargs_mpu
    .section .text._c_int00_noinit_noargs, "ax"
    .thumb_func
_c_int00_noinit_noargs: movs r1, #0
    b .
    .section .text._c_int00_noargs, "ax"
    .thumb_func
_c_int00_noargs: movs r1, #2
    b .
    .section .text._c_int00_noargs_mpu, "ax"
    .thumb_func
_c_int00_noargs_mpu: movs r1, #6
    b .
--- args.s
    .global _args_main, __QV_default_args_main
    .set __QV_default_args_main, 1
    .section .text._args_main, "ax"
    .thumb_func
_args_main: bx lr
--- mpu.s
    .global __mpu_enable
    .section .text._mpu_enable, "ax"
    .thumb_func
__mpu_enable: bx lr
--- ctor.s
    .section .init_array, "aw", %init_array
    .word 0
--- zero.inc
    .global _start
    .section .text._start, "ax"
    .thumb_func
_start: b __QV_zero_init
    .balign 4
    .word tab, buffer
    .section .bss.buffer, "aw", %nobits
    .global buffer
buffer: .space SIZE
--- zero999.s -Wa,--defsym,SIZE=999
    .include "zero.inc"
--- zero1000.s -Wa,--defsym,SIZE=1000
    .include "zero.inc"
--- zeroinit.s
    .global __QV_zero_init, __QV_zero_init_nomemset
    .section .text.full, "ax"
    .thumb_func
__QV_zero_init: movs r1, #1
    b .
    .section .text.small, "ax"
    .thumb_func
__QV_zero_init_nomemset: movs r1, #0
    b .
--- zero.cmd
--entry_point=_start
--diag_suppress=10151
MEMORY { M : origin = 0x1000, length = 0x1000 }
SECTIONS { .text : { *(.text*) } > M  .bss : { *(.bss*) } > M, table(tab)  .ovly : > M }
--- vars.s
    .global _c_int00
    .section .text._c_int00, "ax"
    .thumb_func
_c_int00: bx lr
    .balign 4
    .word vars
    .section .data.vars, "aw"
vars: .fill 64, 1, 7
--- zeros.s
    .section .bss.zeros, "aw", %nobits
    .global zeros
zeros: .space 16
--- unpack.s
    .global __QV_decompress_none, __QV_decompress_lzss
    .section .text.none, "ax"
    .thumb_func
__QV_decompress_none: nop
    .section .text.lzss, "ax"
    .thumb_func
__QV_decompress_lzss: nop
--- rom.cmd
--diag_suppress=10151
MEMORY { ROM (RX) : origin = 0x1000, length = 0x1000  RAM : origin = 0x8000, length = 0x1000 }
SECTIONS { .text : { *(.text*) } > ROM  .cinit : > ROM  .data : { *(.data*) } > RAM  .bss : { *(.bss*) } > RAM }
--- init.s
    .global __QV_default_auto_init, _start
    .set __QV_default_auto_init, 1
    .section .text._start, "ax"
    .thumb_func
_start: b __QV_auto_init
    .macro variant name, flags
    .section .text.\name, "ax"
    .global \name
    .thumb_func
\name: movs r1, #\flags
    b .
    .endm
    variant __QV_auto_init 3
    variant __QV_auto_init_nobinit 2
    variant __QV_auto_init_nopinit 1
    variant __QV_auto_init_nobinit_nopinit 0
    variant __QV_auto_init_hold_wdt 7
    variant __QV_auto_init_nobinit_hold_wdt 6
--- copied.s
    .section .data.copied, "aw"
    .global copied
copied: .word 1
--- init.cmd
--entry_point=_start
--diag_suppress=10151
MEMORY { M : origin = 0x1000, length = 0x1000  R : origin = 0x8000, length = 0x1000 }
SECTIONS {
    .text : { *(.text*) } > M  .init_array : > M  .binit : > M
    .fast : { *(.data.copied) } LOAD > M, RUN > R, table(BINIT)
}
--- ok.cmd
--entry_point=_start
--diag_suppress=10151
MEMORY { M : origin = 0x1000, length = 0x1000 }
SECTIONS { .text : { *(.text._start) *(.text*) } > M   .data : { *(.data*) } > M }
--- plain.cmd
--entry_point=_start
--- boot.cmd
--diag_suppress=10151
MEMORY { M : origin = 0x1000, length = 0x1000 }
SECTIONS { .text : { *(.text*) } > M   .init_array : > M }
--- case nothing to clean up: exit is abort
--- args
main.o exit.o abort.o ok.cmd -o out.elf
--- dis .text
00001000 <_start>:
b.n 1008 <abort>
00001002 <only_abort>:
00001008 <abort>:
b.n 1002 <only_abort>
--- section
.text 0x1000 10
--- sym
exit -
__QV_exit_specialization -
--- case clean-up from another file
--- args
cleanup.o exit.o abort.o ok.cmd -o out.elf
--- dis .text
00001000 <_start>:
<exit>
<only_exit>:
<abort>
--- sym
abort 0x101b .text
--- case path profiling
--- args
prof.o exit.o abort.o ok.cmd -o out.elf
--- dis .text
00001000 <_start>:
<exit>
--- case an exit of the user stays
--- args
main.o ownexit.o abort.o ok.cmd -o out.elf
--- dis .text
<exit>
--- sym
abort -
--- case the switch that turns it off
--- args
main.o exit.o abort.o ok.cmd --disable:specialization -o out.elf
--- dis .text
<exit>
--- case a library without the variant
--- args
main.o exit.o ok.cmd --undef_sym=exit -o out.elf
--- exit
1
--- stderr has
abort     exit.o
--- case nobody calls exit
--- args
nouse.o exit.o abort.o plain.cmd -o out.elf
--- sym
_start 0x21 .text._start
exit -
abort -
--- case without elimination all data is kept, the clean-up pointer too, and calls for exit itself
--- args
nouse.o exit.o abort.o plain.cmd --unused_section_elimination=off -o out.elf
--- sym
exit 0x21 .text.exit
abort 0x39 .text.abort
--- case what the user retains stays
--- args
cleanup.o exit.o abort.o ok.cmd --retain=abort -o out.elf
--- dis .text
<abort>:
--- case a partial link keeps every function
--- args
main.o exit.o abort.o -r -o out.elf
--- readelf -sW
FUNC LOCAL DEFAULT 10 only_exit
FUNC GLOBAL DEFAULT 8 exit
--- case start-up code with neither arguments nor initialisation
--- args
boot.o variants.o args.o boot.cmd --ram_model -o out.elf
--- dis .text
<_c_int00_noinit_noargs>:
movs r1, #0
--- section
.text 0x1000 4
--- entry
0x1001
--- case initialisers call for initialisation
--- args
boot.o variants.o args.o ctor.o boot.cmd --ram_model -o out.elf
--- dis .text
<_c_int00_noargs>:
movs r1, #2
--- section
.text 0x1004 4
--- entry
0x1005
--- case arguments call for all, which is the function itself
--- args
boot.o variants.o args.o boot.cmd --ram_model --arg_size=16 -o out.elf
--- dis .text
<_c_int00>:
movs r1, #3
--- section
.text 0x1000 4
--- entry
0x1001
--- case another main() for arguments too
--- args
boot.o variants.o boot.cmd --ram_model -o out.elf
--- dis .text
<_c_int00>:
--- case memory protection; a variant with more serves where the smallest is missing
--- args
boot.o variants.o args.o mpu.o boot.cmd --ram_model -o out.elf
--- dis .text
<_c_int00_noargs_mpu>:
--- case no variant has all that is needed: the function stays as it stands
--- args
boot.o variants.o args.o mpu.o boot.cmd --ram_model --arg_size=16 -o out.elf
--- dis .text
<_c_int00>:
movs r1, #3
--- case little to be cleared
--- args
zero999.o zeroinit.o zero.cmd -o out.elf
--- dis .text
<__QV_zero_init_nomemset>:
movs r1, #0
--- sym
__QV_zero_init -
--- case enough for memset
--- args
zero1000.o zeroinit.o zero.cmd -o out.elf
--- dis .text
<__QV_zero_init>:
movs r1, #1
--- sym
__QV_zero_init_nomemset -
--- case a routine that nothing is unpacked by leaves with its variants
--- args
vars.o unpack.o zeroinit.o rom.cmd --rom_model -o out.elf
--- sym
__QV_zero_init -
__QV_zero_init_nomemset -
--- case unless something is cleared
--- args
vars.o zeros.o unpack.o zeroinit.o rom.cmd --rom_model --undef_sym=zeros -o out.elf
--- sym
__QV_zero_init -
__QV_zero_init_nomemset 0x1009 .text
--- case initialisation that has nothing to walk
--- args
init.o init.cmd -o out.elf
--- dis .text
<__QV_auto_init_nobinit_nopinit>:
movs r1, #0
--- section
.text 0x1000 6
--- case with initialisers
--- args
init.o ctor.o init.cmd -o out.elf
--- dis .text
<__QV_auto_init_nobinit>:
movs r1, #2
--- case with something to copy first
--- args
init.o copied.o init.cmd -o out.elf -u copied
--- dis .text
<__QV_auto_init_nopinit>:
movs r1, #1
--- case with both
--- args
init.o copied.o ctor.o init.cmd -o out.elf -u copied
--- dis .text
<__QV_auto_init>:
movs r1, #3
--- sym
__QV_auto_init_nobinit -
--- case with a watchdog to be held; the smallest variant that is there
--- args
init.o init.cmd -o out.elf --cinit_hold_wdt=on
--- dis .text
<__QV_auto_init_nobinit_hold_wdt>:
movs r1, #6
--- section
.text 0x1000 6
