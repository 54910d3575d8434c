/*
 * Three pieces of code that run at the same address, one at a time. Each has a copy table; copy_in() brings the piece to
 * where it runs, as it is or unpacked, and a plain call enters it.
 */
#include "load_data.h"
#include "semihost.h"

extern const COPY_TABLE sums_table, words_table, squares_table;

int sums(int n);
int words(int n);
int squares(int n);

static const struct {
    const char *name;
    const COPY_TABLE *table;
    int (*call)(int);
} pieces[] = {{"sums", &sums_table, sums}, {"words", &words_table, words}, {"squares", &squares_table, squares}};

int main(void) {
    for (int round = 1; round <= 2; round++)
        for (unsigned i = 0; i < sizeof pieces / sizeof *pieces; i++) {
            copy_in(pieces[i].table);
            print(pieces[i].name);
            print(": ");
            print_number((unsigned)pieces[i].call(10 * round));
            print("\n");
        }
    /* The last one is still there: called by its name, which takes the linker's way from flash to RAM. */
    print("squares again: ");
    print_number((unsigned)squares(3));
    print("\n");
    leave(0);
}

void program_end(void) { leave(3); }
