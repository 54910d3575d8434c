// The order of the checks, what every machine asks of two files, and the queue.
#include "FCOMPAT/fcompat.h"

#include "DIAG/fcompat_msgs.h"
#include "FCOMPAT/arm_fcompat.h"
#include "OBJEDIT04/machine/machine_db.h"
#include "OBJEDIT04/ofe/object_file.h"

using namespace OFE;

namespace {

constexpr unsigned TAG_RTS_VENDOR = 4, TAG_EXCEPTIONS = 6, TAG_MARKED_PRO = 64;

const char* endian_name(OF_ENDIAN endian) {
    return endian == OF_ENDIAN_BIG ? "big" : endian == OF_ENDIAN_LITTLE ? "little" : "unknown";
}

} // namespace

FCOMPAT::FCOMPAT() = default;
FCOMPAT::~FCOMPAT() = default;

std::unique_ptr<FCOMPAT> FCOMPAT_FACTORY::get_fcompat(OF_MACHINE machine) {
    if (machine == OF_MACHINE_ARM) return std::make_unique<ARM_FCOMPAT>();
    return std::make_unique<FCOMPAT>();
}

void FCOMPAT::set_files(OBJECT_FILE* base, const char* base_name, OBJECT_FILE* file,
                        const char* file_name, const SOURCE_POSITION* position) {
    base_ = base;
    file_ = file;
    base_name_ = base_name ? base_name : base ? base->display_name() : "";
    file_name_ = file_name ? file_name : file ? file->display_name() : "";
    position_ = SOURCE_POSITION(position);
}

// --- the queue

void FCOMPAT::add_to_queue(std::unique_ptr<DIAGNOSTIC> message) {
    if (position_.is_known()) message->set_src(&position_);
    queue_.push_back(std::move(message));
}

void FCOMPAT::error_report() {
    for (const auto& message : queue_) message->report();
    error_clear();
}

void FCOMPAT::error_clear() {
    queue_.clear();
}

// --- the order of the checks

bool FCOMPAT::check_compatibility(bool merge) {
    error_clear();
    merge_ = merge;
    if (!base_ || !file_ || !headers_agree()) return false;
    if (!file_->is_load_image_file() && !skip_file_battr_check()) {
        check_build_attributes();
        check_target_compatibility();
    }
    return queue_.empty();
}

bool FCOMPAT::headers_agree() {
    if (file_->machine() != base_->machine()) {
        FCOMPAT_QUEUE(fcompat_incompat_machine, file_name_,
                      OBJECT_FILE::machine_name(file_->machine()),
                      OBJECT_FILE::machine_name(base_->machine()));
        return false;
    }
    if (file_->format() != base_->format()) {
        FCOMPAT_QUEUE(fcompat_incompat_file_fmt, base_name_,
                      OBJECT_FILE::format_name(base_->format()), file_name_,
                      OBJECT_FILE::format_name(file_->format()));
        return false;
    }
    if (file_->machine_endian() != base_->machine_endian()) {
        FCOMPAT_QUEUE(fcompat_incompat_endian, base_name_, endian_name(base_->machine_endian()),
                      file_name_, endian_name(file_->machine_endian()));
        return false;
    }
    return true;
}

FCOMPAT::FILE_ATTRIBUTES FCOMPAT::VENDOR_SECTIONS::extract_file_attrs() const {
    return {qv ? qv->file_list() : nullptr, abi ? abi->file_list() : nullptr};
}

FCOMPAT::VENDOR_SECTIONS FCOMPAT::vendor_sections(OBJECT_FILE* file) const {
    return {file->qv_battr_vendor_section(), file->abi_battr_vendor_section()};
}

// A section that the baseline lacks becomes what the file has.
void FCOMPAT::check_build_attributes() {
    if (!file_->build_attributes_exist()) return;
    VENDOR_SECTIONS base = vendor_sections(base_), file = vendor_sections(file_);
    if (merge_)
        for (auto scn : {&VENDOR_SECTIONS::qv, &VENDOR_SECTIONS::abi})
            if (!(base.*scn) && file.*scn)
                base.*scn = base_->build_attributes()->vscn_copy(file.*scn);
    check_for_existence_of_build_attributes(base, file);
    if (file.qv || file.abi) check_ba_attrlist(base, file);
}

void FCOMPAT::check_for_existence_of_build_attributes(const VENDOR_SECTIONS& base,
                                                      const VENDOR_SECTIONS& file) {
    for (auto scn : {&VENDOR_SECTIONS::qv, &VENDOR_SECTIONS::abi}) {
        OFBA_VENDOR_SCN *in_base = base.*scn, *in_file = file.*scn;
        if (!in_base == !in_file) continue;
        FCOMPAT_QUEUE(fcompat_ba_missing, (in_base ? in_base : in_file)->name(),
                      in_base ? file_name_ : base_name_);
    }
}

void FCOMPAT::check_ba_attrlist(const VENDOR_SECTIONS& base_scns,
                                const VENDOR_SECTIONS& file_scns) {
    FILE_ATTRIBUTES base = base_scns.extract_file_attrs(), file = file_scns.extract_file_attrs();
    auto fill = [this](LIST*& to, OFBA_VENDOR_SCN* scn, const LIST* from) {
        if (!merge_ || to || !scn || !from) return;
        to = scn->new_attrlist(Tag_File);
        if (to) to->copy(*from, false);
    };
    fill(base.qv, base_scns.qv, file.qv);
    fill(base.abi, base_scns.abi, file.abi);
    check_target_ba_attrlist(base, file);
    if (!base.qv || !file.qv) return;
    ba_exact_nonzero_uval(TAG_RTS_VENDOR, base.qv, file.qv);
    ba_exact_nonzero_uval(TAG_EXCEPTIONS, base.qv, file.qv);
    ba_min_uval(TAG_MARKED_PRO, base.qv, file.qv);
}

bool FCOMPAT::custom_diagnostic(const OFBA_TAG* tag, OFBA_AVAL base, OFBA_AVAL file) {
    if (!ba_vendor_is_qv(tag->vendor) || tag->number != TAG_RTS_VENDOR) return false;
    FCOMPAT_QUEUE(fcompat_RTS_mismatch, file_name_, ba_value_text(tag, file),
                  ba_value_text(tag, base));
    return true;
}
