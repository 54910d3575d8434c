An output that cannot take its bytes is an error with the system's reason, and the link fails.
--- a.s
    .global _start
    .section .text._start, "ax"
    .thumb_func
_start: bx lr
--- ok.cmd
--entry_point=_start
MEMORY { M : origin = 0x1000, length = 0x1000 }
SECTIONS { .text : { *(.text*) } > M }
--- args
a.o ok.cmd -o /dev/full
--- exit
1
--- stderr has
error: /dev/full: file access error:  cannot write 0x34 bytes: No space left on
error: /dev/full: file access error:  an error occurred while writing
error: errors encountered during linking; "/dev/full" not built
