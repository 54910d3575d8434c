/*
 * The check values of crc_table(), bit by bit: small and slow. A program that checks much memory uses one algorithm and
 * makes a table for it.
 */
#include "load_data.h"

typedef struct {
    uint8_t order; /* bits */
    uint8_t reflected;
    uint8_t no_zeros; /* data enters at the low end, and no zeros follow it */
    uint8_t word_pairs; /* bytes come in pairs of words, the second word first, each from its highest byte down */
    uint64_t polynomial;
    uint64_t initial;
    uint64_t final_xor;
} ALGORITHM;

/* By the numbers that the linker writes into its records. */
static const ALGORITHM algorithms[] = {
    {32, 0, 0, 0, 0x04C11DB7, 0, 0},                   /* CRC32_PRIME */
    {16, 0, 0, 0, 0x1021, 0, 0},                       /* CRC16_802_15_4 */
    {16, 0, 0, 0, 0x8005, 0, 0},                       /* CRC16_ALT */
    {8, 0, 0, 0, 0x07, 0, 0},                          /* CRC8_PRIME */
    {16, 0, 0, 0, 0x1021, 0xFFFF, 0},                  /* CRC16_CCITT */
    {16, 1, 0, 0, 0x8408, 0, 0},                       /* XMODEM */
    {16, 1, 0, 0, 0x8005, 0, 0},                       /* ARC */
    {16, 0, 1, 0, 0x1021, 0, 0},                       /* CRC16_IAR */
    {32, 0, 1, 0, 0x04C11DB7, 0, 0},                   /* CRC32_IAR */
    {32, 1, 0, 0, 0x04C11DB7, 0xFFFFFFFF, 0xFFFFFFFF}, /* CRC32 */
    {64, 0, 0, 1, 0x1B, 0, 0},                         /* TRINITY_CRC64_ISO */
    {32, 0, 0, 0, 0x1EDC6F41, 0, 0},                   /* CRC32_C */
    {24, 0, 0, 0, 0x5D6DCB, 0, 0},                     /* CRC24_FLEXRAY */
};

static uint64_t take_byte(const ALGORITHM *a, uint64_t crc, uint8_t byte) {
    const uint64_t top = (uint64_t)1 << (a->order - 1);
    for (int bit = 0; bit < 8; bit++) {
        const unsigned in = byte >> (a->reflected ? bit : 7 - bit) & 1;
        const unsigned out = (crc & top) != 0;
        crc = crc << 1 | (a->no_zeros ? in : 0);
        if (a->no_zeros ? out : out ^ in) crc ^= a->polynomial;
    }
    return crc;
}

static uint64_t reflected(uint64_t value, unsigned bits) {
    uint64_t result = 0;
    for (; bits != 0; bits--, value >>= 1) result = result << 1 | (value & 1);
    return result;
}

/* The byte that enters as number i; behind the end there are zeros. */
static uint8_t byte_at(const ALGORITHM *a, const uint8_t *bytes, uint32_t size, uint32_t i) {
#ifdef __ARMEB__
    if (a->word_pairs) i ^= 4;
#else
    if (a->word_pairs) i ^= 7;
#endif
    return i < size ? bytes[i] : 0;
}

uint64_t crc_compute(uint32_t algorithm, const void *bytes, uint32_t size) {
    const ALGORITHM *a = &algorithms[algorithm];
    const uint32_t count = a->word_pairs ? (size + 7) & ~(uint32_t)7 : size;
    uint64_t crc = a->initial;
    for (uint32_t i = 0; i < count; i++) crc = take_byte(a, crc, byte_at(a, bytes, size, i));
    if (a->reflected) crc = reflected(crc, a->order);
    crc ^= a->final_xor;
    if (a->order < 64) crc &= ((uint64_t)1 << a->order) - 1;
    return a->word_pairs ? crc << 32 | crc >> 32 : crc;
}

uint32_t crc_check(const CRC_TABLE *table) {
    uint32_t wrong = 0;
    for (uint32_t i = 0; i < table->record_count; i++) {
        const CRC_RECORD *r = &table->records[i];
        if (r->size != 0 && crc_compute(r->algorithm, (const void *)r->address, r->size) != r->crc) wrong++;
    }
    return wrong;
}
