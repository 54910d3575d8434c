--retain keeps symbols, sections and archive members that nothing reaches.
--- a.s
    .global _start
    .section .text._start, "ax"
    .thumb_func
_start: bx lr
    .section .isr_vector, "a"
    .word 0x20001000, 0x101
    .section .data.kept, "aw"
    .global kept
kept: .word 5
    .section .data.other, "aw"
    .global other
other: .word 6
--- member.s
    .section .data.member, "aw"
    .global member
member: .word 8
--- b.s
    .section .isr_vector, "a"
    .word 1, 2, 3
--- archive lib.a member.o
--- ok.cmd
--entry_point=_start
--diag_suppress=10151
MEMORY { M : origin = 0x1000, length = 0x1000 }
SECTIONS { .vectors : { *(.isr_vector) } > M   .text : { *(.text*) } > M   .data : { *(.data*) } > M }
--- case without it they go
--- args
a.o ok.cmd -o out.elf
--- section
.vectors 0 0
.data 0 0
--- case a section of any file
--- args
a.o b.o ok.cmd --retain=*(.isr_vector) -o out.elf
--- section
.vectors 0x1000 20
--- case a section of one file
--- args
a.o b.o ok.cmd --retain=b.o(.isr_vector) -o out.elf
--- section
.vectors 0x1000 12
--- case a symbol
--- args
a.o ok.cmd --retain=kept -o out.elf
--- sym
kept 0x1000 .data
other -
--- case symbols by a pattern
--- args
a.o ok.cmd "--retain=?t*r" -o out.elf
--- sym
other 0x1000 .data
kept -
--- case a symbol that an archive has
--- args
a.o lib.a ok.cmd --retain=member -o out.elf
--- sym
member 0x1000 .data
--- case a member is loaded, and its section kept
--- args
a.o lib.a ok.cmd "--retain=lib.a<member.o>(.data*)" -o out.elf
--- sym
member 0x1000 .data
--- case several sections
--- args
a.o ok.cmd "--retain=*(.isr_vector, .data.other)" -o out.elf
--- sym
other 0x1008 .data
--- section
.vectors 0x1000 8
--- case everything by symbol is refused
--- args
a.o ok.cmd --retain=* -o out.elf
--- exit
1
--- stderr has
error: invalid parameter * to option --retain
--- case everything by member is refused
--- args
a.o ok.cmd "--retain=*<*>(*)" -o out.elf
--- exit
1
--- stderr has
error: invalid parameter *<*>(*) to option --retain
--- case a list that does not end
--- args
a.o ok.cmd "--retain=*(.data" -o out.elf
--- exit
1
--- stderr has
error: invalid parameter *(.data to option --retain
--- case a library by the search path
--- args
a.o lib.a ok.cmd "--retain=-llib.a<member.o>" --undef_sym=member -o out.elf
--- sym
member 0x1000 .data
--- case which has to have members behind it
--- args
a.o lib.a ok.cmd "--retain=-llib.a(.data)" -o out.elf
--- exit
1
--- stderr
error: invalid parameter -llib.a(.data) to option --retain
error: errors encountered during linking; "out.elf" not built
--- case and no pattern
--- args
a.o lib.a ok.cmd "--retain=-llib*<member.o>" -o out.elf
--- exit
1
--- stderr
error: invalid parameter -llib*<member.o> to option --retain
error: errors encountered during linking; "out.elf" not built
--- case a file that is not there adds no filter: the section of any file
--- args
a.o b.o ok.cmd "--retain=nowhere.o(.isr_vector)" -o out.elf
--- section
.vectors 0x1000 20
--- case what stands behind the lists is ignored
--- args
a.o b.o ok.cmd "--retain=b.o(.isr_vector)>,<" -o out.elf
--- section
.vectors 0x1000 12
--- case a name and nothing but a closing bracket
--- args
a.o ok.cmd "--retain=a.o)" -o out.elf
--- exit
1
--- stderr has
error: invalid parameter a.o) to option --retain
--- case commas between names may be left out
--- args
a.o ok.cmd "--retain=*(.isr_vector .data.other)" -o out.elf
--- sym
other 0x1008 .data
--- case a member by a pattern, its sections by another
--- args
a.o lib.a ok.cmd "--retain=l*.a<m*.o>(*member)" -o out.elf
--- sym
member 0x1000 .data
--- case sections of members leave those of plain files alone
--- args
a.o lib.a ok.cmd "--retain=*.a<*>(.data*)" -o out.elf
--- sym
member 0x1000 .data
other -
--- case in a partial link it has no effect, and loads nothing
--- args
a.o lib.a "--retain=lib.a<member.o>" --retain=member -r -o out.elf
--- sym
member -
--- case all members and all sections of all libraries, by file pattern too, is refused
--- args
a.o ok.cmd "--retain=*<*>(*)" --retain=*(.data.kept) -o out.elf
--- exit
1
--- stderr
error: invalid parameter *<*>(*) to option --retain
error: errors encountered during linking; "out.elf" not built
--- case all sections of all files is not
--- args
a.o ok.cmd "--retain=*(*)" -o out.elf
--- sym
other 0x1004 .data
