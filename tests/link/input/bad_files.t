A file that can't be what it should be is named in the right message, the link fails, and nothing stands under the output's name.
--- a.s
    .global _start
    .section .text._start, "ax"
    .thumb_func
_start: bx lr
--- b.s
    .section .text.b, "ax"
    nop
--- ok.cmd
--entry_point=_start
MEMORY { M : origin = 0x1000, length = 0x1000 }
SECTIONS { .text : { *(.text*) } > M }
--- archive lib.a b.o
--- hex empty.o
--- hex noise.bin
00 01 02 03
--- hex high.bin
ff fe
--- no-file out.elf
--- exit
1
--- case an empty file
--- args
a.o empty.o ok.cmd -o out.elf
--- stderr
fatal error: unrecognized file:  "empty.o"
--- case bytes of no known kind
--- args
a.o noise.bin ok.cmd -o out.elf
--- stderr
fatal error: unrecognized file:  "noise.bin"
--- case bytes above 127
--- args
--display_error_number a.o high.bin ok.cmd -o out.elf
--- stderr
fatal error #10004: unrecognized file:  "high.bin"
--- case intermediate code of LLVM, which begins like a text
--- hex code.bc
42 43 C0 DE 0A
--- args
--verbose_diagnostics a.o code.bc ok.cmd -o out.elf
--- stderr
fatal error: unrecognized file:  "code.bc"; it is what clang makes with -flto:
   compile without
--- case an object of GCC that holds intermediate code alone
--- slim.c -flto
void wanted(void) {}
--- user.s
    .global _start
_start: .word wanted
--- args
--verbose_diagnostics user.o slim.o ok.cmd -o out.elf
--- stderr has
error: unresolved symbols remain; "slim.o" holds no code but what -flto leaves
   for later: compile with -ffat-lto-objects
--- case a file that is not there
--- args
--display_error_number a.o nowhere.o ok.cmd -o out.elf
--- stderr has
error #10008-D: cannot find file "nowhere.o"
error #10010: errors encountered during linking; "out.elf" not built
--- case a pattern that matches nothing
--- args
--display_error_number a.o nope*.o ok.cmd -o out.elf
--- exit
0
--- stderr has
#10007
--- file out.elf
--- case no input at all
--- args
-o out.elf
--- stderr
fatal error: no input files
--- case an object that ends inside its header
--- truncate b.o 30
--- args
a.o b.o ok.cmd -o out.elf
--- stderr re
b\.o
--- case an object that ends before its section headers
--- truncate b.o 60
--- args
a.o b.o ok.cmd -o out.elf
--- stderr re
b\.o
--- case section headers far behind the end
--- patch b.o 0x20 F0FFFFFF
--- args
a.o b.o ok.cmd -o out.elf
--- stderr re
b\.o
--- case an archive cut in a member's header
--- truncate lib.a 100
--- args
a.o lib.a ok.cmd -o out.elf
--- stderr re
lib\.a
--- case an output that can't be opened
--- args
a.o ok.cmd -o nowhere/out.elf --display_error_number
--- stderr
fatal error #10296: cannot open output file "nowhere/out.elf" for writing
--- case an output that is a folder
--- x/readme
--- args
a.o ok.cmd -o x
--- stderr
fatal error: cannot open output file "x" for writing
--- case an option that is none
--- args
a.o ok.cmd -o out.elf --no_such_option
--- stderr
fatal error: invalid option:  --no_such_option
--- case a stray token in a command file
--- stray.cmd
MEMORY { M : origin = 0x1000, length = 0x1000 }
SECTIONS { .text : { *(.text*) } > M } )
--- args
a.o stray.cmd -o out.elf --entry_point=_start
--- stderr
"stray.cmd", line 2: error: expecting filename, option, MEMORY, or SECTIONS
   instead of ")"
error: errors encountered during linking; "out.elf" not built
--- case a command file that ends too early
--- early.cmd
MEMORY { M : origin = 0x1000, length = 0x1000 }
SECTIONS { .text : {
--- args
a.o early.cmd -o out.elf --entry_point=_start
--- stderr re
"early.cmd", line \d: error: end of file encountered unexpectedly
--- case an old output is not left behind as if it were the new one
--- out.elf
old
--- args
a.o nowhere.o ok.cmd -o out.elf
--- stderr re
not built
