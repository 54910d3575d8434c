Which files make up the link, and what the load phase says of them, one rule a case.
--- main.s
    .global _start
    .section .text._start, "ax"
    .thumb_func
_start: bx lr
    .balign 4
    .word one
--- one.s
    .global one
    .section .text.one, "ax"
one: .word 1
--- strong.s
    .global one
    .weak also
    .section .text.one, "ax"
one: .word 0x21
    .section .text.also, "ax"
also: .word 0x22
--- also.s
    .global also
    .section .text.also, "ax"
also: .word 0x23
--- both.s
    .global _start
    .section .text._start, "ax"
    .thumb_func
_start: bx lr
    .balign 4
    .word one, also
--- entry.s
    .global _c_int00
    .section .text._c_int00, "ax"
    .thumb_func
_c_int00: bx lr
--- cobj.s
    .data
    .word 1
--- patch.s
    .global __QV_PATCH_INTERCEPT_one, __QV_PATCH_ORIGINAL_one
    .section .text.patch, "ax"
__QV_PATCH_INTERCEPT_one: .word 0x99
    .word __QV_PATCH_ORIGINAL_one
--- retained.s
    .section .data.loose, "aw"
__tagsym$$retain.loose: .word 0x77
    .section .data.dropped, "aw"
    .word 0x78
--- wanting.s
    .section .text.wanting, "ax"
    .global wanting
wanting: .word also
--- exe.s
    .section .text.exe, "ax"
    .global also
also: .word 1
--- patch exe.o 0x10 0200
--- junk.o
not an object
--- archive lib.a one.o
--- archive strong.a strong.o
--- archive also.a also.o
--- archive lies.a one.o
--- patch lies.a 0x4C 6F6E47
--- archive offset.a one.o
--- patch offset.a 0x4B 45
--- archive junk.a one.o junk.o
--- rts/note.txt
the libraries
--- archive rts/libc.a entry.o
--- archive empty.a
--- hex bsd.a
213c617263683e0a
5f5f2e53594d44454620202020202020302020202020202020202020302020202020302020202020363434202020202038202020202020202020600a    # __.SYMDEF
0000000000000000
6f6e652e6f2f20202020202020202020302020202020202020202020302020202020302020202020363434202020202034202020202020202020600a    # one.o
01020304
--- hex coff.a
213c617263683e0a
2f202020202020202020202020202020302020202020202020202020302020202020302020202020363434202020202031342020202020202020600a    # the directory
00000001000000526f6464000000
782e6f626a2f20202020202020202020302020202020202020202020302020202020302020202020363434202020202035302020202020202020600a    # x.obj
c200000000000000000000000000000000000000970000000000000000000000000000000000000000000000000000000000
--- ok.cmd
--entry_point=_start
--diag_suppress=10151
MEMORY { M : origin = 0x1000, length = 0x1000 }
SECTIONS { .text : { *(.text*) } > M  .data : { *(.data*) } > M }
--- case no object at all
--- args
ok.cmd lib.a -o out.elf
--- exit
1
--- stderr
fatal error: no input files
--- no-file out.elf
--- case a member that a strong reference pulls defines its weak names too, and they stay
--- args
both.o strong.a also.a ok.cmd -o out.elf
--- bytes .text
7047 00bf 10100000 0c100000 22000000 21000000
--- case a directory that names what the member does not define
--- args
main.o lies.a ok.cmd --undef_sym=onG -o out.elf
--- exit
1
--- stderr
fatal error: failed to resolve symbol "onG"; expected definition in file
   "lies.a<one.o>"
--- no-file out.elf
--- case a directory that leads nowhere
--- args
main.o offset.a ok.cmd -o out.elf
--- exit
1
--- stderr has
error: offset 0x00000045 in file "offset.a" does not point to a valid archive
member
 one       main.o
--- no-file out.elf
--- case a directory of another system counts as none
--- args
main.o one.o bsd.a ok.cmd -o out.elf
--- stderr
warning: archive symbol directory is missing from archive "bsd.a"
--- case an archive without members has no directory either
--- args
main.o one.o empty.a ok.cmd -o out.elf
--- stderr
warning: archive symbol directory is missing from archive "empty.a"
--- case a member that is no object, asked for by name
--- args
main.o junk.a ok.cmd "--retain=junk.a<junk.o>" -o out.elf
--- exit
1
--- stderr
error: member "junk.o" of archive "junk.a" is not a recognized object file
error: errors encountered during linking; "out.elf" not built
--- case a library of another object format
--- args
main.o one.o coff.a ok.cmd -o out.elf
--- stderr
warning: library "coff.a" contains QV-COFF object files which are incompatible
   with the ELF output file.  Ensure you are using the proper library.
--- case the run-time library comes in by itself
--- args
cobj.o --search_path=rts --rom_model --issue_remarks -o out.elf
--- stdout has
remark: automatic RTS selection:  linking in index library "libc.a"
--- sym
_c_int00 0x21
--- case it is not there
--- args
cobj.o --rom_model -o out.elf
--- exit
1
--- stderr has
warning: automatic RTS selection:  attempt to automatically link in index
library "libc.a" failed; file not found
 _c_int00
--- case it is not wanted
--- args
cobj.o --rom_model --search_path=rts --disable_auto_rts -o out.elf
--- exit
1
--- stderr has
 _c_int00
--- case not after errors
--- args
cobj.o missing.o --rom_model --search_path=rts --issue_remarks -o out.elf
--- exit
1
--- stdout has
remark: Automatic library building has been disabled due to previous errors.
--- stderr has
error: cannot find file "missing.o"
--- case nor in a partial link
--- args
cobj.o -r --rom_model --search_path=rts --issue_remarks -o out.elf
--- stdout lacks
automatic RTS selection
--- stderr
warning: entry-point symbol "_c_int00" undefined
--- case unless it makes a relocatable module
--- args
cobj.o -r --rom --rom_model --search_path=rts --issue_remarks -o out.elf
--- stdout has
remark: automatic RTS selection:  linking in index library "libc.a"
--- case a patch takes the references, and reaches what it replaces
--- args
main.o one.o patch.o ok.cmd -o out.elf
--- bytes .text
7047 00bf 08100000 99000000 10100000 01000000
--- case a symbol that retains its section
--- args
main.o one.o retained.o ok.cmd -o out.elf
--- bytes .data
77000000
--- case what a patch replaces may come from an archive behind it
--- args
main.o patch.o lib.a ok.cmd -o out.elf
--- bytes .text
7047 00bf 08100000 99000000 10100000 01000000
--- case an executable file is no input
--- args
main.o one.o exe.o ok.cmd -o out.elf
--- exit
1
--- stderr
fatal error: file "exe.o" could not be statically or dynamically linked
--- no-file out.elf
--- case an archive named twice is read in both places
--- args
main.o lib.a also.a wanting.o also.a ok.cmd -u wanting -o out.elf
--- sym
also 0x1008 .text
