/* Image: three bytes of 0, the size as a word, the bytes. The word is aligned. */
#include "load_data.h"

void __QV_decompress_none(const uint8_t *image, uint8_t *to) {
    const uint8_t *from = image + 7;
    for (uint32_t left = *(const uint32_t *)(image + 3); left != 0; left--) *to++ = *from++;
}
