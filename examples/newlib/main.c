/* What a program that uses the C library needs of a linker: members pulled on demand, a heap, errno and friends. */
#include <math.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

static int by_length(const void *a, const void *b) {
    const char *const *x = a, *const *y = b;
    size_t m = strlen(*x), n = strlen(*y);
    return m < n ? -1 : m > n ? 1 : strcmp(*x, *y);
}

int main(void) {
    const char *words[] = {"linker", "map", "section", "ROM", "symbol", "RAM"};
    const size_t count = sizeof words / sizeof words[0];
    qsort(words, count, sizeof words[0], by_length);
    for (size_t i = 0; i < count; i++) printf("%u %s\n", (unsigned)i, words[i]);

    char *end;
    const double value = strtod("2.25e2xyz", &end);
    printf("strtod: %.3f, rest \"%s\", root %.6f\n", value, end, sqrt(value));
    printf("64-bit: %llu\n", 0x123456789abcdefULL / 1000007ULL);

    char *copy = malloc(100);
    if (!copy) return 1;
    snprintf(copy, 100, "from the heap: %s, %5.2f, %-6d|", "text", 3.14159, -42);
    puts(copy);
    free(copy);
    return 0;
}
