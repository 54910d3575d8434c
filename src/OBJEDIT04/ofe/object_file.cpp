// What every object file has in common: its handle, its pending error, the machine database and the
// shared set of relocation types, and queries over its tables.
#include "OBJEDIT04/ofe/object_file.h"

#include <cstdio>
#include <cstring>

#include "OBJEDIT04/machine/machine_db.h"
#include "OBJEDIT04/machine/reloc_type.h"
#include "OBJEDIT04/ofe/of_section.h"
#include "OBJEDIT04/ofe/of_section_table.h"
#include "OBJEDIT04/ofe/of_symbol_table.h"
#include "UTIL/file_handle_manager.h"
#include "UTIL/savestr.h"

namespace OFE {

unsigned OBJECT_FILE::next_file_id_m = 0;
const char* OBJECT_FILE::tool_name_m = "";

OBJECT_FILE::OBJECT_FILE(const OF_FILE_HANDLE& handle, OF_ERROR_HANDLER handler)
    : OF_STATE_MACHINE(this), handle_(handle), handler_(handler), file_id_(next_file_id_m++) {
    handle_.name = savestr(handle.name);
}

OBJECT_FILE::~OBJECT_FILE() {
    unmap_output();
    if (handle_.file && handle_.close_on_destroy) fhm_close(handle_.file);
}

void OBJECT_FILE::set_name(const char* name) {
    handle_.name = savestr(name);
}

const char* OBJECT_FILE::display_name() const {
    if (handle_.name) return handle_.name;
    return handle_.file ? handle_.file->name() : "(unknown file)";
}

// A pending error goes out before the next one; what the handler leaves pending stands against a
// lesser one.
void OBJECT_FILE::set_error(OF_ERROR_CODE code, const char* format, ...) {
    auto is_mild = [](int c) { return c == OF_ERROR_WARNING || c == OF_ERROR_TRUNCATED; };
    if (error_code_ != OF_ERROR_NONE && handler_) handler_(this, error_code_, error_text());
    if (error_code_ != OF_ERROR_NONE) {
        if (is_mild(error_code_)) {
            if (is_mild(code)) return;
        } else if (error_code_ == OF_ERROR_DEVELOPMENT) {
            if (is_mild(code) || code == OF_ERROR_DEVELOPMENT) return;
        } else {
            return;
        }
    }
    static char buffer[4096];
    va_list args;
    va_start(args, format);
    std::vsnprintf(buffer, sizeof buffer, format, args);
    va_end(args);
    size_t size = std::strlen(buffer) + 1;
    error_copy_ = std::make_unique<char[]>(size);
    std::memcpy(error_copy_.get(), buffer, size);
    error_code_ = code;
    if (code != OF_ERROR_NONE && handler_) handler_(this, code, error_text());
}

void OBJECT_FILE::clear_error() {
    error_code_ = OF_ERROR_NONE;
    if (error_copy_) error_copy_[0] = 0;
}

void OBJECT_FILE::set_machine_db(OF_MACHINE machine) {
    handle_.machine = machine;
    machine_db_ = OF_MACHINE_DB::machine_db(this, machine);
    reltypes_ = nullptr;
}

OF_MACHINE_RELTYPES* OBJECT_FILE::reltypes() {
    if (!reltypes_) reltypes_ = &shared_machine_reltypes(handle_.machine, handle_.format);
    return reltypes_;
}

const OF_RELOC_TYPE* OBJECT_FILE::reloc_type(unsigned id) {
    if (const OF_RELOC_TYPE* type = reltypes()->by_template(id)) return type;
    set_error(OF_ERROR_WARNING, "relocation template %ld not found; returning OFR_INVALID",
              static_cast<long>(id));
    return &OFR_INVALID;
}

const OF_RELOC_TYPE* OBJECT_FILE::reloc_type(const char* name) {
    const OF_RELOC_TYPE* type = reltypes()->by_name(name);
    return type ? type : &OFR_INVALID;
}

const OF_RELOC_TYPE* OBJECT_FILE::machine_reloc_type(unsigned number) {
    return reltypes()->by_machine_number(number);
}

const OF_RELOC_TYPE* OBJECT_FILE::machine_reloc_type(const char* name) {
    return reloc_type(name);
}

void OBJECT_FILE::build_reloc_type_table() {
    reltypes();
}

int OBJECT_FILE::remap_reloc_type(unsigned from, unsigned to) {
    return reltypes()->remap(from, to) ? 0 : -1;
}

void OBJECT_FILE::get_summary_section_sizes(unsigned& code, unsigned& data, unsigned& uninit) {
    code = data = uninit = 0;
    for (unsigned i = 0; i < section_table()->scnnum(); ++i) {
        OF_SECTION* s = section_table()->section(i);
        if (!s || !s->allocated()) continue;
        if (!s->initialized())
            uninit += s->size();
        else if (s->exec())
            code += s->size();
        else if (s->data())
            data += s->size();
    }
}

bool OBJECT_FILE::symbol_exists(const char* name) {
    OF_SYMBOL_TABLE* table = symbol_table();
    if (!table) return false;
    OF_RAW_SYMBOL s;
    for (unsigned i = 0; i < table->symnum(); i = table->next_symbol_id(i))
        if (!table->is_deleted(i) && table->raw_symbol(i, s) && std::strcmp(s.name, name) == 0)
            return true;
    return false;
}

bool OBJECT_FILE::contains_default_rts_exit() {
    return symbol_exists("__QV_default_exit");
}
bool OBJECT_FILE::contains_default_rts_auto_init() {
    return symbol_exists("__QV_default_auto_init");
}
bool OBJECT_FILE::contains_default_rts_args_main() {
    return symbol_exists("__QV_default_args_main");
}
bool OBJECT_FILE::contains_default_rts_system_post_cinit() {
    return symbol_exists("__QV_default_system_post_cinit");
}

} // namespace OFE
