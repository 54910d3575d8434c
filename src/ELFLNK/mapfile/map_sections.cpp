// The section allocation map: each output section with its address and length, and what it is made
// of: members, and the holes between them.
#include <algorithm>
#include <cstring>
#include <tuple>
#include <vector>

#include "ELFLNK/build/build.h"
#include "ELFLNK/compress/compressed_section.h"
#include "ELFLNK/file/archive_file.h"
#include "ELFLNK/file/file_manager.h"
#include "ELFLNK/file/obj_file.h"
#include "ELFLNK/locator/locator.h"
#include "ELFLNK/mapfile/map_file.h"
#include "ELFLNK/mapfile/map_origin.h"
#include "ELFLNK/memmap/fill_spec.h"
#include "ELFLNK/object/root_collection.h"
#include "ELFLNK/object/section.h"
#include "ELFLNK/target/abi.h"
#include "ELFLNK/target/target.h"
#include "UTIL/filename.h"

namespace {

// The locator whose addresses an output section shows.
LOCATOR* shown_locator(const LINKER_OBJECT* object) {
    LOCATOR* load = object->load_locator();
    return load != nullptr && load->is_placed() ? load : object->run_locator();
}

bool is_shown(const LINKER_OBJECT* object) {
    bool init_table = strcmp(object->name(), Target->abi()->cinit_section_name()) == 0 ||
                      strcmp(object->name(), Target->abi()->pinit_section_name()) == 0;
    bool no_memory = !object->has_attr(PA_ALLOCATED) &&
                     (object->has_attr(PA_PMDATA) || !object->has_attr(PA_COPY | PA_DSECT));
    if (no_memory && !init_table) return false;
    return !object->has_attr(PA_PMDATA) && object->run_locator() != nullptr;
}

// The objects that have an address for certain by page, address and age; behind them the others by
// age.
template <typename HAS_ADDRESS>
void sort_by_load_address(std::vector<LINKER_OBJECT*>& objects, HAS_ADDRESS has_address) {
    using KEY = std::tuple<bool, int, uint64_t, uint32_t>;
    std::vector<std::pair<KEY, LINKER_OBJECT*>> keyed;
    keyed.reserve(objects.size());
    for (LINKER_OBJECT* object : objects)
        keyed.emplace_back(has_address(object) ? KEY(false, object->load_page(),
                                                     object->load_address(), object->id())
                                               : KEY(true, 0, 0, object->id()),
                           object);
    std::sort(keyed.begin(), keyed.end());
    std::transform(keyed.begin(), keyed.end(), objects.begin(),
                   [](const auto& entry) { return entry.second; });
}

// Prints the members of one output section.
class MEMBER_PRINTER {
  public:
    explicit MEMBER_PRINTER(LINKER_OBJECT* object)
        : object_(object), shown_(shown_locator(object)), cursor_(shown_->address()) {}

    void print() {
        std::vector<LINKER_OBJECT*> members;
        if (const COLLECTION* collection = as_collection(object_))
            collection->flatten(members);
        else
            members.push_back(object_);
        sort_by_load_address(members, [](LINKER_OBJECT* m) { return m->is_placed(); });
        for (LINKER_OBJECT* member : members)
            if (!member->is_collection() && member->size() != 0) print_member(member);
        flush_hole();
        uint64_t end = shown_->end_address();
        if (end > cursor_) print_gap(object_, cursor_, end - cursor_);
    }

  private:
    void print_member(LINKER_OBJECT* member) {
        LOCATOR* locator = shown_->is_load() ? member->load_locator() : member->run_locator();
        if (locator != nullptr && locator->is_placed()) {
            if (locator->address() > cursor_) {
                flush_hole();
                print_gap(member, cursor_, locator->address() - cursor_);
            }
            cursor_ = std::max(cursor_, locator->end_address());
        }
        if (member->is_space()) return hold_hole(member);
        flush_hole();
        Target->map_scn_alloc_input_object(member);
        print_origin(member);
        print_fill(member->fill());
        print_load_image(as_section(member));
        mputs("\n");
    }

    // What an encoded load image is made by.
    static void print_load_image(const SECTION* section) {
        if (section == nullptr || !section->is_compressed_scn()) return;
        const auto* image = static_cast<const COMPRESSED_SECTION*>(section);
        if (image->is_compressed())
            mprintf(" [load image, compression = %s]", image->compression_name());
        else
            mputs(" [load image]");
    }

    void print_gap(LINKER_OBJECT* object, uint64_t start, uint64_t length) {
        Target->print_hole(object, start, length);
        mputs("\n");
    }

    // Consecutive spaces of one fill are one hole.
    void hold_hole(LINKER_OBJECT* space) {
        if (hole_ != nullptr && hole_->fill() != space->fill()) flush_hole();
        if (hole_ == nullptr) hole_ = space;
        hole_length_ += space->size();
    }

    void flush_hole() {
        if (hole_ == nullptr) return;
        Target->print_hole(hole_, hole_->load_address(), hole_length_);
        print_fill(hole_->fill());
        mputs("\n");
        hole_ = nullptr;
        hole_length_ = 0;
    }

    void print_fill(FILL_SPEC* fill) {
        if (fill != nullptr && object_->has_attr(PA_HAS_DATA)) mprintf(" [fill = %s]", fill->str());
    }

    // The file that a member comes from, and its name there.
    void print_origin(LINKER_OBJECT* member) {
        const SECTION* section = as_section(member);
        if (section == nullptr) {
            mprintf("(%s)", member->name());
            return;
        }
        origin_.print(section->orig_infile());
        mprintf("(%s)", section->input_name());
    }

    LINKER_OBJECT* object_;
    LOCATOR* shown_;
    uint64_t cursor_;
    LINKER_OBJECT* hole_ = nullptr;
    uint64_t hole_length_ = 0;
    MAP_ORIGIN origin_;
};

} // namespace

void MAP_ORIGIN::print(const OBJ_FILE* file) {
    if (file == nullptr || file == file_manager.internal_file()) return;
    const ARCHIVE_FILE* library = file->archive();
    if (library == nullptr) {
        mprintf("%s ", file->base_name());
    } else {
        const char* base = fn_basename(library->name());
        if (library == library_)
            mprintf("%*s", static_cast<int>(strlen(base)), "");
        else
            mputs(base);
        mprintf(" : %s ", file->member_name());
    }
    library_ = library;
}

void map_section_allocation() {
    mputs("SECTION ALLOCATION MAP\n");
    Target->generate_map_scn_alloc_header();
    const auto& outsects = root_collection->outsects();
    std::vector<LINKER_OBJECT*> objects(outsects.begin(), outsects.end());
    sort_by_load_address(objects, [](LINKER_OBJECT* object) {
        return object->is_placed() && object->has_attr(PA_ALLOCATED);
    });
    for (LINKER_OBJECT* object : objects)
        if (is_shown(object) && Target->map_scn_alloc_output_section(object))
            MEMBER_PRINTER(object).print();
}

void TARGET::generate_map_scn_alloc_header() {
    mputs("\n"
          " output                                  attributes/\n"
          "section   page    origin      length       input sections\n"
          "--------  ----  ----------  ----------   ----------------");
}

// One output section; false if it has no place in memory, so that its members have none either.
bool TARGET::map_scn_alloc_output_section(LINKER_OBJECT* object) {
    LOCATOR* run = object->run_locator();
    LOCATOR* shown = shown_locator(object);
    mprintf("\n%-8s ", object->name());
    if (strlen(object->name()) >= 9) mprintf("\n%-8s ", "*");
    mprintf("  %-2d   %08lx    %08lx     ", shown->effective_page(),
            static_cast<unsigned long>(shown->address()),
            static_cast<unsigned long>(object->size()));
    if (object->failed_to_allocate()) {
        mputs("FAILED TO ALLOCATE\n");
        return false;
    }
    if (object->has_attr(PA_COPY))
        mputs("COPY SECTION");
    else if (object->has_attr(PA_DSECT))
        mputs("DSECT");
    else if (object->has_attr(PA_NOLOAD))
        mputs("NOLOAD SECTION");
    else if (!object->has_attr(PA_HAS_DATA))
        mputs("UNINITIALIZED");
    if (run != shown) mprintf("RUN ADDR = %08lx", static_cast<unsigned long>(run->address()));
    mputs("\n");
    return true;
}

void TARGET::map_scn_alloc_input_object(LINKER_OBJECT* object) {
    mprintf("                  %08lx    %08lx     ",
            static_cast<unsigned long>(object->load_address()),
            static_cast<unsigned long>(object->size()));
}

void TARGET::print_hole(LINKER_OBJECT*, uint64_t start, uint64_t length) {
    mprintf("                  %08lx    %08lx     --HOLE--", static_cast<unsigned long>(start),
            static_cast<unsigned long>(length));
}
