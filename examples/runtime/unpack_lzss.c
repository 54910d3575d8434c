/*
 * Image: groups of a flag byte and up to eight items, from the flags' lowest bit up. A set bit is a byte that stands for
 * itself. A clear one is a copy of what was unpacked before: two bytes hold how far back in their upper twelve bits, less
 * 1, and in the lower four the length, less 3. Fifteen there means that the length, less 18, follows in seven bits, and
 * if the eighth is set in eight more. A distance of 4096 is the end.
 */
#include "load_data.h"

void __QV_decompress_lzss(const uint8_t *image, uint8_t *to) {
    for (;;) {
        unsigned flags = *image++;
        for (int item = 0; item < 8; item++, flags >>= 1) {
            if (flags & 1) {
                *to++ = *image++;
                continue;
            }
            const unsigned pair = (unsigned)image[0] << 8 | image[1];
            const unsigned distance = (pair >> 4) + 1;
            unsigned length = (pair & 15) + 3;
            image += 2;
            if (distance == 4096) return;
            if (length == 18) {
                const unsigned low = *image++;
                length += low & 127;
                if (low & 128) length += (unsigned)*image++ << 7;
            }
            for (const uint8_t *from = to - distance; length != 0; length--) *to++ = *from++;
        }
    }
}
