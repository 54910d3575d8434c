// Object files made in memory for tests, and a handler that keeps what it is told.
#pragma once

#include <cstdio>
#include <cstdlib>
#include <deque>
#include <fstream>
#include <iterator>
#include <memory>
#include <string>
#include <vector>

#include "OBJEDIT04/elf/elf_file.h"
#include "OBJEDIT04/elf/elf_section.h"
#include "OBJEDIT04/elf/elf_section_table.h"
#include "OBJEDIT04/elf/elf_symbol.h"
#include "OBJEDIT04/elf/elf_symbol_table.h"
#include "OBJEDIT04/machine/reloc_type.h"
#include "OBJEDIT04/ofe/of_group_table.h"
#include "OBJEDIT04/ofe/of_reloc.h"
#include "OBJEDIT04/ofe/of_reloc_table.h"
#include "UTIL/file_handle_manager.h"

namespace ofe_test {

struct ERROR {
    OFE::OF_ERROR_CODE code;
    std::string text;
};
inline std::vector<ERROR> errors;

inline void keep_error(OFE::OBJECT_FILE* file, OFE::OF_ERROR_CODE code, const char* text) {
    errors.push_back({code, text});
    file->clear_error();
}

using FILE_PTR = std::unique_ptr<OFE::OBJECT_FILE>;
using BYTES = std::vector<uint8_t>;

// Each test begins with one: errors of an earlier test are forgotten.
inline FILE_PTR new_file(OFE::OF_ENDIAN endian = OFE::OF_ENDIAN_LITTLE) {
    errors.clear();
    FILE_PTR f(OFE::new_OBJECT_FILE(OFE::OF_FORMAT_ELF, OFE::OF_FORMAT_VER_ELF1,
                                    OFE::OF_MACHINE_ARM, keep_error, "memory.o"));
    f->set_machine_endian(endian);
    return f;
}

// The bytes are kept: an object file is a view of them.
inline FILE_PTR read_file(BYTES bytes) {
    static std::deque<BYTES> kept;
    const BYTES& b = kept.emplace_back(std::move(bytes));
    return FILE_PTR(
        OFE::new_OBJECT_FILE(b.data(), static_cast<unsigned>(b.size()), "input.o", keep_error));
}

class TEMP_FILE {
  public:
    TEMP_FILE() {
        char name[] = "/tmp/ofe_testXXXXXX";
        int fd = mkstemp(name);
        if (fd >= 0) close(fd);
        name_ = name;
    }
    ~TEMP_FILE() { std::remove(name_.c_str()); }
    const char* name() const { return name_.c_str(); }
    BYTES bytes() const {
        std::ifstream in(name_, std::ios::binary);
        return BYTES(std::istreambuf_iterator<char>(in), {});
    }

  private:
    static void close(int fd) { std::fclose(fdopen(fd, "w")); }
    std::string name_;
};

// The bytes of the file as saved; its data goes out with it.
inline BYTES saved(OFE::OBJECT_FILE& file) {
    TEMP_FILE temp;
    FHM_FILE* out = fhm_open(temp.name(), "wb+");
    int result = file.save_obj(out);
    fhm_close(out);
    return result == 0 ? temp.bytes() : BYTES();
}

inline OFE::ELF_SECTION* add_section(OFE::OBJECT_FILE& f, const char* name,
                                     const std::string& data) {
    auto* s = static_cast<OFE::ELF_SECTION*>(f.section_table()->new_section(name));
    if (!data.empty()) s->write_to_raw_data(data.data(), static_cast<unsigned>(data.size()), 0);
    return s;
}

inline OFE::OF_SYMBOL* add_symbol(OFE::OBJECT_FILE& f, const char* name, OFE::OF_SECTION* section,
                                  unsigned value, OFE::OF_SYM_BINDING binding,
                                  OFE::OF_SYM_TYPE type = OFE::OF_SYM_TYPE_NONE) {
    OFE::OF_SYMBOL* s = f.symbol_table()->new_symbol();
    s->set_name(name);
    s->set_section(section);
    s->set_value(value);
    s->set_binding(binding);
    s->set_type(type);
    return s;
}

inline void add_reloc(OFE::OF_SECTION* section, bool rela, unsigned offset, unsigned type,
                      OFE::OF_SYMBOL* symbol, int addend = 0) {
    OFE::OF_RELOC* r = section->new_reloc(rela);
    r->set_type(section->ofile()->machine_reloc_type(type));
    r->set_symbol(symbol);
    r->set_offset(offset);
    if (rela) r->set_addend(addend);
}

inline constexpr unsigned ABS32 = 2, THM_CALL = 10;

// A relocatable file with code, data, common and undefined symbols, both kinds of relocation, and a
// COMDAT group. Globals are added before locals, so that locking has something to order.
inline FILE_PTR sample(OFE::OF_ENDIAN endian) {
    FILE_PTR f = new_file(endian);
    f->set_flags(OFE::EF_ARM_EABI_VER5);
    OFE::ELF_SECTION* text =
        add_section(*f, ".text.main", std::string("\x00\xf0\x00\xf8\x70\x47\x00\xbf", 8));
    text->set_align(4);
    OFE::ELF_SECTION* data = add_section(*f, ".data", "abcdefgh");
    OFE::ELF_SECTION* once = add_section(*f, ".text.once", "once");
    OFE::ELF_SECTION* bss = static_cast<OFE::ELF_SECTION*>(f->section_table()->new_section(".bss"));
    bss->set_size(64);
    OFE::OF_SYMBOL* main =
        add_symbol(*f, "main", text, 1, OFE::OF_SYM_BINDING_GLOBAL, OFE::OF_SYM_TYPE_FUNCTION);
    OFE::OF_SYMBOL* ext = add_symbol(*f, "ext", nullptr, 0, OFE::OF_SYM_BINDING_GLOBAL);
    OFE::OF_SYMBOL* weak =
        add_symbol(*f, "once", once, 0, OFE::OF_SYM_BINDING_WEAK, OFE::OF_SYM_TYPE_FUNCTION);
    OFE::OF_SYMBOL* com =
        add_symbol(*f, "com", nullptr, 4, OFE::OF_SYM_BINDING_GLOBAL, OFE::OF_SYM_TYPE_OBJECT);
    com->set_kind(OFE::OF_SYM_KIND_COMMON);
    com->set_size(16);
    OFE::OF_SYMBOL* local =
        add_symbol(*f, "buffer", bss, 8, OFE::OF_SYM_BINDING_LOCAL, OFE::OF_SYM_TYPE_OBJECT);
    add_reloc(text, false, 0, THM_CALL, ext);
    add_reloc(data, true, 4, ABS32, local, -4);
    add_reloc(data, true, 0, ABS32, main, 12);
    OFE::OF_GROUP_TABLE* group = f->section_table()->new_group("once");
    group->set_symbol(weak);
    group->set_comdat_flag();
    group->add_member(once);
    return f;
}

} // namespace ofe_test
