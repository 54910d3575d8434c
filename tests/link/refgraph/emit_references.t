The reference graph says of each object what it defines and who refers to it, as text or JSON.
--- a.s
    .global _start
    .section .text._start, "ax"
    .thumb_func
    .type _start, %function
_start: bl f
    bl f
    .size _start, . - _start
    .section .text.f, "ax"
    .global f
    .thumb_func
    .type f, %function
f:  bl f
    bx lr
    .size f, . - f
    .balign 4
inner: .word data
    .word small
    .section .data.d, "aw"
data: .word _Z1giPKc
small: .word 0
    .type small, %object
    .size small, 4
    .section .debug_x, "", %progbits
    .word f
--- g.s
    .section .text.g, "ax"
    .global _Z1giPKc
    .thumb_func
    .type _Z1giPKc, %function
_Z1giPKc: b f
    .size _Z1giPKc, . - _Z1giPKc
    .section .data.kept, "aw"
    .word 0
    .comm block, 8, 4
    .word block
--- ok.cmd
--entry_point=_start
MEMORY { M : origin = 0x1000, length = 0x1000 }
SECTIONS { .text : { *(.text*) } > M  .data : { *(.data*) } > M .bss : > M }
--- case both forms
--- args
a.o g.o ok.cmd --retain=*(.data.kept) --emit_references:file=refs --emit_references:format=JSON --emit_references:format=TEXT -o out.elf
--- text refs.json
{
  "nodes" : [
    {"id" : "ROOT_SECTION:<internal>", "group" : 1, "defines" : []},
    {"id" : ".text._start:a.o", "group" : 1, "defines" : [{"name" : "_start", "offset" : 0, "type" : "function", "binding" : "global", "size" : 8}]},
    {"id" : ".data.kept:g.o", "group" : 1, "defines" : []},
    {"id" : ".text.f:a.o", "group" : 1, "defines" : [{"name" : "f", "offset" : 0, "type" : "function", "binding" : "global", "size" : 6}]},
    {"id" : ".common:block", "group" : 1, "defines" : [{"name" : "block", "offset" : 4, "type" : "object", "binding" : "global", "size" : 8}]},
    {"id" : ".data.d:a.o", "group" : 1, "defines" : [{"name" : "small", "offset" : 4, "type" : "object", "binding" : "local", "size" : 4}]},
    {"id" : ".text.g:g.o", "group" : 1, "defines" : [{"name" : "g(int, char const*)", "offset" : 0, "type" : "function", "binding" : "global", "size" : 2}]}
  ],
  "links" : [
    {"source" : "ROOT_SECTION:<internal>", "target" : ".text._start:a.o", "value" : 1, "relocs" : []},
    {"source" : "ROOT_SECTION:<internal>", "target" : ".data.kept:g.o", "value" : 1, "relocs" : []},
    {"source" : ".text._start:a.o", "target" : ".text.f:a.o", "value" : 2, "relocs" : [{"name" : "f", "offset" : 0, "resolution": "_start"},{"name" : "f", "offset" : 4, "resolution": "_start"}]},
    {"source" : ".data.kept:g.o", "target" : ".common:block", "value" : 1, "relocs" : [{"name" : "block", "offset" : 4, "resolution": ""}]},
    {"source" : ".text.f:a.o", "target" : ".data.d:a.o", "value" : 2, "relocs" : [{"name" : ".data.d", "offset" : 8, "resolution": ""},{"name" : ".data.d", "offset" : 12, "resolution": ""}]},
    {"source" : ".data.d:a.o", "target" : ".text.g:g.o", "value" : 1, "relocs" : [{"name" : "_Z1giPKc", "offset" : 0, "resolution": ""}]},
    {"source" : ".text.g:g.o", "target" : ".text.f:a.o", "value" : 1, "relocs" : [{"name" : "f", "offset" : 0, "resolution": "_Z1giPKc"}]}
  ]
}
--- text refs.txt has
Section .text._start:a.o:

    Section size: 8

    Defines:
      Symbol Name  Offset  TYPE      Scope   Size
      -----------  ------  ----      -----   ----
      _start       0       function  global  8

    Input references:
      Section                       from symbol  to symbol  at offset
      -------                       -----------  ---------  ---------
      Implicit reference or retain


Section .data.kept:g.o:

    Section size: 8

    No symbols defined

    Input references:
      Section                       from symbol  to symbol  at offset
      -------                       -----------  ---------  ---------
      Implicit reference or retain


Section .text.f:a.o:

    Section size: 16

    Defines:
      Symbol Name  Offset  TYPE      Scope   Size
      -----------  ------  ----      -----   ----
      f            0       function  global  6

    Input references:
      Section           from symbol  to symbol  at offset
      -------           -----------  ---------  ---------
      .text._start:a.o  _start       f          0
      .text._start:a.o  _start       f          4


Section .common:block:

    Section size: 8

    Defines:
      Symbol Name  Offset  TYPE    Scope   Size
      -----------  ------  ----    -----   ----
      block        4       object  global  8

    Input references:
      Section         from symbol  to symbol  at offset
      -------         -----------  ---------  ---------
      .data.kept:g.o               block      4


Section .data.d:a.o:

    Section size: 8

    Defines:
      Symbol Name  Offset  TYPE    Scope  Size
      -----------  ------  ----    -----  ----
      small        4       object  local  4

    Input references:
      Section      from symbol  to symbol  at offset
      -------      -----------  ---------  ---------
      .text.f:a.o               .data.d    8
      .text.f:a.o               .data.d    12


Section .text.g:g.o:

    Section size: 2

    Defines:
      Symbol Name          Offset  TYPE      Scope   Size
      -----------          ------  ----      -----   ----
      g(int, char const*)  0       function  global  2

    Input references:
      Section      from symbol  to symbol  at offset
      -------      -----------  ---------  ---------
      .data.d:a.o               _Z1giPKc   0


--- case the root of all references is no part of a program that keeps everything
--- args
a.o g.o ok.cmd --unused_section_elimination=off --emit_references:file=refs -o out.elf --map_file=out.map
--- file refs.txt
--- text out.map lacks
ROOT_SECTION
--- case nor of a partial link
--- args
-r a.o g.o --emit_references:file=refs -o out.o --map_file=out.map
--- file refs.txt
--- text out.map lacks
ROOT_SECTION
--- case text is the default
--- args
a.o g.o ok.cmd --emit_references:file=refs -o out.elf
--- file refs.txt
--- no-file refs.json
--- case nothing is written unless asked for
--- args
a.o g.o ok.cmd -o out.elf
--- no-file refs.txt
--- case a format without a file
--- args
a.o g.o ok.cmd --emit_references:format=TEXT -o out.elf
--- exit
1
--- stderr has
error: Option --emit_references:format is not valid without
--emit_references:file
--- case a file that cannot be opened
--- args
a.o g.o ok.cmd --emit_references:file=nowhere/refs -o out.elf
--- exit
1
--- stderr has
fatal error: cannot open file "nowhere/refs.txt":  No such file or directory
--- no-file out.elf
