/*
 * A UNION gives its members one run address; each is stored somewhere else. table(name) makes the copy table by which
 * the program brings a member in, and compression= says how the member is stored.
 */
--rom_model
--retain=*(.isr_vector)     /* nothing refers to these two */
--retain=*(.stack)
--stack_size=0x1000

MEMORY
{
    FLASH (RX)  : origin = 0x00000000, length = 256K
    RAM   (RWX) : origin = 0x20000000, length = 64K
}

SECTIONS
{
    .isr_vector : { *(.isr_vector) } > 0x00000000

    UNION
    {
        .sums    : { sums.o(.text*) }                     LOAD > FLASH, table(sums_table)
        .words   : { words.o(.text*) words.o(.rodata*) }
                                                          LOAD > FLASH, table(words_table, compression=rle)
        .squares : { squares.o(.text*) squares.o(.data*) }
                                                          LOAD > FLASH, table(squares_table, compression=lzss)
    } RUN > RAM

    .text       : { *(.text*) }   > FLASH
    .ovly       : > FLASH         /* the copy tables */
    .cinit      : > FLASH
    .stack      : > RAM (HIGH)
}
