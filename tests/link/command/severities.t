The severity of a message follows the options before it, and the error limit ends the run.
--- a.s
    .global _start
    .section .text._start, "ax"
    .thumb_func
_start: bx lr
--- ok.cmd
--entry_point=_start
MEMORY { M : origin = 0x1000, length = 0x1000 }
SECTIONS { .text : { *(.text*) } > M }
--- case a suppressed message is neither shown nor counted
--- args
a.o ok.cmd -o out.elf --diag_suppress=10008 nowhere.o
--- file out.elf
--- case a warning that was made an error
--- args
a.o ok.cmd -o out.elf --diag_error=10007-D no*.o
--- exit
1
--- stderr
error: no files match the pattern no*.o
error: errors encountered during linking; "out.elf" not built
--- case the option comes too late
--- args
a.o ok.cmd -o out.elf no*.o --diag_error=10007
--- stderr
warning: no files match the pattern no*.o
--- case no warnings, all the same an error
--- args
a.o ok.cmd -o out.elf --no_warnings no*.o --diag_error=10007 none*.o
--- exit
1
--- stderr
error: no files match the pattern none*.o
error: errors encountered during linking; "out.elf" not built
--- case warnings as errors
--- args
a.o ok.cmd -o out.elf --emit_warnings_as_errors no*.o
--- exit
1
--- stderr
error: no files match the pattern no*.o
error: errors encountered during linking; "out.elf" not built
--- case the limit ends the run at once
--- args
a.o ok.cmd -o out.elf --set_error_limit=1 nowhere1.o nowhere2.o nowhere3.o
--- exit
1
--- stderr
error: cannot find file "nowhere1.o"
error: cannot find file "nowhere2.o"
fatal error: error limit reached; 1 errors detected
