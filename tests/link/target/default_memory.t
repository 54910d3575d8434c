Without a command file memory is one range, and output sections for data that start-up code leaves alone, for profiles and counters follow those that they are like.
--- a.s
    .section .text._start, "ax"
    .thumb_func
    .global _start, __vla_alloc
_start: bx lr
    .section .text.refs, "ax"
    .word counters, untouched, kept, profile, __start___llvm_prf_cnts, __stop___llvm_prf_cnts
    .word __QV_prof_data_start, __QV_prof_data_size, __QV_pprof_out_hndl
    .section __llvm_prf_cnts, "aw", %nobits
    .global counters
counters: .space 16
    .section .QV.noinit, "aw", %nobits
    .global untouched
untouched: .space 4
    .section .QV.persistent, "aw"
    .global kept
kept: .word 7
    .section .ppdata, "aw", %nobits
    .global profile
profile: .space 12
    .section __llvm_prf_names, "a"
    .word 5
    .section __llvm_covmap, "a"
    .word 6
    .section .text.gateway, "ax"
    .thumb_func
    .global __acle_se_gateway
__acle_se_gateway: bx lr
--- out.s
    .section .text.out, "ax"
    .thumb_func
    .global __QV_path_prof_out
__QV_path_prof_out: bx lr
--- case all
--- args
a.o out.o -o out.elf -e _start --retain=*(.text.refs) --undef_sym=__QV_path_prof_out
--- section
__llvm_prf_cnts 0x20 16
.QV.noinit 0x30 4
.QV.persistent 0x34 4
__llvm_prf_names 0x6c 4
__llvm_covmap 0x68 4
--- sym
__start___llvm_prf_cnts 0x20
__stop___llvm_prf_cnts 0x30
__QV_prof_data_start 0x5c
__QV_prof_data_size 12
__QV_pprof_out_hndl 0x75
__acle_se_gateway 0x73
--- case no function that writes the profile
--- args
a.o -o out.elf -e _start --retain=*(.text.refs)
--- sym
__QV_prof_data_start 0xFFFFFFFF
__QV_prof_data_size 0xFFFFFFFF
__QV_pprof_out_hndl 0xFFFFFFFF
--- case no profile
--- args
out.o -o out.elf -e __QV_path_prof_out
--- sym
__QV_prof_data_start 0xFFFFFFFF
__QV_pprof_out_hndl 0xFFFFFFFF
--- case they follow only what has a range, and the profile needs its function in the link
--- link.cmd
MEMORY { M : origin = 0x100, length = 0x100  N : origin = 0x1000, length = 0x100 }
SECTIONS { .text : { *(.text._*) *(.text.r*) } > M   .bss : {} > N   .data : {} > 0x1080 }
--- args
a.o out.o link.cmd -o out.elf -e _start --retain=*(.text.refs)
--- section
.QV.noinit 0x1010 4
--- sym
__start___llvm_prf_cnts 0x1000
__QV_pprof_out_hndl 0xFFFFFFFF
--- case two files for a further link do not both define where counters are
--- sections.cmd
SECTIONS { .text : { *(.text*) }  .bss : {} }
--- args
out.o sections.cmd -r -o out.elf
--- sym
__start___llvm_prf_cnts -
__stop___llvm_prf_cnts -
__QV_path_prof_out 0x1
