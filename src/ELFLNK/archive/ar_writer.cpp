// Writing an archive. The order of the file is fixed by what must be known first: the names of the
// symbols give the size of the directory, long names the size of their table, and only then has
// each member an offset that the directory can name. The old archive is moved aside and read from
// there, so that a failure can put it back.
#include "ELFLNK/archive/ar_file.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

#include "OBJEDIT04/ofe/object_file.h"
#include "OBJEDIT04/ofe/of_symbol_table.h"
#include "UTIL/file_handle_manager.h"
#include "UTIL/filename.h"
#include "UTIL/savestr.h"

namespace {

constexpr std::string_view MAGIC = "!<arch>\n";
constexpr size_t SHORT_NAME_SIZE = 15;
constexpr uint64_t MAX_MEMBER_SIZE = 100'000'000; // what its field holds, with a blank behind it
constexpr uint64_t MAX_NAME_OFFSET = 1'000'000;   // as an owner id
constexpr unsigned MEMBER_MODE = 0644;

uint64_t even(uint64_t size) {
    return size + (size & 1);
}

bool is_long(std::string_view name) {
    return name.size() > SHORT_NAME_SIZE;
}

void append_big_endian(std::string& to, uint64_t value) {
    for (int shift = 24; shift >= 0; shift -= 8) to += char(value >> shift & 0xFF);
}

// A damaged member is written as it stands, without symbols.
void ignore_error(OFE::OBJECT_FILE* object, OFE::OF_ERROR_CODE, const char*) {
    object->clear_error();
}

bool is_definition(const OFE::OF_RAW_SYMBOL& sym) {
    const bool is_global =
        sym.binding == OFE::OF_SYM_BINDING_GLOBAL || sym.binding == OFE::OF_SYM_BINDING_WEAK;
    return is_global &&
           (sym.kind == OFE::OF_SYM_KIND_DEFINED || sym.kind == OFE::OF_SYM_KIND_ABSOLUTE ||
            sym.kind == OFE::OF_SYM_KIND_COMMON);
}

// Calls with the name of each global symbol that an object file defines.
template <class VISIT>
void for_each_definition(const OFE::OF_FILE_HANDLE& handle, VISIT visit) {
    if (handle.size == 0) return;
    const std::unique_ptr<OFE::OBJECT_FILE> object(OFE::new_OBJECT_FILE(handle, ignore_error));
    OFE::OF_SYMBOL_TABLE* symbols = object ? object->symbol_table() : nullptr;
    if (!symbols) return;
    OFE::OF_RAW_SYMBOL sym;
    for (unsigned id = symbols->first_global(); id < symbols->symnum();
         id = symbols->next_symbol_id(id))
        if (symbols->raw_symbol(id, sym) && is_definition(sym) && *sym.name) visit(sym.name);
}

} // namespace

/// What is known of the new archive while it is written.
struct AR_FILE::OUTPUT {
    FILE* file = nullptr;
    AR_ABI abi = AR_ABI_NONE;
    std::vector<std::span<const uint8_t>> contents; // per member
    std::vector<uint64_t> name_offsets;             // per member; 0 also where the name is short
    std::string name_table;
    std::string symbol_names;             // each with its zero
    std::vector<uint32_t> symbol_members; // per symbol: the member's place in the list
    std::vector<uint64_t> header_offsets; // per member

    uint64_t directory_size() const { return symbol_names.size() + 4 * symbol_members.size() + 4; }
    bool put(std::string_view text) {
        return std::fwrite(text.data(), 1, text.size(), file) == text.size();
    }
    ~OUTPUT() {
        if (file) std::fclose(file);
    }
};

// ---- the list

bool AR_FILE::add_member(const char* path) {
    struct stat info;
    if (stat(path, &info) != 0 || !S_ISREG(info.st_mode))
        return error(AR_BAD_MEMBER, "Cannot read member file: '%s'", path);
    AR_MEMBER added;
    added.file = savestr(path);
    added.name = fn_basename(std::string_view(added.file));
    added.date = info.st_mtime;
    added.size = uint64_t(info.st_size);
    const auto old = std::find_if(members_.begin(), members_.end(),
                                  [&](const AR_MEMBER& m) { return m.name == added.name; });
    if (old != members_.end())
        *old = added;
    else
        members_.push_back(added);
    return true;
}

bool AR_FILE::delete_member(std::string_view member) {
    const auto found = std::find_if(members_.begin(), members_.end(),
                                    [&](const AR_MEMBER& m) { return m.name == member; });
    if (found == members_.end()) return false;
    members_.erase(found);
    return true;
}

// ---- the archive

bool AR_FILE::open_new_ar(OUTPUT& out) {
    if (access(name(), F_OK) == 0) {
        std::string beside = name_ + ".XXXXXX";
        const int fd = mkstemp(beside.data());
        if (fd < 0) return error(AR_CANNOT_CREATE, "Cannot create new archive");
        ::close(fd);
        if (std::rename(name(), beside.c_str()) != 0) {
            unlink(beside.c_str());
            return error(AR_CANNOT_CREATE, "Cannot create new archive");
        }
        temporary_ = std::move(beside);
    }
    writing_ = true;
    out.file = std::fopen(name(), "wb");
    if (!out.file) return error(AR_CANNOT_CREATE, "Cannot create archive: '%s'", name());
    if (!out.put(MAGIC)) return error(AR_CANNOT_WRITE, "Cannot write archive: '%s'", name());
    return true;
}

void AR_FILE::calc_long_names(OUTPUT& out) const {
    if (out.abi == AR_ABI_FILENAMES) out.name_table = "\n";
    out.name_offsets.assign(members_.size(), 0);
    if (out.abi == AR_ABI_NONE) return;
    for (size_t i = 0; i < members_.size(); ++i) {
        if (!is_long(members_[i].name)) continue;
        out.name_offsets[i] = out.name_table.size();
        out.name_table.append(members_[i].name).append("/\n");
    }
    if (out.name_table.size() <= 1) out.name_table.clear();
}

bool AR_FILE::build_symbol_table(OUTPUT& out) {
    out.contents.reserve(members_.size());
    for (size_t i = 0; i < members_.size(); ++i) {
        const AR_MEMBER& member = members_[i];
        OFE::OF_FILE_HANDLE handle;
        if (!member.file) {
            handle = open_member(member);
            out.contents.push_back(contents(member));
        } else {
            FHM_FILE* file = fhm_open_input(member.file);
            if (!file || !file->has_contents())
                return error(AR_BAD_MEMBER, "Cannot read member file: '%s'", member.file);
            out.contents.push_back(file->contents());
            handle.bytes = out.contents.back().data();
            if (out.contents.back().size() <= UINT32_MAX)
                handle.size = static_cast<unsigned>(out.contents.back().size());
        }
        for_each_definition(handle, [&](const char* symbol) {
            out.symbol_names.append(symbol).push_back('\0');
            out.symbol_members.push_back(static_cast<uint32_t>(i));
        });
    }
    uint64_t offset = MAGIC_SIZE;
    if (!out.symbol_members.empty()) offset += HEADER_SIZE + even(out.directory_size());
    if (!out.name_table.empty()) offset += HEADER_SIZE + even(out.name_table.size());
    for (const std::span<const uint8_t> data : out.contents) {
        out.header_offsets.push_back(offset);
        offset += HEADER_SIZE + even(data.size());
    }
    return true;
}

bool AR_FILE::write_header(OUTPUT& out, const char* name, int64_t date, uint64_t owner,
                           uint64_t size) {
    if (size >= MAX_MEMBER_SIZE) return error(AR_BAD_MEMBER, "Member file too large: '%s'", name);
    if (owner >= MAX_NAME_OFFSET)
        return error(AR_CANNOT_WRITE, "Archive file name table too large");
    char header[2 * HEADER_SIZE];
    const int length = snprintf(header, sizeof header, "%-16s%-12ld%-6d%-6d%-8o%-10ld%-2s", name,
                                long(date), int(owner), 0, MEMBER_MODE, long(size), "`\n");
    if (length != int(HEADER_SIZE) || !out.put({header, HEADER_SIZE}))
        return error(AR_CANNOT_WRITE, "Cannot write archive: '%s'", this->name());
    return true;
}

bool AR_FILE::copy_file(OUTPUT& out, std::span<const uint8_t> data) {
    const bool written = out.put({reinterpret_cast<const char*>(data.data()), data.size()}) &&
                         (data.size() % 2 == 0 || out.put("\n"));
    return written || error(AR_CANNOT_WRITE, "Cannot write archive: '%s'", name());
}

bool AR_FILE::write_symbol_table(OUTPUT& out) {
    if (out.symbol_members.empty()) return true;
    std::string table;
    append_big_endian(table, out.symbol_members.size());
    for (const uint32_t member : out.symbol_members) {
        if (out.header_offsets[member] > UINT32_MAX)
            return error(AR_CANNOT_WRITE, "Cannot write symbol table");
        append_big_endian(table, out.header_offsets[member]);
    }
    table += out.symbol_names;
    if (table.size() != out.directory_size())
        return error(AR_CANNOT_WRITE, "Cannot write symbol table");
    if (!write_header(out, "/", 0, 0, table.size())) return false;
    return copy_file(out, {reinterpret_cast<const uint8_t*>(table.data()), table.size()});
}

bool AR_FILE::write_name_table(OUTPUT& out) {
    if (out.name_table.empty()) return true;
    const char* table = out.abi == AR_ABI_FILENAMES ? "<filenames>/" : "//";
    if (!write_header(out, table, 0, 0, out.name_table.size()))
        return error(AR_CANNOT_WRITE, "Cannot write name_table");
    return copy_file(
        out, {reinterpret_cast<const uint8_t*>(out.name_table.data()), out.name_table.size()});
}

bool AR_FILE::write_member(OUTPUT& out, size_t index) {
    const AR_MEMBER& member = members_[index];
    std::string field = std::string(member.name.substr(0, SHORT_NAME_SIZE)) + "/";
    uint64_t owner = 0;
    if (is_long(member.name) && out.abi == AR_ABI_SLASHES)
        field = "/" + std::to_string(out.name_offsets[index]);
    else if (is_long(member.name) && out.abi == AR_ABI_FILENAMES)
        owner = out.name_offsets[index];
    return write_header(out, field.c_str(), member.date, owner, out.contents[index].size()) &&
           copy_file(out, out.contents[index]);
}

bool AR_FILE::write_archive(AR_ABI abi) {
    OUTPUT out;
    out.abi = abi == AR_ABI_UNKNOWN ? AR_ABI_SLASHES : abi;
    calc_long_names(out);
    bool good = open_new_ar(out) && build_symbol_table(out) && write_symbol_table(out) &&
                write_name_table(out);
    for (size_t i = 0; good && i < members_.size(); ++i) good = write_member(out, i);
    if (out.file && std::fclose(std::exchange(out.file, nullptr)) != 0 && good)
        good = error(AR_CANNOT_WRITE, "Cannot write archive: '%s'", name());
    if (!good) {
        cleanup();
        return false;
    }
    writing_ = false;
    if (!temporary_.empty()) unlink(temporary_.c_str());
    temporary_.clear();
    return true;
}

void AR_FILE::cleanup() {
    if (writing_) unlink(name());
    writing_ = false;
    if (!temporary_.empty()) std::rename(temporary_.c_str(), name());
    temporary_.clear();
}
