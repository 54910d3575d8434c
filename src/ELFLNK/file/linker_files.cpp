// The files that the linker makes itself: the output, modelled on the first object of the link, and
// the internal file, which holds the sections and symbols that the linker generates. The handlers
// that turn faults of input files into messages are here too.
#include "DIAG/elnk_msgs.h"
#include "DIAG/user_msg_api.h"
#include "ELFLNK/build/link_kind.h"
#include "ELFLNK/expr/expr_mgr.h"
#include "ELFLNK/file/file_manager.h"
#include "ELFLNK/file/obj_file.h"
#include "ELFLNK/target/target.h"
#include "OBJEDIT04/ofe/object_file.h"
#include "OPTIONGEN/option_obj.h"

#include <cstdlib>
#include <cstring>
#include <ctime>
#include <string>
#include <sys/stat.h>
#include <unistd.h>

namespace {

/// True if a file of that name can be written, or one made where there is none.
bool is_writable(const char* name, bool exists) {
    if (exists) return access(name, W_OK) == 0;
    const char* slash = strrchr(name, '/');
    if (slash == nullptr) return access(".", W_OK | X_OK) == 0;
    return access(std::string(name, slash + 1).c_str(), W_OK | X_OK) == 0;
}

/// Ends the link if the output cannot be written. What an earlier link left is removed: it must not
/// be taken for the result of this one, nor may an empty file. Nothing is opened, since the name
/// may be that of an input that is mapped; what is no regular file (/dev/null) stays, and so does a
/// symbolic link with the file that it leads to.
void check_writable(const char* name) {
    struct stat info;
    const bool exists = stat(name, &info) == 0;
    if (!is_writable(name, exists) || (exists && S_ISDIR(info.st_mode)))
        DIAG_REPORT(elnk_open_outfile, name);
    else if (exists && lstat(name, &info) == 0 && S_ISREG(info.st_mode))
        unlink(name);
}

OFE::OF_FILE_TYPE output_type() {
    if (global_opts->isopt(OPT_shared) || global_opts->isvalue(OPT_dynamic, OPTV_dynamic_lib) ||
        global_opts->isopt(OPT_rom))
        return OFE::OF_FILE_TYPE_SHARED;
    return generate_static_relocs() ? OFE::OF_FILE_TYPE_RELOCATABLE : OFE::OF_FILE_TYPE_EXECUTABLE;
}

void init_output_ELF_file() {
    if (global_opts->isopt(OPT_absolute_exe) && global_opts->isopt(OPT_relocatable) &&
        !global_opts->isopt(OPT_dynamic))
        DIAG_REPORT(elnk_optcomb_fmt_conflict, "--absolute_exe (-a)", "--relocatable (-r)", "ELF");
}

} // namespace

OFE::OBJECT_FILE* output_OF_FILE() {
    const OBJ_FILE* output = file_manager.output_file();
    return output == nullptr ? nullptr : output->object_file();
}

namespace {

/// The time that the user fixes for reproducible outputs, or -1. A text that is no number, or a
/// time that no calendar of four digits has, fixes nothing.
long fixed_time() {
    constexpr long LAST = 253402300799; // the last second of the year 9999
    const char* text = getenv("SOURCE_DATE_EPOCH");
    if (text == nullptr || *text < '0' || *text > '9') return -1;
    char* end = nullptr;
    const long seconds = strtol(text, &end, 10);
    return *end == '\0' && seconds <= LAST ? seconds : -1;
}

} // namespace

long build_time() {
    static const long now = fixed_time() >= 0 ? fixed_time() : static_cast<long>(time(nullptr));
    return now;
}

std::string build_time_text() {
    const time_t when = build_time();
    tm parts{};
    const bool known = fixed_time() >= 0 ? gmtime_r(&when, &parts) != nullptr
                                         : localtime_r(&when, &parts) != nullptr;
    char text[64];
    return known && asctime_r(&parts, text) != nullptr ? text : "\n";
}

OFE::OBJECT_FILE* new_linker_generated_file(const char* name, OFE::OF_FILE_TYPE type,
                                            OFE::OBJECT_FILE* model) {
    OFE::OBJECT_FILE* object = OFE::new_OBJECT_FILE(name, type, model);
    if (object == nullptr) return nullptr;
    object->set_error_handler(ofile_error_handler);
    object->set_time_stamp(build_time());
    return object;
}

void FILE_MANAGER::create_linker_files(OBJ_FILE* first) {
    if (output_file_ != nullptr) DIAG_REPORT(elnk_outfile_already_created);
    baseline_file_ = first;
    create_output_file(first->object_file());
    create_internal_file(output_file_->object_file());
    get_expr_mgr()->create_pending_symbols();
}

void FILE_MANAGER::create_output_file(OFE::OBJECT_FILE* model) {
    const char* name =
        global_opts->isopt(OPT_output_file) ? global_opts->getstrarg(OPT_output_file) : "a.out";
    check_writable(name);
    OFE::OBJECT_FILE* object = new_linker_generated_file(name, output_type(), model);
    if (object == nullptr) DIAG_REPORT(elnk_create_outfile_failed);
    object->set_machine_endian(model->machine_endian());
    if (object->format() == OFE::OF_FORMAT_ELF) init_output_ELF_file();
    output_file_ = new OBJ_FILE(name, object);
    object_map_[object] = output_file_;
    Target->init_output_file(object, model);
}

void FILE_MANAGER::create_internal_file(OFE::OBJECT_FILE* model) {
    OFE::OBJECT_FILE* object =
        new_linker_generated_file("<internal>", OFE::OF_FILE_TYPE_RELOCATABLE, model);
    object->set_machine_endian(model->machine_endian());
    object->set_icode_flag(OFE::ICODE_ABSENT);
    internal_file_ = new OBJ_FILE("<internal>", object);
    add_input_file(internal_file_, false);
}

void ofile_error_handler(OFE::OBJECT_FILE* object, OFE::OF_ERROR_CODE code, const char* text) {
    if (text == nullptr) text = "";
    const char* file = object->display_name();
    const char* what = OFE::OBJECT_FILE::error_code_name(code);
    USER_MSG* messages = USER_MSG::get_umsg_obj();
    switch (code) {
    case OFE::OF_ERROR_NONE:
    case OFE::OF_ERROR_DEVELOPMENT:
        break;
    case OFE::OF_ERROR_ACCESS:
        messages->error("%s: %s:  %s", file, what, text);
        break;
    case OFE::OF_ERROR_WARNING:
    case OFE::OF_ERROR_TRUNCATED:
        messages->warning(0u, "%s: %s", file, text);
        break;
    case OFE::OF_ERROR_FORMAT:
    case OFE::OF_ERROR_CORRUPT:
        // What a damaged file makes the reader say is the file's fault, not one of the linker.
        messages->fatal("%s: %s:  %s", file, what, text);
        break;
    default:
        messages->die("ofile_error_handler()", "%s: %s:  %s", file, what, text);
        break;
    }
    object->clear_error();
}

void ar_error_handler(AR_FILE*, AR_ERROR_CODE, const char* text) {
    USER_MSG::get_umsg_obj()->error("%s", text);
}
