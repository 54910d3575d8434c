/* What the linker writes for the program to read: copy tables, C initialisation, CRC tables. */
#ifndef LOAD_DATA_H
#define LOAD_DATA_H

#include <stdint.h>

/* A row of a copy table. A size of 0 says that `load` is an encoded load image. */
typedef struct {
    uint32_t load;
    uint32_t run;
    uint32_t size; /* bytes */
} COPY_RECORD;

/* What table(name) makes; the symbol `name` is its address. */
typedef struct {
    uint16_t record_size;
    uint16_t record_count;
    COPY_RECORD records[];
} COPY_TABLE;

/* Copies all that a table lists to where it runs. */
void copy_in(const COPY_TABLE *table);

/*
 * Unpacks one encoded load image. Its first byte is an index of the handler table; the routine there knows the rest.
 * In the linker's names for them: copy, zero_init, rle and lzss.
 */
void unpack(const void *image, void *to);

/* Initialises all variables of a program linked with --rom_model. */
void __QV_auto_init(void);

/* A row of a CRC table. */
typedef struct {
    uint64_t crc;
    uint32_t algorithm;
    uint32_t address; /* where the bytes are stored */
    uint32_t size;    /* bytes */
    uint32_t reserved;
} CRC_RECORD;

/* What crc_table(name) makes; the symbol `name` is its address. */
typedef struct {
    uint32_t record_size;
    uint32_t record_count;
    CRC_RECORD records[];
} CRC_TABLE;

/* The check value of `size` bytes by the algorithm of that number. */
uint64_t crc_compute(uint32_t algorithm, const void *bytes, uint32_t size);

/* The number of a table's records whose bytes have another check value. */
uint32_t crc_check(const CRC_TABLE *table);

#endif
