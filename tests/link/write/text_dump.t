--ofd writes the output as text.
--- a.s
    .global start
    .section .text, "ax"
start:
    .word value
    .section .data, "aw"
value:
    .word 0x1234
--- link.cmd
MEMORY { ROM : origin = 0x100, length = 0x100  RAM : origin = 0x1000, length = 0x100 }
SECTIONS { .text : > ROM  .data : > RAM }
--- case to a file
--- args
a.o link.cmd -e start -o out.elf --ofd=out.txt
--- text out.txt re
(?s)\nOBJECT FILE\n.*entry point +0x00000100\n.*\.data +0x00001000 +0x00001000 +0x4 .*PT_LOAD .*start +0x00000100 .*
--- case to standard output
--- args
a.o link.cmd -e start -o out.elf --debug:ofd
--- stdout re
(?s)\n\nOUTPUT FILE DUMP:\n.*\.text .*
--- case what the linker makes itself
--- env
TMPDIR=.
--- args
a.o link.cmd -e start -o out.elf --arg_size=16 --debug:ifile
--- stdout re
Linker internal file written to "\./qvl\w{6}"\n
--- no-file out.elf
