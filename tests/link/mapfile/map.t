The map shows entry, memory, segments, sections with holes and fills, modules and symbols; each part can be left out.
--- a.s
    .syntax unified
    .section .vec, "a"
    .word start
    .section .text.start, "ax"
    .global start
    .thumb_func
start: bl one
    bl two
    ldr r0, =value
    ldr r1, =zeros
    .data
    .global value
value: .word 1, 2, 3
    .bss
    .global zeros
zeros: .space 16
--- one.s
    .global one
    .section .text.one, "ax"
    .thumb_func
one: bx lr
--- two.s
    .global two
    .section .text.two, "ax"
    .thumb_func
two: bx lr
    nop
--- archive lib.a one.o two.o
--- l.cmd
--entry_point=start --retain=*(.vec)
MEMORY { FLASH (RX) : o = 0x0, l = 0x1000  RAM (RW) : o = 0x20000000, l = 0x100, fill = 0xAB }
SECTIONS {
    .vectors 0x0 : { *(.vec) . += 12; } fill = 0x55
    .text 0x40 : { *(.text.start) . = ALIGN(32); *(.text*) }
    .data : {} LOAD = FLASH, RUN = RAM
    .bss : {} > RAM
}
--- case everything
--- args
a.o lib.a l.cmd -o out.elf --map_file=out.map
--- text out.map has
******************************************************************************
                  QV ARM Linker Unix
>> Linked
OUTPUT FILE NAME:   <out.elf>
ENTRY POINT SYMBOL: "start"  address: 00000041
MEMORY CONFIGURATION
         name            origin    length      used     unused   attr    fill
----------------------  --------  ---------  --------  --------  ----  --------
  RAM                   20000000   00000100  00000100  00000000  RW    ab
SEGMENT ALLOCATION MAP
run origin  load origin   length   init length attrs members
----------  ----------- ---------- ----------- ----- -------
SECTION ALLOCATION MAP
 output                                  attributes/
section   page    origin      length       input sections
--------  ----  ----------  ----------   ----------------
.vectors   0    00000000    00000010
                  00000000    00000004     a.o (.vec)
                  00000004    0000000c     --HOLE-- [fill = 55]
.data      0    00000010    0000000c     RUN ADDR = 20000010
.text      0    00000040
                  00000040    00000014     a.o (.text.start)
                  00000054    0000000c     --HOLE-- [fill = 0]
     lib.a : two.o (.text.two)
           : one.o (.text.one)
.bss       0    20000000    00000010     UNINITIALIZED
MODULE SUMMARY
       Module
    <current directory>
       a.o
       Total:
    lib.a
       two.o
       one.o
       Total:
       Grand Total:
GLOBAL SYMBOLS: SORTED ALPHABETICALLY BY Name
address   name
-------   ----
00000065  one
00000041  start
00000061  two
20000010  value
20000000  zeros
GLOBAL SYMBOLS: SORTED BY Symbol Address
00000041  start
00000061  two
00000065  one
20000000  zeros
20000010  value
 symbols]
--- case parts left out
--- args
a.o lib.a l.cmd -o out.elf -m out.map --mapfile_contents=nomemory,nosections,sym_defs,bogus
--- stderr
warning: unrecognized --mapfile_contents attribute:  bogus
--- text out.map lacks
MEMORY CONFIGURATION
SECTION ALLOCATION MAP
--- text out.map has
OUTPUT FILE NAME:   <out.elf>
SEGMENT ALLOCATION MAP
MODULE SUMMARY
SYMBOL DEFINITIONS BY INPUT FILE
================================================================================
a.o
Value     Binding   Name (Section)
00000041  global    start (.text.start)
20000010  global    value (.data)
lib.a : one.o
--- case no place for the file
--- args
a.o lib.a l.cmd -o out.elf -m nowhere/out.map
--- exit
1
--- stderr has
fatal error: cannot open file "nowhere/out.map":  No such file or directory
--- no-file out.elf
--- case no room
--- small.cmd
--entry_point=start
MEMORY { FLASH : o = 0x0, l = 0x10  RAM : o = 0x20000000, l = 0x100 }
SECTIONS { GROUP : { .text : { *(.text*) } } > FLASH   .data : {} > RAM   .bss : {} > RAM }
--- args
a.o lib.a small.cmd -o out.elf -m out.map
--- exit
1
--- stderr has
error: program will not fit into available memory.
--- text out.map has
.text      0    00000000    0000001a     FAILED TO ALLOCATE
.bss       0    20000000    00000010     UNINITIALIZED
--- no-file out.elf
--- case no room for the map
--- args
a.o lib.a l.cmd -o out.elf -m /dev/full
--- exit
1
--- stderr has
error: cannot write the map to "/dev/full":  No space left on device
--- no-file out.elf
--- case symbols that the output hides or makes local are listed apart
--- args
a.o lib.a l.cmd -o out.elf -m out.map --hide=two --localize=z* --mapfile_contents=none,sym_name,hidden_sym,localized_sym
--- text out.map has
GLOBAL SYMBOLS: SORTED ALPHABETICALLY BY Name
00000065  one
00000041  start
20000010  value
HIDDEN SYMBOLS:
00000061  two
[1 hidden symbols]
LOCALIZED SYMBOLS:
20000000  zeros
[1 localized symbols]
--- case local symbols stand at their addresses
--- local.s
    .data
    .word start
here: .word here
    .text
    .global start
start: .word here
--- local.cmd
--entry_point=start
MEMORY { FLASH (RX) : o = 0x100, l = 0x1000  RAM (RW) : o = 0x20000000, l = 0x100 }
SECTIONS { .text : {} > FLASH   .data : {} LOAD = FLASH, RUN = RAM }
--- args
local.o local.cmd -o out.elf -m out.map --mapfile_contents=none,sym_defs
--- text out.map has
20000004   local     here (.data)
 00000104
00000108   global    start (.text)
--- text out.map lacks
 e0000
--- case a veneer changes the state of a branch that cannot; each list counts its own
--- arm.s -march=armv7-a -marm
    .syntax unified
    .arm
    .section .text.start, "ax"
    .global start
    .type start, %function
start:
    bl first
    beq second
    b second
    .thumb
    .section .text.second, "ax"
    .global second
    .type second, %function
    .thumb_func
second: bx lr
    .arm
    .section .far.first, "ax"
    .global first
    .type first, %function
first: bx lr
--- far.cmd
--entry_point=start
MEMORY { LOW : o = 0x8000, l = 0x1000  HIGH : o = 0x20000000, l = 0x1000 }
SECTIONS { .text : { *(.text*) } > LOW   .far : { *(.far*) } > HIGH }
--- args
arm.o far.cmd -o out.elf -m out.map --mapfile_contents=none,veneers,trampolines
--- text out.map has
VENEERS
callee name               veneer name
   callee addr  veneer addr  call addr  call info
--------------  -----------  ---------  ----------------
second                    $Ven$AT$L$PI$$second
   00008021     00008014     00008004   arm.o (.text.start)
                             00008008   arm.o (.text.start)
[1 trampolines]
[2 trampoline calls]
FAR CALL TRAMPOLINES
callee name               trampoline name
   callee addr  tramp addr   call addr  call info
--------------  -----------  ---------  ----------------
first                     $Tramp$AA$L$PI$$first
   20000000     0000800c     00008000   arm.o (.text.start)
[1 trampolines]
[1 trampoline calls]
--- case what stays global in a group is listed apart
--- group.s
    .global start
    .section .text.start, "ax"
    .thumb_func
start: bl once
    bx lr
    .section .text.once, "axG", %progbits, once, comdat
    .weak once
    .thumb_func
once: bx lr
--- args
group.o -r -o out.elf -m out.map --hide=once --hide=start --mapfile_contents=none,sym_name,sym_runaddr,hidden_sym
--- stderr re
warning: comdat symbols must remain global; option
--- text out.map has
GLOBAL SYMBOLS: SORTED BY Symbol Address
00000001  once
[1 symbols]
HIDDEN SYMBOLS:
00000001  start
[1 hidden symbols]
COMDAT SYMBOLS NOT HIDDEN OR LOCALIZED:
address   name
-------   ----
00000001  once
[1 comdat symbols not hidden or localized]
--- case without names there is nothing to sort
--- args
a.o lib.a l.cmd -o out.elf -m out.map --hide=* --mapfile_contents=none,sym_name,sym_runaddr
--- text out.map re
SORTED ALPHABETICALLY BY Name 


\[0 symbols\]


GLOBAL SYMBOLS: SORTED BY Symbol Address 

address  name
-------  ----

\[0 symbols\]$
--- case a file that takes no memory has no row, and its directory no total
--- sub/empty.s
    .section .nothing, "a"
    .global nothing
nothing:
--- main.s
    .global main
    .section .text.main, "ax"
main: .word nothing
--- args
sub/empty.o two.o one.o main.o -e main -o out.elf -m out.map --mapfile_contents=none,modules
--- text out.map re
       Total:         4      0         0

    sub
    \+-.*
       Grand Total:   4      0         0
