The XML link information: what stands in it in each situation. Whole documents are in tests/run/golden.
--- a.s
    .syntax unified
    .section .text.start, "ax"
    .global start
    .thumb_func
start: bl less
    ldr r0, =zeros
    ldr r1, ="va<l>&'ue\""
    .section .text.less, "ax"
    .global less
    .thumb_func
less: bx lr
    .section .debug_own
    .word start
    .data
    .global "va<l>&'ue\""
"va<l>&'ue\"": .word 1
    .bss
    .global zeros
zeros: .space 8
--- b.s
    .section .text.b, "ax"
    .global b
b:  .space 0x80
    .section .text.c, "ax"
    .space 0x80
--- l.cmd
--entry_point=start
MEMORY { FLASH : o = 0, l = 200, fill = 0x1  SHORT : o = 0x1000, l = 100  LONGER : o = 0x2000, l = 101
         RAM : o = 0x20000000, l = 0x100 }
SECTIONS { .text : { *(.text*) } > FLASH  .data : > RAM  .bss : > RAM }
--- case names are escaped; a range is displayed from 101 on; what has no data says so
--- args
a.o l.cmd -o out.elf --xml_link_info=out.xml
--- text out.xml has
<?xml version="1.0" encoding="ISO-8859-1" ?>
<link_info>
   <banner>QV ARM Linker Unix v
   <link_errors>0x0</link_errors>
   <output_file>out.elf</output_file>
         <name>.bss</name>
         <uninitialized>true</uninitialized>
         <run_address>0x20000000</run_address>
         <size>0x8</size>
         <input_file_ref idref="fl-0"/>
 display="never" color="cyan">
         <name>.debug_own</name>
      <memory_area display="yes" color="green">
         <name>FLASH</name>
         <fill_value>0x1</fill_value>
         <fill_width>0x8</fill_width>
         <virtual_fill>0x0</virtual_fill>
      <memory_area display="no" color="green">
         <name>SHORT</name>
         <length>0x64</length>
         <used_space>0x0</used_space>
         <unused_space>0x64</unused_space>
         <attributes>RWIX</attributes>
         <usage_details>
         </usage_details>
      <memory_area display="yes" color="green">
         <name>LONGER</name>
         <length>0x65</length>
         <name>va&lt;l&gt;&amp;&apos;ue&quot;</name>
   <title>Link successful</title>
</link_info>
--- text out.xml lacks
trampoline
veneer
cptbl
crc_table
handler
--- case the document of a link that fails shows what found no room, and what it could have used
--- exit
1
--- stderr has
program will not fit
--- big.cmd
--entry_point=start --unused_section_elimination=off
MEMORY { FLASH : o = 0, l = 0x80  RAM : o = 0x20000000, l = 0x100 }
SECTIONS { .text : { *(.text.start) *(.text.less) } > FLASH  .data : > RAM  .bss : > RAM
           GROUP { .fits : { *(.text.b) }  .rest : { *(.text.c) } } > FLASH }
--- args
a.o b.o big.cmd -o out.elf --xml_link_info=out.xml
--- text out.xml has
   <link_errors>0x1</link_errors>
 display="yes" color="red">
         <name>.fits</name>
 display="yes" color="red">
         <name>.rest</name>
 display="yes" color="red">
         <name>GROUP_1</name>
      <memory_area display="yes" color="blue">
         <name>FLASH</name>
      <memory_area display="yes" color="green">
         <name>RAM</name>
   <title>Link errors: red sections failed placement,available memory ranges in purple</title>
--- case an error of another kind colors nothing red
--- exit
1
--- stderr has
unresolved symbols remain
--- missing.s
    .global start
    .section .text, "ax"
start: bl nowhere
--- args
missing.o l.cmd -o out.elf --xml_link_info=out.xml
--- text out.xml has
   <link_errors>0x1</link_errors>
   <title>Link errors: red sections failed placement</title>
--- text out.xml lacks
red">
--- no-file out.elf
--- case a partial link has no addresses, and nothing in it failed
--- args
-r a.o -o out.elf --xml_link_info=out.xml --map_file=out.map
--- text out.xml has
      <object_component id="oc-
         <name>.text.start</name>
         <load_address>0x0</load_address>
 display="no" color="cyan">
         <name>.text.start:a.o</name>
   <title>Link successful</title>
--- text out.xml lacks
red">
--- text out.map lacks
FAILED
--- case a section in pieces is a group of them, each of which is one
--- pieces.cmd
--entry_point=start --unused_section_elimination=off
MEMORY { LOW : o = 0, l = 0x90  MORE : o = 0x1000, l = 0x90  RAM : o = 0x20000000, l = 0x100 }
SECTIONS { .pieces : { *(.text.b) *(.text.c) } >> LOW | MORE  .text : > RAM  .data : > RAM  .bss : > RAM }
--- args
a.o b.o pieces.cmd -o out.elf --xml_link_info=out.xml
--- text out.xml re
(?s).*<split_section id="lg-\w+" display="no" color="cyan">\s+<name>\.pieces</name>\s+<contents>\s+(<logical_group_ref idref="lg-\w+"/>\s+){2}</contents>.*
--- case veneers are no trampolines, and are not counted
--- arm.s
    .syntax unified
    .arch armv4t
    .section .arm, "ax"
    .arm
    .global start
    .type start, %function
start: b thumb
    .section .thumb, "ax"
    .thumb
    .thumb_func
    .global thumb
thumb: bx lr
--- args
arm.o -e start -o out.elf --xml_link_info=out.xml
--- text out.xml re
(?s).*<veneer_list>\s+<veneer>\s+<callee_name>thumb</callee_name>\s+<callee_addr>0x(\w+)</callee_addr>\s+<veneer_object_component_ref idref="oc-\w+"/>\s+<veneer_address>0x\w+</veneer_address>\s+<caller_list>\s+<veneer_call_site>\s+<caller_address>0x\w+</caller_address>\s+<caller_object_component_ref idref="oc-\w+"/>\s+</veneer_call_site>\s+</caller_list>\s+</veneer>\s+</veneer_list>\s+<symbol_table>.*
--- case an option that no user needs prints the table of elements
--- args
a.o l.cmd -o out.elf --xml_link_info=out.xml --debug:xml_tags
--- stdout has
link_info                                                         XML link map document
object_component_ref                                              An object
--- case a document that cannot be opened ends the link
--- exit
1
--- stderr
fatal error: cannot open file "no/such/folder.xml":  No such file or directory
--- args
a.o l.cmd -o out.elf --xml_link_info=no/such/folder.xml
--- no-file out.elf
--- case one that cannot be written is an error
--- exit
1
--- stderr has
error: cannot write the XML link information to "/dev/full":  No space left on
error: errors encountered during linking; "out.elf" not built
--- args
a.o l.cmd -o out.elf --xml_link_info=/dev/full
--- no-file out.elf
