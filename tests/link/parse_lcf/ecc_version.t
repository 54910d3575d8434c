ECC algorithms and ranges are taken and change nothing without --ecc; a VERSION block needs a convention with versions.
--- a.s
    .global _start
    .section .text._start, "ax"
    .thumb_func
_start: bx lr
--- case algorithms and ranges
--- l.cmd
-e _start
ECC { f021 : PARITY_MASK = 0xFC, MIRRORING = ABABABAB, ADDRESS_MASK = 0x003FFFF8 }
MEMORY {
    FLASH : o = 0, l = 0x100
    ECC_FLASH : o = 0x1000, l = 0x20, ECC = { input_range = FLASH, algorithm = f021, fill = false }
}
SECTIONS { .text : { *(.text*) } > FLASH }
--- args
a.o l.cmd -o out.elf
--- section
.text 0 2
--- case faults have their line
--- l.cmd
-e _start
ECC {
    f : MIRRORING = AC
}
MEMORY {
    FLASH : o = 0, l = 0x100
    E : o = 0x1000, l = 0x20, ECC = { input_range = FLASH2 }
}
SECTIONS { .text : { *(.text*) } > FLASH }
--- args
a.o l.cmd -o out.elf
--- exit
1
--- stderr
"l.cmd", line 3: error: not a valid ECC mirroring scheme: "AC"
"l.cmd", line 3: warning: Missing ECC parity mask; using default value of 0x0
"l.cmd", line 7: error: no such memory range: FLASH2
error: errors encountered during linking; "out.elf" not built
--- no-file out.elf
--- case symbol versions
--- l.cmd
-e _start
MEMORY { FLASH : o = 0, l = 0x100 }
SECTIONS { .text : { *(.text*) } > FLASH }
VERSION {
    V1 { GLOBAL: f*; LOCAL: *; };
    V2 { GLOBAL: g; } V0;
}
--- args
a.o l.cmd -o out.elf
--- exit
1
--- stderr
"l.cmd", line 6: error: version dependency not found:  "V0"
"l.cmd", line 5: error: VERSION map not supported; option --no_symver specified
"l.cmd", line 6: error: VERSION map not supported; option --no_symver specified
error: errors encountered during linking; "out.elf" not built
--- no-file out.elf
