/*
 * The routines that unpack load images. The linker pulls those that the program's images need, by their names, and puts
 * their addresses into the handler table. Each gets the image without its first byte, which was the table's index.
 */
#include "load_data.h"

typedef void (*HANDLER)(const uint8_t *image, uint8_t *to);

extern const HANDLER __QV_Handler_Table_Base[] __attribute__((weak));

void unpack(const void *image, void *to) {
    const uint8_t *bytes = image;
    __QV_Handler_Table_Base[*bytes](bytes + 1, to);
}

void copy_in(const COPY_TABLE *table) {
    const COPY_RECORD *record = table->records;
    for (unsigned i = 0; i < table->record_count; i++, record++) {
        const uint8_t *from = (const uint8_t *)record->load;
        uint8_t *to = (uint8_t *)record->run;
        if (record->size == 0) unpack(from, to);
        for (uint32_t left = record->size; left != 0; left--) *to++ = *from++;
    }
}
