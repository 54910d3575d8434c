#include "ELFLNK/write/report_file.h"

#include <cerrno>
#include <cstring>

#include "DIAG/gen_msgs.h"
#include "DIAG/user_msg_api.h"
#include "UTIL/file_handle_manager.h"

FHM_FILE* open_report(const char* name) {
    if (name == nullptr || name[0] == '\0') return fhm_stdout();
    FHM_FILE* file = fhm_open(name, "w");
    if (file == nullptr) DIAG_REPORT(gen_bad_file_open, name, strerror(errno));
    return file;
}

void close_report(FHM_FILE* file, bool written, const char* what) {
    if (fflush(file->fp()) != 0 || !written)
        USER_MSG::get_umsg_obj()->error("cannot write the %s to \"%s\":  %s", what,
                                        file == fhm_stdout() ? "standard output" : file->name(),
                                        strerror(errno));
    fhm_close(file);
}
