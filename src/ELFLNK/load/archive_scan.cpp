// Archive members on demand. An archive's directory is interned once. After the first walk over it,
// only names that came to need a definition since are looked at again, in the order in which walks
// repeated over the whole directory would meet them: a group that is read a thousand times costs no
// more than the names that were needed meanwhile.
#include "ELFLNK/load/archive_scan.h"

#include <algorithm>
#include <functional>
#include <queue>
#include <set>
#include <string>
#include <unordered_map>

#include "DIAG/elnk_msgs.h"
#include "ELFLNK/archive/ar_file.h"
#include "ELFLNK/expr/expr_mgr.h"
#include "ELFLNK/file/archive_file.h"
#include "ELFLNK/file/file_manager.h"
#include "ELFLNK/file/obj_file.h"
#include "ELFLNK/file/scan_item.h"
#include "ELFLNK/load/file_symbols.h"
#include "ELFLNK/load/load.h"
#include "ELFLNK/retain/retain_spec.h"
#include "ELFLNK/symbol/symbol_table.h"
#include "OBJEDIT04/ofe/object_file.h"
#include "OBJEDIT04/ofe/of_symbol.h"
#include "OPTIONGEN/option_obj.h"
#include "UTIL/savestr.h"
#include "UTIL/trace.h"

namespace {

// An archive's directory by name id.
struct DIRECTORY {
    std::vector<uint32_t> ids;                        // per entry
    std::vector<bool> failed;                         // per entry: its member could not be loaded
    std::vector<std::pair<uint32_t, uint32_t>> by_id; // (name id, entry), sorted
    size_t needs_seen = 0;                            // how far in the log of needs
    bool was_walked = false; // all entries were looked at, the link having started
    unsigned mappings_known = 0;
};

struct AR_DEF {
    ARCHIVE_FILE* archive;
    uint32_t entry;
};

std::unordered_map<ARCHIVE_FILE*, DIRECTORY> directories;
std::vector<uint32_t> needs; // all names that came to need a definition, in that order
std::unordered_map<uint32_t, std::vector<AR_DEF>>
    ar_def_table; // name id to entries, in command line order

const std::vector<AR_SYMBOL>& entries_of(ARCHIVE_FILE* archive) {
    return archive->AR_FILE_api()->symbols();
}

DIRECTORY& directory_of(ARCHIVE_FILE* archive) {
    const auto [it, is_new] = directories.try_emplace(archive);
    DIRECTORY& d = it->second;
    if (!is_new) return d;
    const std::vector<AR_SYMBOL>& entries = entries_of(archive);
    d.ids.reserve(entries.size());
    d.failed.assign(entries.size(), false);
    for (uint32_t i = 0; i < entries.size(); ++i) {
        d.ids.push_back(global_symbols.intern_view(entries[i].name));
        d.by_id.emplace_back(d.ids.back(), i);
    }
    std::sort(d.by_id.begin(), d.by_id.end());
    return d;
}

// A command file's expression, or --retain, asks for a name that no file defines so far.
bool is_asked_for(uint32_t id) {
    if (global_symbols.def_of(id)) return false;
    const char* name = global_symbols.name_of(id);
    return retain_manager.user_retains_symbol(name) || get_expr_mgr()->is_refd(name);
}

bool is_wanted(uint32_t id) {
    const bool is_needed = global_symbols.need_def(id);
    if (!is_needed && !is_asked_for(id)) return false;
    return global_symbols.need_name_from_archive(global_symbols.name_of(id));
}

bool load_archive_member(ARCHIVE_FILE* archive, uint32_t entry) {
    DIRECTORY& directory = directory_of(archive);
    const AR_SYMBOL& symbol = entries_of(archive)[entry];
    const uint32_t id = directory.ids[entry];
    const char* name = global_symbols.name_of(id);
    OBJ_FILE* object = archive->load_member(symbol.header_offset);
    if (!object) {
        directory.failed[entry] = true;
        return false;
    }
    if (!find_file_symbols(object->object_file())) {
        trace_load.printf("loading %s to define %s\n", object->name(), name);
        file_manager.register_object_file(object, false);
        scan_static_linking_file(object);
    }
    if (global_symbols.need_def(id))
        DIAG_REPORT(elnk_symbol_not_defined, name, file_diag_name(object));
    return true;
}

void log_needs() {
    const std::vector<uint32_t> taken = global_symbols.take_needs();
    needs.insert(needs.end(), taken.begin(), taken.end());
}

// One archive, walked until a pass loads nothing.
class ARCHIVE_WALK {
  public:
    explicit ARCHIVE_WALK(ARCHIVE_FILE* archive)
        : archive_(archive), directory_(directory_of(archive)) {}

    bool run() {
        log_needs();
        if (is_walked()) find_entries(0, nullptr);
        bool loaded = false;
        do {
            loaded = !is_walked() && full_pass();
            while (!next_pass_.empty()) loaded |= partial_pass();
            loaded_any_ |= loaded;
        } while (loaded && !is_walked());
        return loaded_any_;
    }

  private:
    // Every entry was looked at as names are mapped now. The maps and specifications that come with
    // the first object may ask for names passed already, and so may names of patches.
    bool is_walked() const {
        return directory_.was_walked && directory_.mappings_known == patch_mapping_count();
    }

    bool full_pass() {
        bool loaded = false;
        directory_.was_walked = default_abi_is_known();
        directory_.mappings_known = patch_mapping_count();
        directory_.needs_seen = needs.size();
        next_pass_.clear();
        for (uint32_t i = 0; i < directory_.ids.size(); ++i) {
            if (!try_entry(i)) continue;
            loaded = true;
            find_entries(i + 1, nullptr);
        }
        return loaded;
    }

    bool partial_pass() {
        bool loaded = false;
        PASS pass(std::greater<>(), std::move(next_pass_));
        next_pass_.clear();
        while (!pass.empty()) {
            const uint32_t i = pass.top();
            pass.pop();
            if (!try_entry(i)) continue;
            loaded = true;
            find_entries(i + 1, &pass);
        }
        return loaded;
    }

    bool try_entry(uint32_t i) {
        return !directory_.failed[i] && is_wanted(directory_.ids[i]) &&
               load_archive_member(archive_, i);
    }

    // New needs with entries from `passed` on belong to this pass, others to the next. A full pass
    // meets the former anyway.
    using PASS = std::priority_queue<uint32_t, std::vector<uint32_t>, std::greater<>>;
    void find_entries(uint32_t passed, PASS* pass) {
        log_needs();
        for (; directory_.needs_seen < needs.size(); ++directory_.needs_seen) {
            const uint32_t id = global_symbols.mapped_id(needs[directory_.needs_seen]);
            auto it = std::lower_bound(directory_.by_id.begin(), directory_.by_id.end(),
                                       std::pair{id, uint32_t{0}});
            for (; it != directory_.by_id.end() && it->first == id; ++it) {
                if (passed == 0 || it->second < passed)
                    next_pass_.push_back(it->second);
                else if (pass)
                    pass->push(it->second);
            }
        }
    }

    ARCHIVE_FILE* archive_;
    DIRECTORY& directory_;
    std::vector<uint32_t> next_pass_;
    bool loaded_any_ = false;
};

// The format of the first member that has one.
OFE::OF_FORMAT member_format(AR_FILE* archive) {
    for (const AR_MEMBER& member : archive->members()) {
        const OFE::OF_FORMAT format = archive->member_format(member);
        if (format != OFE::OF_FORMAT_UNKNOWN) return format;
    }
    return OFE::OF_FORMAT_UNKNOWN;
}

void report_other_format(ARCHIVE_FILE* archive) {
    const OFE::OF_FORMAT output = output_OF_FILE()->format();
    const OFE::OF_FORMAT format = member_format(archive->AR_FILE_api());
    if (format != OFE::OF_FORMAT_UNKNOWN && format != output)
        DIAG_REPORT(elnk_lib_incompat_file_fmt, archive->name(),
                    OFE::OBJECT_FILE::format_name(format), OFE::OBJECT_FILE::format_name(output));
}

bool scan_again(SCAN_ITEM* item) {
    if (item->is_archive()) return scan_archive(item->ar_scan_item_api()->file());
    return item->is_ar_group() && reread_group(item->ar_group_scan_item_api());
}

template <class LIST>
bool reread(const LIST& list) {
    bool loaded_any = false;
    for (bool again = true; again;) {
        again = false;
        for (size_t i = 0; i < list.size(); ++i) again |= scan_again(list[i]);
        loaded_any |= again;
    }
    return loaded_any;
}

std::vector<uint32_t> sorted_table_names() {
    std::vector<uint32_t> ids;
    ids.reserve(ar_def_table.size());
    for (const auto& [id, defs] : ar_def_table) ids.push_back(id);
    std::sort(ids.begin(), ids.end(), [](uint32_t a, uint32_t b) {
        return std::string_view(global_symbols.name_of(a)) <
               std::string_view(global_symbols.name_of(b));
    });
    return ids;
}

} // namespace

void build_ar_def_table(ARCHIVE_FILE* archive) {
    const std::vector<AR_SYMBOL>& entries = entries_of(archive);
    if (entries.empty() && !archive->is_libspec())
        DIAG_REPORT(elflnk_archive_no_symtab, archive->name());
    if (!global_opts->isopt(OPT_scan_libraries) && !global_opts->isopt(OPT_priority)) return;
    const DIRECTORY& directory = directory_of(archive);
    for (uint32_t i = 0; i < entries.size(); ++i)
        ar_def_table[directory.ids[i]].push_back({archive, i});
}

void clear_ar_def_table() {
    ar_def_table.clear();
    directories.clear();
    needs.clear();
}

bool scan_archive(ARCHIVE_FILE* archive) {
    trace_load.push("scanning archive %s\n", archive->name());
    bool loaded = retain_manager.scan_user_retain_ar_members(archive);
    loaded |= ARCHIVE_WALK(archive).run();
    if (!loaded && archive->loaded_members().empty() && default_abi_is_known())
        report_other_format(archive);
    trace_load.pop();
    return loaded;
}

bool reread_group(AR_GROUP_SCAN_ITEM* group) {
    return reread(group->items());
}
bool reread_archives(const std::vector<SCAN_ITEM*>& list) {
    return reread(list);
}

void priority_archive_search() {
    for (size_t i = 0; i < file_manager.input_files().size(); ++i)
        if (ARCHIVE_FILE* archive = file_manager.input_files()[i]->as_archive_file())
            retain_manager.scan_user_retain_ar_members(archive);
    for (uint32_t id : sorted_table_names())
        if (is_asked_for(id))
            load_archive_member(ar_def_table[id][0].archive, ar_def_table[id][0].entry);

    // Always the first needed name in name order: what a walk from the beginning after each load
    // would find.
    std::set<std::pair<std::string_view, uint32_t>> queue;
    const auto add = [&queue](uint32_t id) { queue.emplace(global_symbols.name_of(id), id); };
    for (uint32_t id = 0; id < global_symbols.name_count(); ++id)
        if (global_symbols.has_undef(id)) add(id);
    global_symbols.take_needs();
    while (!queue.empty()) {
        const uint32_t id = queue.begin()->second;
        queue.erase(queue.begin());
        const auto served = ar_def_table.find(global_symbols.mapped_id(id));
        if (served == ar_def_table.end() || !global_symbols.has_undef(id)) continue;
        if (!global_symbols.need_name_from_archive(global_symbols.name_of(id))) continue;
        if (!global_symbols.need_undef(global_symbols.undef_of(id))) continue;
        const AR_DEF& def = served->second.front();
        if (directory_of(def.archive).failed[def.entry]) continue;
        load_archive_member(def.archive, def.entry);
        for (uint32_t need : global_symbols.take_needs()) add(need);
    }
}

void report_multiple_definitions() {
    for (OFE::OF_SYMBOL* sym : global_symbols.sorted_defs()) {
        if (sym->kind() == OFE::OF_SYM_KIND_ABSOLUTE || global_symbols.is_defined_in_comdat(sym))
            continue;
        const auto it = ar_def_table.find(global_symbols.find_id(sym->name()));
        if (it == ar_def_table.end()) continue;
        const OBJ_FILE* file = symbol_obj_file(sym);
        const bool from_archive = file && file->archive();
        size_t count = it->second.size();
        if (from_archive && count < 2) continue;
        std::string places;
        if (!from_archive) {
            ++count;
            places = std::string("\n") + symbol_file_name(sym) + "\n";
        }
        for (const AR_DEF& def : it->second) {
            AR_MEMBER member;
            def.archive->AR_FILE_api()->member_at(entries_of(def.archive)[def.entry].header_offset,
                                                  member);
            places += std::string(def.archive->name()) + "<" + std::string(member.name) + ">\n";
        }
        DIAG_REPORT(elnk_multi_def_sym, global_symbols.diag_sym_name(sym->name()),
                    symbol_file_name(sym), count, places);
    }
}
