/* Image: three bytes of 0, the size as a word. The word is aligned. */
#include "load_data.h"

void __QV_zero_init(const uint8_t *image, uint8_t *to) {
    for (uint32_t left = *(const uint32_t *)(image + 3); left != 0; left--) *to++ = 0;
}
