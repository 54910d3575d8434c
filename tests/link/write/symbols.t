Options hide, localize and strip symbols of the output; of two patterns that match the narrower one decides.
--- a.s
    .section .text._start, "ax"
    .globl _start, foo, foobar, bar
    .type _start, %function
    .thumb_func
_start: bl foo
    bl foobar
    bl bar
foo: bx lr
foobar: bx lr
bar: bx lr
--- once.s
    .section .text.once, "axG", %progbits, once, comdat
    .weak once
    .thumb_func
once: bx lr
    .text
    .global plain
    .thumb_func
plain: bx lr
--- link.cmd
MEMORY { M : origin = 0x100, length = 0x1000 }
SECTIONS { .text : { *(.text*) } > M }
--- case hide_all_but_one_pattern
--- args
a.o link.cmd -o out.elf --entry_point=_start --hide=* --unhide=foo*
--- sym
foo 0x10c
foobar 0x10e
bar -
_start -
--- case localize
--- args
a.o link.cmd -o out.elf --entry_point=_start --localize=foo
--- readelf -sW
0000010c 0 NOTYPE LOCAL DEFAULT 1 foo
0000010e 0 NOTYPE GLOBAL DEFAULT 1 foobar
--- case equally_wide_patterns_are_an_error
--- args
a.o link.cmd -o out.elf --entry_point=_start --hide=foo --unhide=foo
--- exit
1
--- stderr
error: ambiguous symbol hide options; symbol foo matches both --hide='foo' and
   --unhide='foo'; in such cases, one pattern must be more restrictive than the
   other
error: errors encountered during linking; "out.elf" not built
--- no-file out.elf
--- case strip
--- args
a.o link.cmd -o out.elf --entry_point=_start -s
--- stderr
warning: the -s option is deprecated for ELF; please use the strip utility
--- sym
foo -
_start -
--- case strip_a_relocatable_file
--- args
a.o -r -o out.elf -s
--- stderr has
ignoring the --no_symtable (-s) option; a relocatable output file must
--- sym
foo 0xc .text._start:a.o
--- case localize_all_but_one
--- args
a.o link.cmd -o out.elf --entry_point=_start --localize=* --globalize=bar
--- readelf -sW
NOTYPE LOCAL DEFAULT 1 foo
NOTYPE GLOBAL DEFAULT 1 bar
--- case equally_wide_patterns_of_localizing
--- args
a.o link.cmd -o out.elf --entry_point=_start --localize=f* --globalize=*o
--- exit
1
--- stderr
error: ambiguous symbol localization options; symbol foo matches both
   --localize='f*' and --gloablize='*o'; in such cases, one pattern must be
   more restrictive than the other
error: errors encountered during linking; "out.elf" not built
--- case make_static_spares_what_is_made_global
--- args
a.o link.cmd -o out.elf --entry_point=_start --make_static --make_global=bar
--- readelf -sW
NOTYPE LOCAL DEFAULT 1 foo
NOTYPE GLOBAL DEFAULT 1 bar
--- case comdat_symbols_stay_global_in_a_partial_link
--- args
once.o -r -o out.elf --hide=once --hide=plain
--- stderr
warning: comdat symbols must remain global; option --hide ignored for 1 comdat
   symbols.  Affected symbols can be listed in the mapfile.
--- sym
plain -
once 0x1 .text.once:once.o
--- case comdat_symbols_are_a_remark_of_make_static
--- args
once.o -r -o out.elf --make_static --issue_remarks
--- stdout
remark: comdat symbols must remain global; option --make_static ignored for 1
   comdat symbols.  Affected symbols can be listed in the mapfile.
--- readelf -sW
FUNC LOCAL DEFAULT 2 plain
FUNC WEAK DEFAULT 5 once
--- case the_patterns_are_listed
--- args
a.o link.cmd -o out.elf --entry_point=_start --debug:outsym_mods --hide=b --hide=a --hide=b --unhide=c --localize=d
--- stdout
CONTENTS OF LOCALIZE ARE : 
  d
CONTENTS OF GLOBALIZE ARE : 
CONTENTS OF HIDE  ARE : 
  a
  b
CONTENTS OF UNHIDE  ARE : 
  c
--- case symbols_of_debug_sections_stay_out
--- debug.s
    .section .debug_names, "", %progbits
    .global told
told: .word foo
--- args
a.o debug.o link.cmd -o out.elf --entry_point=_start
--- sym
told -
--- case symbols_of_debug_sections_on_request
--- debug.s
    .section .debug_names, "", %progbits
    .global told
told: .word foo
--- args
a.o debug.o link.cmd -o out.elf --entry_point=_start --disable:dwarf_sym_opt
--- sym
told 0 .debug_names
--- case strip_leaves_what_the_host_of_the_program_looks_for
--- host.s
    .section .text._start, "ax"
    .global _start, C$$EXIT, C$$IO$$, __CIOBUF_, other
_start:
C$$EXIT:
C$$IO$$:
__CIOBUF_:
other: .word __c_args__
--- args
host.o -o out.elf --entry_point=_start -s --arg_size=8
--- stderr
warning: the -s option is deprecated for ELF; please use the strip utility
--- sym
C$$EXIT 0x28
C$$IO$$ 0x28
__CIOBUF_ 0x28
__c_args__ 0x20 .args
other -
binit -
--- case in_rom_what_is_hidden_is_local
--- hidden.s
    .section .text._start, "ax"
    .global _start, kept_inside
    .hidden kept_inside
_start:
kept_inside: .word 0
--- args
hidden.o -o out.elf --entry_point=_start --rom --import=nowhere
--- stderr
warning: symbol "nowhere" is not found; --import="nowhere" is ignored
--- readelf -sW
NOTYPE LOCAL HIDDEN 8 kept_inside
NOTYPE GLOBAL DEFAULT 8 _start
--- case what_tells_code_from_data_is_never_hidden
--- args
a.o -r -o out.elf --hide=*
--- sym
foo -
--- readelf -sW
LOCAL DEFAULT 4 $t
--- case a_group_keeps_the_name_it_is_known_by
--- group.s
    .section .text.ctor, "axG", %progbits, ctor_group, comdat
    .weak ctor
    .type ctor, %function
    .thumb_func
ctor: bx lr
--- args
group.o -r -o out.elf --hide=*
--- stderr
warning: comdat symbols must remain global; option --hide ignored for 1 comdat
   symbols.  Affected symbols can be listed in the mapfile.
--- readelf -gW
COMDAT group section [ 1] `.group' [ctor_group] contains 1 sections:
--- case a_common_block_that_nothing_refers_to_is_gone_when_it_is_local
--- common.s
    .comm spare, 4, 4
--- args
a.o common.o -r -o out.elf --localize=spare
--- sym
spare -
foo 0xc .text._start:a.o
