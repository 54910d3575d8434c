// The module summary: how much code and data each object file has in memory, grouped by directory
// or library.
#include <algorithm>
#include <cstring>
#include <memory>
#include <unordered_map>

#include "ELFLNK/build/build.h"
#include "ELFLNK/file/archive_file.h"
#include "ELFLNK/file/file_manager.h"
#include "ELFLNK/file/obj_file.h"
#include "ELFLNK/locator/locator.h"
#include "ELFLNK/mapfile/map_file.h"
#include "ELFLNK/memmap/memory_map.h"
#include "ELFLNK/object/collection.h"
#include "ELFLNK/object/section.h"
#include "ELFLNK/object/symbol_object.h"
#include "ELFLNK/target/abi.h"
#include "ELFLNK/target/target.h"
#include "OBJEDIT04/ofe/object_file.h"
#include "OBJEDIT04/ofe/of_symbol.h"
#include "UTIL/filename.h"
#include "UTIL/strformat.h"
#include "UTIL/text_table.h"

namespace {

bool output_is_elf() {
    return output_OF_FILE()->format() == OFE::OF_FORMAT_ELF;
}

struct MODULE_INFO {
    uint64_t code = 0;
    uint64_t ro_data = 0;
    uint64_t rw_data = 0;
    uint64_t init_data = 0;
    uint64_t uninit_data = 0;
    bool is_library_member = false;
    std::string group; // directory or library
    std::string name;

    uint64_t total() const { return code + ro_data + rw_data + init_data + uninit_data; }

    void add(const MODULE_INFO& other) {
        code += other.code;
        ro_data += other.ro_data;
        rw_data += other.rw_data;
        init_data += other.init_data;
        uninit_data += other.uninit_data;
    }

    void clear_sums() { code = ro_data = rw_data = init_data = uninit_data = 0; }

    void process_object(LINKER_OBJECT* object) {
        if (!object->has_attr(PA_ALLOCATED)) return;
        uint64_t size = object->size();
        if (object->has_attr(PA_EXEC))
            code += size;
        else if (output_is_elf())
            (object->has_attr(PA_WRITE) ? rw_data : ro_data) += size;
        else
            (object->has_attr(PA_HAS_DATA) ? init_data : uninit_data) += size;
    }

    void set_file(const OBJ_FILE* file) {
        if (file->archive() != nullptr) {
            group = file->archive()->name();
            name = file->member_name();
            is_library_member = true;
            return;
        }
        fn_split(file->name(), group, name);
        if (group.empty()) group = "<current directory>";
    }
};

// Files of directories before members of libraries, then by group; in a group the largest first.
bool module_less(const MODULE_INFO* a, const MODULE_INFO* b) {
    if (a->group.empty() != b->group.empty()) return !a->group.empty();
    if (a->is_library_member != b->is_library_member) return !a->is_library_member;
    if (a->group != b->group) return a->group < b->group;
    if (a->total() != b->total()) return a->total() > b->total();
    return a->name < b->name;
}

class GENERATE_MAP_MODULES {
  public:
    void operator()() {
        mputs("\nMODULE SUMMARY\n\n");
        linker_generated_.name = "Linker Generated:";
        stack_.name = "Stack:";
        heap_.name = "Heap:";
        grand_total_.name = "Grand Total:";
        create_module_set();
        generate_table_header();
        generate_table_contents();
        for (MODULE_INFO* info : {&heap_, &stack_, &linker_generated_})
            write_module_info(*info, false);
        table_.set_row_as_border(row_++);
        write_module_info(grand_total_, true);
        mprint_table(table_);
    }

  private:
    void create_module_set() {
        for (MEMORY_RANGE* range : *memory_map) {
            if (range->is_hidden()) continue;
            for (LOCATOR* locator : range->contents()) count_object(locator->object());
        }
        std::stable_sort(modules_.begin(), modules_.end(), [](const auto& a, const auto& b) {
            return module_less(a.get(), b.get());
        });
    }

    void count_object(LINKER_OBJECT* object) {
        if (object == nullptr) return;
        const char* name = object->name();
        if (strcmp(name, Target->abi()->sysmem_section_name()) == 0)
            return count_reserved(heap_, object);
        if (strcmp(name, Target->abi()->stack_section_name()) == 0)
            return count_reserved(stack_, object);
        const COLLECTION* collection = as_collection(object);
        if (collection == nullptr) return count_leaf(object);
        std::vector<LINKER_OBJECT*> leaves;
        collection->flatten(leaves, &LINKER_OBJECT::is_leaf);
        for (LINKER_OBJECT* leaf : leaves) count_leaf(leaf);
    }

    static void count_reserved(MODULE_INFO& info, LINKER_OBJECT* object) {
        info.rw_data += object->size();
        info.uninit_data += object->size();
    }

    void count_leaf(LINKER_OBJECT* leaf) {
        const OBJ_FILE* file = nullptr;
        if (leaf->is_section())
            file = static_cast<SECTION*>(leaf)->orig_infile();
        else if (leaf->is_common_block())
            file = file_manager.lookup_OF_FILE(static_cast<COMMON_BLOCK*>(leaf)->symbol()->ofile());
        else if (leaf->is_space() || leaf->is_dot_expression())
            return;
        if (file == nullptr || file == file_manager.internal_file())
            linker_generated_.process_object(leaf);
        else
            module_of(file).process_object(leaf);
    }

    MODULE_INFO& module_of(const OBJ_FILE* file) {
        MODULE_INFO*& info = by_file_[file];
        if (info == nullptr) {
            info = modules_.emplace_back(std::make_unique<MODULE_INFO>()).get();
            info->set_file(file);
        }
        return *info;
    }

    void generate_table_header() {
        table_.set_indent(4);
        table_.set_padding(3);
        table_.set_col_align(0, TA_SPILL);
        table_.set_col_align(1, TA_LEFT);
        const char* data_headings[2][2] = {{"ro data", "-------"}, {"rw data", "-------"}};
        const char* coff_headings[2][2] = {{"initialized data", "----------------"},
                                           {"uninitialized data", "------------------"}};
        for (int line = 0; line < 2; ++line) {
            table_.set_string(line, 1, line == 0 ? "Module" : "------");
            table_.set_string(line, 2, line == 0 ? "code" : "----");
            for (int i = 0; i < 2; ++i)
                table_.set_string(
                    line, 3 + i, output_is_elf() ? data_headings[i][line] : coff_headings[i][line]);
        }
        row_ = 2;
    }

    void generate_table_contents() {
        if (modules_.empty()) return;
        MODULE_INFO sums;
        sums.name = "Total:";
        const std::string* group = nullptr;
        for (const auto& info : modules_) {
            if (group == nullptr || *group != info->group) {
                if (group != nullptr) end_group(sums);
                group = &info->group;
                table_.set_string(row_++, 0, *group);
            }
            write_module_info(*info, false);
            sums.add(*info);
        }
        end_group(sums);
    }

    void end_group(MODULE_INFO& sums) {
        if (sums.total() != 0) table_.set_row_as_border(row_++);
        write_module_info(sums, true);
        sums.clear_sums();
    }

    void write_module_info(const MODULE_INFO& info, bool is_total) {
        if (info.total() == 0) return;
        bool elf = output_is_elf();
        table_.set_string(row_, 1, info.name);
        uint64_t values[] = {info.code, elf ? info.ro_data : info.init_data,
                             elf ? info.rw_data : info.uninit_data};
        for (int i = 0; i < 3; ++i)
            table_.set_text(row_, 2 + i, "%lu", static_cast<unsigned long>(values[i]));
        ++row_;
        if (is_total)
            table_.set_string(row_++, 1, "");
        else
            grand_total_.add(info);
    }

    MODULE_INFO linker_generated_, stack_, heap_, grand_total_;
    std::unordered_map<const OBJ_FILE*, MODULE_INFO*> by_file_;
    std::vector<std::unique_ptr<MODULE_INFO>> modules_; // in the order of the memory
    TEXT_TABLE table_;
    int row_ = 0;
};

} // namespace

void map_modules() {
    GENERATE_MAP_MODULES()();
}
