Options act in the order in which they are written, wherever they are written.
--- a.s
    .global _start
    .section .text._start, "ax"
    .thumb_func
_start: bx lr
--- ok.cmd
--entry_point=_start
MEMORY { M : origin = 0x1000, length = 0x1000 }
SECTIONS { .text : { *(.text*) } > M }
--- case a word that follows is the parameter, in a command file too
--- out.cmd
-o out.elf
--- args
a.o ok.cmd out.cmd
--- file out.elf
--- case an option in another case
--- args
a.o ok.cmd --OUTPUT_FILE=out.elf
--- stderr
warning: Case insensitivity of options has been deprecated; --OUTPUT_FILE must
   be written as --output_file in future releases
--- file out.elf
--- case two options that exclude each other
--- args
a.o ok.cmd -o out.elf --be8 --be32
--- exit
1
--- stderr
error: option --be32 conflicts with previous option --be8
--- case an option that needs another
--- args
a.o ok.cmd -o out.elf --bind_now
--- stderr
warning: Option --bind_now is not valid without --sysv (ignored)
--- file out.elf
--- case a number out of range
--- args
a.o ok.cmd -o out.elf --stack_size=-4
--- exit
1
--- stderr
error: argument to option --stack_size (-4) is out of range (must be a
   non-negative_number)
--- case a missing parameter at the end of the line
--- args
a.o ok.cmd -o
--- exit
1
--- stderr
error: option -o is missing its parameter 'file'
--- case an output format that the inputs do not have
--- args
a.o ok.cmd -o out.elf --object_format=coff --display_error_number
--- exit
1
--- stderr has
error #10016-D: --object_format=coff not supported when producing ELF output
--- no-file out.elf
--- case the help about a text
--- args
--help=stack_size
--- stdout has
  --stack_size=size, -stack, --stack
Bytes set aside for the stack
--- case no argument at all
--- args
--- stdout has
QV ARM Linker
Usage: 
Basic options:
--output_file=file, -o
Finding files and libraries:
--- case the version
--- args
--toolversion
--- stdout re
QV ARM Linker +v\d+\.\d+\.\d+\n
