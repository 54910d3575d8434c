/*
 * The program computes the check values of its own sections again and compares them with those that the linker stored.
 * A bit of the image that changes on its way to the device, or there, shows.
 */
#include "load_data.h"
#include "semihost.h"

extern const CRC_TABLE algorithms_table, code_table, parts_table, overlay_table;

static unsigned failures;

static void check(const char *what, const CRC_TABLE *table) {
    const uint32_t wrong = crc_check(table);
    print(what);
    print(": ");
    print_number(table->record_count);
    print(" checked, ");
    print_number(wrong);
    print(" wrong\n");
    failures += wrong;
}

int main(void) {
    check("every algorithm", &algorithms_table);
    check("code and constants", &code_table);
    check("parts of a GROUP", &parts_table);
    check("a member of a UNION, where it is stored", &overlay_table);
    leave(failures != 0);
}

void program_end(void) { leave(3); }
