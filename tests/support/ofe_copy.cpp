// Reads object files with the object file layer and writes them again.
//
//     ofe_copy IN OUT [--twice]
//
// IN is an object or an archive. Every object is looked at as the linker would (each section,
// symbol, relocation and group becomes an object), walked through the four states and saved; the
// members of an archive are saved straight into the new archive, one behind the other, with their
// old headers. With --twice each one is opened again for editing and saved a second time to the
// same place. Whatever the layer reports goes to standard error and makes the status 1.
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <string>

#include "OBJEDIT04/ofe/object_file.h"
#include "OBJEDIT04/ofe/of_group_table.h"
#include "OBJEDIT04/ofe/of_reloc.h"
#include "OBJEDIT04/ofe/of_reloc_table.h"
#include "OBJEDIT04/ofe/of_section.h"
#include "OBJEDIT04/ofe/of_section_table.h"
#include "OBJEDIT04/ofe/of_symbol.h"
#include "OBJEDIT04/ofe/of_symbol_table.h"
#include "UTIL/file_handle_manager.h"

using namespace OFE;

namespace {

constexpr size_t AR_MAGIC = 8, AR_HEADER = 60, AR_SIZE_AT = 48, AR_SIZE_LEN = 10;

bool failed = false;
bool twice = false;

void report(OBJECT_FILE* file, OF_ERROR_CODE code, const char* text) {
    std::fprintf(stderr, "%s: %s: %s\n", file->display_name(), OBJECT_FILE::error_code_name(code),
                 text);
    failed = true;
    file->clear_error();
}

bool fail(const char* name, const char* text) {
    std::fprintf(stderr, "%s: %s\n", name, text);
    failed = true;
    return false;
}

// Makes an object of everything in the file; the number of relocations that find their symbol.
size_t look_at_all(OBJECT_FILE& file) {
    size_t found = 0;
    OF_SECTION_TABLE* sections = file.section_table();
    OF_SYMBOL_TABLE* symbols = file.symbol_table();
    for (unsigned i = 0; symbols && i < symbols->symnum(); i = symbols->next_symbol_id(i))
        if (OF_SYMBOL* symbol = symbols->symbol(i)) symbol->section();
    sections->resolve_group_refs();
    for (unsigned i = 0; i < sections->scnnum(); ++i) {
        OF_SECTION* section = sections->section(i);
        for (OF_RELOC* reloc : section->all_relocs()) found += reloc->symbol() != nullptr;
        if (OF_GROUP_TABLE* group = section->group_api()) group->symbol();
    }
    return found;
}

// Saves the file at the position of `out`, and leaves `out` behind it.
bool save_at_end(OBJECT_FILE& file, FHM_FILE* out) {
    for (OF_STATE state : {OF_STATE_LOCKED, OF_STATE_FORMATTED})
        if (file.set_state(state) != 0)
            return fail(file.display_name(), OF_STATE_MACHINE::state_name(state));
    if (file.save_obj(out) != 0) return fail(file.display_name(), "not saved");
    if (twice) {
        OF_FILE_HANDLE handle = file.handle();
        if (file.reopen_for_editing() != 0 || file.save(handle) != 0)
            return fail(file.display_name(), "not saved a second time");
    }
    return std::fseek(out->fp(), static_cast<long>(file.handle().offset) + file.handle().size,
                      SEEK_SET) == 0;
}

bool copy_object(const uint8_t* bytes, size_t size, const char* name, FHM_FILE* out) {
    std::unique_ptr<OBJECT_FILE> file(
        new_OBJECT_FILE(bytes, static_cast<unsigned>(size), name, report));
    if (!file) return fail(name, "not read as an object file");
    look_at_all(*file);
    return save_at_end(*file, out);
}

// A member's header with another size.
void write_header(FILE* to, const uint8_t* header, size_t size) {
    char line[AR_HEADER + 1], digits[24];
    std::memcpy(line, header, AR_HEADER);
    std::snprintf(digits, sizeof digits, "%-10zu", size);
    std::memcpy(line + AR_SIZE_AT, digits, AR_SIZE_LEN);
    std::fwrite(line, 1, AR_HEADER, to);
}

bool copy_member(const uint8_t* header, const uint8_t* data, size_t size, FHM_FILE* out) {
    const std::string name(reinterpret_cast<const char*>(header), 16);
    FILE* fp = out->fp();
    const long start = std::ftell(fp);
    write_header(fp, header, size);
    const bool object = size >= 4 && std::memcmp(data, "\177ELF", 4) == 0;
    if (!object) {
        std::fwrite(data, 1, size, fp);
    } else {
        std::fflush(fp);
        if (!copy_object(data, size, name.c_str(), out)) return false;
    }
    fp = out->fp();
    const long end = std::ftell(fp);
    std::fseek(fp, start, SEEK_SET);
    write_header(fp, header, static_cast<size_t>(end - start) - AR_HEADER);
    std::fseek(fp, end, SEEK_SET);
    if (end & 1) std::fputc('\n', fp);
    return std::fflush(fp) == 0;
}

bool copy_archive(const uint8_t* bytes, size_t size, FHM_FILE* out) {
    std::fwrite(bytes, 1, AR_MAGIC, out->fp());
    for (size_t at = AR_MAGIC; at + AR_HEADER <= size;) {
        const uint8_t* header = bytes + at;
        const size_t length = std::strtoul(
            std::string(reinterpret_cast<const char*>(header) + AR_SIZE_AT, AR_SIZE_LEN).c_str(),
            nullptr, 10);
        at += AR_HEADER;
        if (length > size - at) return fail("archive", "cut short");
        const bool directory = header[0] == '/' && header[1] == ' ';
        if (!directory && !copy_member(header, bytes + at, length, out)) return false;
        at += length + (length & 1);
    }
    return true;
}

} // namespace

int main(int argc, char** argv) {
    if (argc < 3) return fail("usage", "ofe_copy IN OUT [--twice]") ? 0 : 1;
    twice = argc > 3 && std::strcmp(argv[3], "--twice") == 0;
    FHM_FILE* in = fhm_open_input(argv[1]);
    FHM_FILE* out = fhm_open(argv[2], "wb+");
    if (!in || !out) return fail(in ? argv[2] : argv[1], "cannot be opened") ? 0 : 1;
    auto bytes = in->contents();
    const bool archive =
        bytes.size() >= AR_MAGIC && std::memcmp(bytes.data(), "!<arch>\n", AR_MAGIC) == 0;
    const bool good = archive ? copy_archive(bytes.data(), bytes.size(), out)
                              : copy_object(bytes.data(), bytes.size(), argv[1], out);
    if (fhm_close(out) != 0) failed = true;
    return good && !failed ? 0 : 1;
}
