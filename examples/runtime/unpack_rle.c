/*
 * Image: a delimiter, then bytes that stand for themselves and, after each delimiter, a run:
 *   n from 1 to 3     the delimiter itself, n times
 *   n from 4 to 255   and a byte: that byte, n times
 *   0, h, l           and a byte: (h << 8 | l) times, where h is not 0
 *   0, 0, x, h, l     and a byte: (x << 16 | h << 8 | l) times, where x is not 0
 *   0, 0, 0           the end
 */
#include "load_data.h"

void __QV_decompress_rle24(const uint8_t *image, uint8_t *to) {
    const uint8_t delimiter = *image++;
    for (;;) {
        uint8_t value = *image++;
        uint32_t length = 1;
        if (value == delimiter) {
            length = *image++;
            if (length == 0) {
                length = *image++;
                if (length == 0) {
                    length = *image++;
                    if (length == 0) return;
                    length = length << 8 | *image++;
                }
                length = length << 8 | *image++;
            }
            if (length >= 4) value = *image++;
        }
        while (length-- != 0) *to++ = value;
    }
}
