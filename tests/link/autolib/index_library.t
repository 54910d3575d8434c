An index library stands for the build that fits the objects best; what cannot be resolved is an empty archive.
--- main.s -mcpu=cortex-m4
    .global _start
    .section .text._start, "ax"
    .thumb_func
_start: bx lr
    .balign 4
    .word lib
--- fpv4.s -mcpu=cortex-m4
    .eabi_attribute 10, 6
    .global _start
    .section .text._start, "ax"
    .thumb_func
_start: bx lr
    .balign 4
    .word lib
--- plain.s -mcpu=cortex-m3
    .global plain
    .data
plain: .word 1
--- lib3.s
    .eabi_attribute 5, ""
    .global lib
    .section .text.lib, "ax"
lib: .word 3
--- lib4.s
    .eabi_attribute 5, ""
    .global lib
    .section .text.lib, "ax"
lib: .word 4
--- lib5.s
    .eabi_attribute 5, ""
    .global lib
    .section .text.lib, "ax"
lib: .word 5
--- m3.s -mcpu=cortex-m3
    .eabi_attribute 5, ""
--- m4.s -mcpu=cortex-m4
    .eabi_attribute 5, ""
--- m4f.s -mcpu=cortex-m4
    .eabi_attribute 5, ""
    .eabi_attribute 10, 6
--- hard.s -mcpu=cortex-m4
    .eabi_attribute 5, ""
    .eabi_attribute 28, 1
--- marker.txt
any
--- archive m3.a lib3.o
--- archive m4.a lib4.o
--- archive m4f.a lib5.o
--- archive idx.a __QV_$$LIBINFO=marker.txt m3.a.libinfo=m3.o m4.a.libinfo=m4.o m4f.a.libinfo=m4f.o
--- archive libc.a __QV_$$LIBINFO=marker.txt m3.a.libinfo=m3.o m4.a=m4.o
--- archive twins.a __QV_$$LIBINFO=marker.txt m4.a.libinfo=m4.o m3.a.libinfo=m4.o
--- archive lost.a __QV_$$LIBINFO=marker.txt lost4.a.libinfo=m4.o
--- archive text.a __QV_$$LIBINFO=marker.txt marker.txt.libinfo=m4.o
--- archive unfit.a __QV_$$LIBINFO=marker.txt m4.a.libinfo=hard.o
--- archive empty.a __QV_$$LIBINFO=marker.txt
--- archive itself.a __QV_$$LIBINFO=marker.txt itself.a.libinfo=m4.o
--- archive ping.a __QV_$$LIBINFO=marker.txt pong.a.libinfo=m4.o
--- archive pong.a __QV_$$LIBINFO=marker.txt ping.a.libinfo=m4.o
--- archive further.a __QV_$$LIBINFO=marker.txt idx.a.libinfo=m4.o
--- ok.cmd
--entry_point=_start
MEMORY { M : origin = 0x1000, length = 0x1000 }
SECTIONS { .text : { *(.text*) } > M }
--- case the build of the same architecture, without more floating point than the objects use
--- args
main.o idx.a ok.cmd --issue_remarks -o out.elf
--- stdout
remark: linking in "m4.a" in place of index library "idx.a"
--- bytes .text
7047 00bf 08100000 04000000
--- case the most of what the objects use
--- args
fpv4.o idx.a ok.cmd --issue_remarks -o out.elf
--- stdout
remark: linking in "m4f.a" in place of index library "idx.a"
--- bytes .text
7047 00bf 08100000 05000000
--- case of two that agree in everything the smaller name
--- args
main.o twins.a ok.cmd -o out.elf
--- bytes .text
7047 00bf 08100000 03000000
--- case the run-time library by itself, its members named as they are
--- args
main.o --rom_model --issue_remarks -o out.elf
--- exit
1
--- stdout has
remark: automatic RTS selection:  linking in index library "libc.a"
remark: automatic RTS selection:  linking in "m4.a" in place of index library
"libc.a"
--- stderr has
_c_int00
--- case ahead of all objects nothing is known
--- args
idx.a main.o ok.cmd -o out.elf
--- exit
1
--- stderr has
warning: cannot resolve archive idx.a to a compatible library, as no input
files have been encountered
lib       main.o
--- case and the verbose text says what is missing
--- args
idx.a main.o ok.cmd --verbose_diagnostics -o out.elf
--- exit
1
--- stderr has
files have been encountered; build attribute information from input files is
--- case none fits
--- args
main.o unfit.a ok.cmd -o out.elf
--- exit
1
--- stderr has
warning: could not resolve index library "unfit.a" to a compatible library
--- case no member is an object: silent
--- args
plain.o empty.a ok.cmd --undef_sym=plain -e=plain -o out.elf
--- stderr
"ok.cmd", line 3: warning: no matching section
--- case the library is missing
--- args
main.o lost.a ok.cmd -o out.elf
--- exit
1
--- stderr has
warning: resolving index library "lost.a" to "lost4.a", but "lost4.a" was not
found
--- case what it names is no archive
--- args
main.o text.a ok.cmd -o out.elf
--- exit
1
--- stderr has
warning: resolving index library "text.a" to "marker.txt", but cannot link in
"marker.txt" as it is not a valid archive file
--- case it names itself
--- args
main.o itself.a ok.cmd -o out.elf
--- exit
1
--- stderr has
warning: resolving index library "itself.a" to "itself.a", but cannot link in
--- case two name each other
--- args
main.o ping.a ok.cmd -o out.elf
--- exit
1
--- stderr has
warning: resolving index library "pong.a" to "ping.a", but cannot link in
--- case one leads to another
--- args
main.o further.a ok.cmd --issue_remarks -o out.elf
--- stdout
remark: linking in "idx.a" in place of index library "further.a"
remark: linking in "m4.a" in place of index library "idx.a"
--- case members in a group, again and again
--- args
main.o --start-group idx.a m3.a --end-group ok.cmd -o out.elf
--- bytes .text
7047 00bf 08100000 04000000
--- case by priority
--- args
main.o m3.a idx.a --priority ok.cmd -o out.elf
--- bytes .text
7047 00bf 08100000 03000000
--- case a member is loaded by the name of the index library, and its section kept by that of the build
--- args
plain.o idx.a ok.cmd --undef_sym=plain -e=plain "--retain=idx.a<lib*>" "--retain=m3.a(*lib)" -o out.elf
--- sym
lib 0x1000 .text
