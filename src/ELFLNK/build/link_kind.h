// What kind of output this link makes: predicates over the options and the output's format that all
// output code and many other phases ask. They read options only, so they may be asked as soon as
// options are final; the ones that name a format also need the output file.
#pragma once

// ELF output of --relocatable alone: no --absolute_exe, --rom or dynamic option.
bool is_elf_partial_link();
// QV-COFF output, --relocatable without --absolute_exe.
bool is_coff_partial_link();
// Either of the two.
bool is_partial_link();
// The test of is_elf_partial_link() without the format.
bool is_partial_link_by_options();
// --rom or --relocatable, and no dynamic option: the output keeps relocations.
bool generate_static_relocs();
// Subsections join their section: not in a partial link.
bool combine_subsections();
// Blocking of sections must survive: --relocatable, --shared, --dynamic=lib or --rom.
bool must_preserve_blocking();
// --ram_model or --rom_model.
bool is_c_runtime_model();
// The target allows segment attributes, and --rom is given.
bool can_user_specify_rom_flags();
// Symbols of ".debug" sections do not reach the output's table.
bool outfile_symtab_optimization_enabled();
// Any of --shared, --dynamic in any form, --sysv.
bool is_dynamic_output();
// --shared or --dynamic=lib.
bool is_shared_output();
// A plain partial link relocates nothing: --relocatable without --rom, --absolute_exe,
// --force_reloc or dynamic options.
bool is_plain_partial_link();
