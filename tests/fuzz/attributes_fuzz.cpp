// The reader of build attributes on any bytes: they become the attributes section of an otherwise
// sound ELF file, in both byte orders. What was read is written and read again, and must then say
// the same.
#include <cstring>
#include <memory>
#include <string>
#include <vector>

#include "OBJEDIT04/attributes/build_attr_table.h"
#include "OBJEDIT04/elf/elf_file.h"
#include "OBJEDIT04/machine/arm_machine_db.h"
#include "OBJEDIT04/ofe/of_section.h"
#include "OBJEDIT04/ofe/of_section_table.h"
#include "UTIL/data_map.h"
#include "fuzz.h"

using namespace OFE;

namespace {

using FILE_PTR = std::unique_ptr<OBJECT_FILE>;

void on_error(OBJECT_FILE* file, OF_ERROR_CODE, const char* text) {
    use(std::strlen(text));
    file->clear_error();
}

// An ELF file with three sections: the null section, the attributes, and the names.
std::vector<uint8_t> wrap(const uint8_t* data, size_t size, bool big) {
    static constexpr char names[] = "\0.ARM.attributes\0.shstrtab";
    static constexpr unsigned ATTRIBUTES_NAME = 1, NAMES_NAME = 17, SECTIONS = 3;
    const auto names_at = static_cast<unsigned>(ELF_EHSIZE + size);
    const unsigned headers_at = (names_at + unsigned{sizeof names} + 3) & ~3u;
    std::vector<uint8_t> file(headers_at + SECTIONS * ELF_SHENTSIZE);
    std::memcpy(file.data(), big ? "\177ELF\1\2\1" : "\177ELF\1\1\1", 7);
    const struct {
        unsigned at, value;
    } words[] = {{20, 1}, {32, headers_at}, {36, 0x5000000}},
      halves[] = {{16, 1},        {18, 40},          {40, ELF_EHSIZE}, {46, ELF_SHENTSIZE},
                  {48, SECTIONS}, {50, SECTIONS - 1}};
    for (const auto& w : words) write_u32(&file[w.at], w.value, big);
    for (const auto& h : halves) write_u16(&file[h.at], static_cast<uint16_t>(h.value), big);
    if (size != 0) std::memcpy(&file[ELF_EHSIZE], data, size);
    std::memcpy(&file[names_at], names, sizeof names);
    auto header = [&](unsigned i, unsigned name, unsigned type, unsigned offset, size_t length) {
        uint8_t* h = &file[headers_at + i * ELF_SHENTSIZE];
        write_u32(h, name, big);
        write_u32(h + 4, type, big);
        write_u32(h + 16, offset, big);
        write_u32(h + 20, static_cast<uint32_t>(length), big);
        write_u32(h + 32, 1, big);
    };
    header(1, ATTRIBUTES_NAME, SHT_ATTRIBUTES, ELF_EHSIZE, size);
    header(2, NAMES_NAME, SHT_STRTAB, names_at, sizeof names);
    return file;
}

FILE_PTR read(const std::vector<uint8_t>& bytes) {
    return FILE_PTR(
        new_OBJECT_FILE(bytes.data(), static_cast<unsigned>(bytes.size()), nullptr, on_error));
}

// All that the table says, as text.
std::string describe(OF_BUILD_ATTR_TABLE* table) {
    std::string text;
    for (unsigned v = 0; v < table->vscn_num(); ++v) {
        OFBA_VENDOR_SCN* vendor = table->vscn(v);
        text += std::string("vendor ") + vendor->name() + "\n";
        for (unsigned l = 0; l < vendor->attrlist_num(); ++l) {
            OFBA_ATTR_LIST* list = vendor->attrlist(l);
            text += "list " + std::to_string(list->scope());
            for (unsigned i = 0; i < list->ids().size(); ++i) {
                text += " " + std::to_string(list->ids()[i]);
                use(list->section(i) != nullptr);
                use(list->symbol(i) != nullptr);
            }
            text += "\n";
            for (const OFBA_ATTR& attr : list->attrs()) {
                REQUIRE(attr.tag && attr.val.str && list->attr_tag(attr.tag->number));
                if (!attr.is_empty())
                    text += std::to_string(attr.tag->number) + " " + std::to_string(attr.val.uval) +
                            " " + attr.val.str + "\n";
            }
        }
    }
    return text;
}

void walk(const uint8_t* data, size_t size, bool big) {
    const std::vector<uint8_t> bytes = wrap(data, size, big);
    FILE_PTR file = read(bytes);
    REQUIRE(file);
    for (unsigned tag = 0; tag < 80; ++tag)
        use(file->abi_battr_uval(tag) + std::strlen(file->abi_battr_str(tag)));
    use(std::strlen(file->producer_version_str()));
    ARM_MACHINE_DB* arm = ARM_MACHINE_DB::of(file.get());
    REQUIRE(arm);
    use(arm->find_isa_version() + arm->find_isa_profile() + arm->be_enc());
    OF_BUILD_ATTR_TABLE* table = file->build_attributes();
    if (!table) return;
    const std::string before = describe(table);
    if (table->load() != 0) return; // parts of it were given up
    file->section_table()->section(1)->writable_bytes(0, 0);
    REQUIRE(table->save() == 0);
    const OF_BYTES written = file->section_table()->section(1)->bytes();
    const std::vector<uint8_t> again_bytes = wrap(written.data, written.size, big);
    FILE_PTR again = read(again_bytes);
    REQUIRE(again);
    OF_BUILD_ATTR_TABLE* again_table = again->build_attributes();
    const std::string after = again_table ? describe(again_table) : "";
    if (before != after)
        std::fprintf(stderr, "--- before\n%s--- after\n%s", before.c_str(), after.c_str());
    REQUIRE(before == after);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    walk(data, size, false);
    walk(data, size, true);
    return 0;
}
