// Damaged files: each is refused or read with an error; nothing crashes, hangs or is believed.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <random>

#include "../ofe_support.h"
#include "OBJEDIT04/elf/elf_symalias_table.h"
#include "OBJEDIT04/elf/segments/elf_segment.h"
#include "OBJEDIT04/elf/segments/elf_segment_table.h"
#include "UTIL/file_handle_manager.h"

using namespace OFE;
using namespace ofe_test;

namespace {

// Everything a linker asks of an input, once through objects and once through raw records.
void use_all(OBJECT_FILE& f) {
    OF_SECTION_TABLE* t = f.section_table();
    OF_SYMBOL_TABLE* symbols = f.symbol_table();
    size_t total = 0;
    for (unsigned i = 0; symbols && i < symbols->symnum(); ++i) {
        OF_RAW_SYMBOL raw;
        symbols->raw_symbol(i, raw);
        total += std::strlen(raw.name);
        OF_SYMBOL* s = symbols->symbol(i);
        ASSERT_TRUE(s);
        if (OF_SECTION* section = s->section()) total += std::strlen(section->name());
    }
    for (unsigned i = 0; i < t->scnnum(); ++i) {
        OF_RAW_SECTION raw;
        ASSERT_TRUE(t->raw_section(i, raw));
        for (unsigned k = 0; k < t->raw_reloc_table_num(i); ++k) {
            OF_RAW_RELOCS relocs = t->raw_relocs(i, k);
            for (unsigned r = 0; r < relocs.size(); ++r) {
                OF_RAW_SYMBOL sym;
                if (relocs.symbols() && relocs.symbols()->raw_symbol(relocs[r].sym_id, sym))
                    total += sym.value;
            }
        }
        OF_GROUP_TABLE* of = t->raw_group(i);
        for (unsigned m = 0; of && m < of->member_num(); ++m) ASSERT_TRUE(of->member(m));
        OF_SECTION* s = t->section(i);
        ASSERT_TRUE(s);
        OF_BYTES b = s->bytes();
        for (size_t k = 0; k < b.size; ++k) total += b.data[k];
        for (OF_RELOC* r : s->all_relocs())
            if (OF_SYMBOL* sym = r->symbol()) total += sym->value();
        s->find_symbol();
        total += s->load_addr();
        if (OF_GROUP_TABLE* group = s->group_api()) total += std::strlen(group->signature_name());
    }
    elf_api(&f)->segment_table()->load_all_segments_into_mem();
    volatile size_t sink = total;
    (void)sink;
}

enum FIELD { EHDR, SHDR }; // of the header, or of the section that a row names

struct ROW {
    const char* what;
    FIELD where;
    const char* section;
    unsigned offset; // into the record
    unsigned width;
    uint32_t value;
    bool refused; // else it loads, and using it reports an error
    const char* text;
};

const ROW ROWS[] = {
    {"class 64", EHDR, "", 4, 1, 2, true, "is not supported"},
    {"no byte order", EHDR, "", 5, 1, 7, true, "is not supported"},
    {"headers behind the end", EHDR, "", 32, 4, 0xFFFFFFF0, true, "beyond the end of the file"},
    {"many headers", EHDR, "", 48, 2, 0xFEFF, true, "beyond the end of the file"},
    {"count in section 0, which is huge", EHDR, "", 48, 2, 0, false, ""},
    {"small headers", EHDR, "", 46, 2, 8, true, "is too small"},
    {"names in no section", EHDR, "", 50, 2, 0x700, true, "names of the sections"},
    {"names in a program section", EHDR, "", 50, 2, 2, true, "names of the sections"},
    {"program headers behind the end", EHDR, "", 44, 2, 3, true, "program headers"},
    {"name outside of the pool", SHDR, ".data", 0, 4, 0x7FFFFFFF, true,
     "outside of the string table"},
    {"contents behind the end", SHDR, ".data", 16, 4, 0xFFFFFFF8, true,
     "beyond the end of the file"},
    {"size that wraps", SHDR, ".data", 20, 4, 0xFFFFFFFF, true, "beyond the end of the file"},
    {"odd alignment", SHDR, ".data", 32, 4, 12, true, "not a power of 2"},
    {"symbols without strings", SHDR, ".symtab", 24, 4, 0x1000, true, "sh_link"},
    {"small symbols", SHDR, ".symtab", 36, 4, 4, true, "too small"},
    {"strings in a program section", SHDR, ".symtab", 24, 4, 2, false,
     "outside of the string table"},
    {"relocations of no section", SHDR, ".rel.text.main", 28, 4, 0x1000, true, "sh_info"},
    {"relocations of themselves", SHDR, ".rel.text.main", 28, 4, 7, true, "sh_info"},
    {"relocations with small entries", SHDR, ".rela.data", 36, 4, 8, true, "too small"},
    {"a group without symbols", SHDR, "once", 24, 4, 0x1000, true, "sh_link"},
};

// The bytes of the sample, and where its section headers are.
struct VICTIM {
    BYTES bytes = saved(*sample(OF_ENDIAN_LITTLE));
    unsigned shoff = read_u32(&bytes[32], false);

    unsigned header_of(const char* name) {
        FILE_PTR f = read_file(bytes);
        return shoff + f->section_table()->section_name(name, 0)->id() * ELF_SHENTSIZE;
    }
    void put(unsigned at, unsigned width, uint32_t value) {
        for (unsigned i = 0; i < width; ++i)
            bytes.at(at + i) = static_cast<uint8_t>(value >> (8 * i));
    }
};

bool reported(const char* text) {
    return std::any_of(errors.begin(), errors.end(), [&](const ERROR& e) {
        return (e.code == OF_ERROR_CORRUPT || e.code == OF_ERROR_FORMAT) &&
               e.text.find(text) != std::string::npos;
    });
}

} // namespace

TEST(hostile, each_bad_field_is_refused_or_reported) {
    for (const ROW& row : ROWS) {
        VICTIM v;
        if (row.where == EHDR)
            v.put(row.offset, row.width, row.value);
        else
            v.put(v.header_of(row.section) + row.offset, row.width, row.value);
        errors.clear();
        FILE_PTR f = read_file(v.bytes);
        EXPECT_EQ(f == nullptr, row.refused) << row.what;
        if (f) use_all(*f);
        EXPECT_TRUE(!*row.text || reported(row.text))
            << row.what << ": " << (errors.empty() ? "" : errors[0].text);
    }
}

TEST(hostile, a_file_cut_anywhere_is_refused) {
    VICTIM v;
    for (size_t size = 24; size < v.bytes.size(); ++size) {
        BYTES cut(v.bytes.begin(), v.bytes.begin() + static_cast<long>(size));
        errors.clear();
        EXPECT_FALSE(read_file(cut)) << size;
        EXPECT_FALSE(errors.empty()) << size;
    }
}

TEST(hostile, symbols_relocations_and_groups_that_point_nowhere_are_reported) {
    struct {
        const char* section;
        unsigned at, width;
        uint32_t value;
        const char* text;
    } const CASES[] = {
        {".symtab", 16 + 14, 2, 0x1234, "refers to section 4660, which does not exist"},
        {".symtab", 16 + 14, 2, 0xFFFF, "which does not exist"},
        {".symtab", 16 + 14, 2, 0xFFEC, "the unknown special section index 0xffec"},
        {".symtab", 16 + 12, 1, 0xA0, "the binding of symbol 1 in \".symtab\" is 0xa"},
        {".symtab", 16, 4, 0x10000, "outside of the string table"},
        {".rel.text.main", 5, 3, 0x4321, "refers to symbol 17185, which does not exist"},
        {"once", 4, 4, 0x1000, "has section 4096 as a member"},
        {"once", 4, 4, 1, "has section 1 as a member"}, // itself
        {"once", 4, 4, 0, "has section 0 as a member"},
    };
    for (auto& c : CASES) {
        VICTIM v;
        unsigned contents = read_u32(&v.bytes[v.header_of(c.section) + 16], false);
        v.put(contents + c.at, c.width, c.value);
        errors.clear();
        FILE_PTR f = read_file(v.bytes);
        ASSERT_TRUE(f) << c.section;
        use_all(*f);
        EXPECT_TRUE(reported(c.text))
            << c.section << ": " << (errors.empty() ? "" : errors[0].text);
    }
}

TEST(hostile, a_common_symbol_is_aligned_to_a_power_of_2) {
    for (auto [align, is_good] :
         {std::pair{0u, true}, {1u, true}, {0x80000000u, true}, {12u, false}}) {
        VICTIM v;
        unsigned symbol = read_u32(&v.bytes[v.header_of(".symtab") + 16], false) + ELF_SYMSIZE;
        v.put(symbol + 4, 4, align);
        v.put(symbol + 14, 2, SHN_COMMON);
        errors.clear();
        FILE_PTR f = read_file(v.bytes);
        ASSERT_TRUE(f);
        OF_RAW_SYMBOL raw;
        f->symbol_table()->raw_symbol(1, raw);
        EXPECT_NE(reported("the alignment of the common symbol 1"), is_good) << align;
    }
}

TEST(hostile, a_section_in_two_groups_is_reported) {
    FILE_PTR f = sample(OF_ENDIAN_LITTLE);
    OF_GROUP_TABLE* second = f->section_table()->new_group("again");
    second->set_symbol(f->symbol_table()->symbol_name("main", 0));
    second->add_member(f->section_table()->section_name(".text.once", 0));
    BYTES b = saved(*f);
    errors.clear();
    FILE_PTR g = read_file(b);
    ASSERT_TRUE(g);
    use_all(*g);
    EXPECT_TRUE(reported("(\"again\") has section"));
}

// Single bytes, words and pairs of words changed at random over the whole file, many times, from a
// fixed seed: the reader may refuse or report, and a file it accepts can be walked and written.
TEST(hostile, random_changes_never_break_the_reader) {
    const VICTIM good;
    std::mt19937 random(20240607);
    const uint32_t words[] = {0,          1,          2,          0xFF,   0x7FFFFFFF,
                              0x80000000, 0xFFFFFFFF, 0xFFFFFFF0, 0x10000};
    unsigned accepted = 0;
    for (int round = 0; round < 6000; ++round) {
        BYTES b = good.bytes;
        bool headers = round % 2;
        for (unsigned n = 1 + random() % 3; n > 0; --n) {
            size_t start = headers ? good.shoff : 0;
            size_t at = start + random() % (b.size() - start);
            if (random() % 2) {
                b[at] = static_cast<uint8_t>(random());
            } else {
                at &= ~size_t{3};
                write_u32(&b[at], words[random() % std::size(words)], false);
            }
        }
        errors.clear();
        FILE_PTR f = read_file(b);
        if (!f) continue;
        use_all(*f);
        if (!errors.empty()) continue;
        ++accepted;
        f->set_state(OF_STATE_LOCKED);
    }
    EXPECT_GT(accepted, 100u);
}
