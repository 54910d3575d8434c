// The order of the rules for the two lists of attributes, the rules that are ARM's own, and what
// the header of a file says.
#include "FCOMPAT/arm_fcompat.h"

#include <algorithm>
#include <cstring>

#include "DIAG/fcompat_msgs.h"
#include "OBJEDIT04/machine/arm_machine_db.h"
#include "OBJEDIT04/ofe/object_file.h"

using namespace OFE;

namespace {

// Public tags.
constexpr unsigned TAG_CPU_RAW_NAME = 4, TAG_CPU_NAME = 5, TAG_CPU_ARCH = 6, TAG_PROFILE = 7,
                   TAG_FP_ARCH = 10, TAG_PCS_CONFIG = 13, TAG_WCHAR_T = 18, TAG_ALIGN_NEEDED = 24,
                   TAG_ALIGN_PRESERVED = 25, TAG_ENUM_SIZE = 26, TAG_HARDFP_USE = 27,
                   TAG_VFP_ARGS = 28, TAG_COMPATIBILITY = 32, TAG_VIRTUALIZATION = 68;
// This vendor's.
constexpr unsigned TAG_QV_ISA = 258, TAG_QV_FP_INTERFACE = 274;

constexpr unsigned VFP_ARGS_VENDOR = 2, VFP_ARGS_ANY = 3;
constexpr unsigned HARDFP_SP_AND_DP = 3;
constexpr unsigned ENUM_PACKED = 1, ENUM_INT = 2, ENUM_FORCED = 3;

bool is_abi_tag(const OFBA_TAG* tag) {
    return std::strcmp(tag->vendor, OFBA_VENDOR_AEABI) == 0;
}

// Bytes that a value of the two alignment tags stands for.
unsigned align_bytes(unsigned value, const unsigned (&below_4)[4]) {
    return value < 4 ? below_4[value] : 1u << std::min(value, 31u);
}
constexpr unsigned NEEDED[] = {1, 8, 4, 1};
constexpr unsigned PRESERVED[] = {1, 8, 8, 1};

const char* fp_name(unsigned value) {
    constexpr const char* NAMES[] = {"no",        "VFPv1",       "VFPv2",
                                     "VFPv3",     "VFPv3-D16",   "VFPv4",
                                     "VFPv4-D16", "ARM v8-A FP", "ARM v8.1-A FP SP-D16"};
    return value < std::size(NAMES) ? NAMES[value] : "unknown";
}

} // namespace

// --- the attributes

void ARM_FCOMPAT::check_target_ba_attrlist(FILE_ATTRIBUTES& base, FILE_ATTRIBUTES& file) {
    if (LIST* b = base.qv, *f = file.qv; b && f) {
        for (unsigned tag : {320, 322}) ba_sum_uval(tag, b, f);
        ba_exact_nonzero_uval(256, b, f);
        for (unsigned tag : {260, 324}) ba_min_uval(tag, b, f);
        ba_exact_custom_uval(270, b, f, 2);
        ba_min_uval(272, b, f);
        for (unsigned tag : {276, 326, 262}) ba_max_uval(tag, b, f);
        ba_arm_isa(TAG_QV_ISA, b, f);
        ba_exact_nonzero_uval(266, b, f);
    }
    if (LIST* b = base.abi, *f = file.abi; b && f) {
        ba_arm_vfp_compat(base, file);
        ba_exact_nonzero_uval(TAG_PROFILE, b, f);
        ba_exact_uval(TAG_PCS_CONFIG, b, f);
        for (unsigned tag : {14, 15}) ba_exact_custom_uval(tag, b, f, 3);
        ba_exact_custom_uval(16, b, f, 2);
        for (unsigned tag : {17u, TAG_WCHAR_T}) ba_exact_nonzero_uval(tag, b, f);
        ba_arm_enum(TAG_ENUM_SIZE, b, f);
        ba_aeabi_align(b, f);
        ba_exact_uval(29, b, f);
        ba_aeabi_compat(b, f);
        for (unsigned tag : {TAG_CPU_RAW_NAME, TAG_CPU_NAME})
            ba_icase_exact_nonempty_str(tag, b, f);
        ba_arm_fp(TAG_FP_ARCH, b, f);
        ba_arm_isa(TAG_CPU_ARCH, b, f);
        for (unsigned tag : {8, 9, 11, 12, 36, 34, 19, 20, 21, 22, 23}) ba_max_uval(tag, b, f);
        ba_exact_nonzero_uval(38, b, f);
        ba_max_uval(42, b, f);
        ba_exact_custom_uval(44, b, f, 1);
        ba_arm_hardfp_use(b, f);
        for (unsigned tag : {30, 31}) ba_max_uval(tag, b, f);
        // Tags of later architectures: extensions that some file uses, promises that all keep.
        for (unsigned tag : {46, 48, 50, 52, 66}) ba_max_uval(tag, b, f);
        ba_arm_virtualization(b, f);
        for (unsigned tag : {72, 74, 76}) ba_min_uval(tag, b, f);
    }
}

void ARM_FCOMPAT::ba_arm_isa(unsigned tag, LIST* base, LIST* file) {
    OFBA_AVAL b, f;
    if (!merge() || !ba_get_attrs(tag, base, file, b, f)) return;
    if (ARM_MACHINE_DB::isa_rank(f.uval) > ARM_MACHINE_DB::isa_rank(b.uval))
        ba_merge(tag, base, f.uval);
}

void ARM_FCOMPAT::ba_arm_enum(unsigned tag, LIST* base, LIST* file) {
    OFBA_AVAL b, f;
    if (!ba_get_attrs(tag, base, file, b, f) || f.uval == 0 || f.uval == b.uval) return;
    if ((f.uval == ENUM_FORCED && b.uval == ENUM_INT) ||
        (f.uval == ENUM_INT && b.uval == ENUM_FORCED))
        return;
    if (b.uval == 0) {
        ba_merge(tag, base, f.uval);
        return;
    }
    auto name = [](unsigned value) { return value == ENUM_PACKED ? "packed" : "32-bit"; };
    FCOMPAT_QUEUE(fcompat_incompat_enum, base_name(), name(b.uval), file_name(), name(f.uval));
}

void ARM_FCOMPAT::ba_aeabi_align(LIST* base, LIST* file) {
    OFBA_AVAL b_need, f_need, b_keep, f_keep;
    if (!ba_get_attrs(TAG_ALIGN_NEEDED, base, file, b_need, f_need) ||
        !ba_get_attrs(TAG_ALIGN_PRESERVED, base, file, b_keep, f_keep))
        return;
    auto needed = [](OFBA_AVAL v) { return align_bytes(v.uval, NEEDED); };
    auto kept = [](OFBA_AVAL v) { return align_bytes(v.uval, PRESERVED); };
    bool honored = needed(b_need) <= kept(f_keep);
    bool possible = needed(f_need) <= kept(b_keep);
    if (!honored) FCOMPAT_QUEUE(fcompat_align_not_honored, file_name());
    if (!possible) FCOMPAT_QUEUE(fcompat_align_reqd, file_name());
    if (!honored || !possible) return;
    if (needed(f_need) > needed(b_need)) ba_merge(TAG_ALIGN_NEEDED, base, f_need.uval);
    if (kept(f_keep) < kept(b_keep)) ba_merge(TAG_ALIGN_PRESERVED, base, f_keep.uval);
}

// There may be several: one per toolset.
void ARM_FCOMPAT::ba_aeabi_compat(LIST* base, LIST* file) {
    for (unsigned i = 0; OFBA_ATTR* attr = file->attr_tag(TAG_COMPATIBILITY, i); ++i) {
        const OFBA_AVAL value = attr->val;
        if (value.uval == 0) continue;
        if (!ba_vendor_is_qv(value.str)) {
            FCOMPAT_QUEUE(fcompat_obj_is_vendor_specific, file_name(), OFBA_VENDOR_QV, value.str);
            continue;
        }
        if (!merge()) continue;
        bool held = false;
        for (unsigned k = 0; OFBA_ATTR* have = base->attr_tag(TAG_COMPATIBILITY, k); ++k)
            held |= have->val.uval == value.uval && have->val.str == value.str;
        if (held) continue;
        if (OFBA_ATTR* made = base->new_attr(TAG_COMPATIBILITY)) made->val = value;
    }
}

void ARM_FCOMPAT::ba_arm_fp(unsigned tag, LIST* base, LIST* file) {
    OFBA_AVAL b, f;
    if (!ba_get_attrs(tag, base, file, b, f) || b.uval == f.uval) return;
    if (b.uval != 0 && f.uval != 0)
        FCOMPAT_QUEUE(fcompat_FP_mismatch, file_name(), fp_name(f.uval), fp_name(b.uval));
    ba_merge(tag, base, std::max(b.uval, f.uval));
}

void ARM_FCOMPAT::ba_arm_hardfp_use(LIST* base, LIST* file) {
    OFBA_AVAL b, f;
    if (ba_get_attrs(TAG_HARDFP_USE, base, file, b, f) && b.uval != f.uval)
        ba_merge(TAG_HARDFP_USE, base, HARDFP_SP_AND_DP);
}

// One bit for each of two extensions.
void ARM_FCOMPAT::ba_arm_virtualization(LIST* base, LIST* file) {
    OFBA_AVAL b, f;
    if (ba_get_attrs(TAG_VIRTUALIZATION, base, file, b, f))
        ba_merge(TAG_VIRTUALIZATION, base, b.uval | f.uval);
}

void ARM_FCOMPAT::ba_arm_fp_interface(FILE_ATTRIBUTES& base, FILE_ATTRIBUTES& file, bool& base_uses,
                                      bool& file_uses) {
    base_uses = !base.qv || base.qv->uval(TAG_QV_FP_INTERFACE) == 0;
    file_uses = !file.qv || file.qv->uval(TAG_QV_FP_INTERFACE) == 0;
    if (file_uses && !base_uses) ba_merge(TAG_QV_FP_INTERFACE, base.qv, 0);
}

void ARM_FCOMPAT::ba_arm_vfp_compat(FILE_ATTRIBUTES& base, FILE_ATTRIBUTES& file) {
    OFBA_AVAL b, f;
    if (!ba_get_attrs(TAG_VFP_ARGS, base.abi, file.abi, b, f)) return;
    if (f.uval == VFP_ARGS_VENDOR || b.uval == VFP_ARGS_VENDOR) {
        FCOMPAT_QUEUE(fcompat_vendor_FP_conventions_not_supported, "Tag_ABI_VFP_args",
                      f.uval == VFP_ARGS_VENDOR ? file_name() : base_name());
        return;
    }
    bool base_uses, file_uses;
    ba_arm_fp_interface(base, file, base_uses, file_uses);
    bool either = f.uval == VFP_ARGS_ANY || b.uval == VFP_ARGS_ANY;
    if (!either && base_uses && file_uses && b.uval != f.uval)
        ba_failed(TAG_VFP_ARGS, base.abi, b, f);
    else if (f.uval != VFP_ARGS_ANY)
        ba_merge(TAG_VFP_ARGS, base.abi, f.uval);
}

bool ARM_FCOMPAT::pcs_configs_agree(unsigned base, unsigned file) const {
    return base == file || (base <= 1 && file <= 1);
}

bool ARM_FCOMPAT::custom_diagnostic(const OFBA_TAG* tag, OFBA_AVAL base, OFBA_AVAL file) {
    if (!is_abi_tag(tag)) return FCOMPAT::custom_diagnostic(tag, base, file);
    switch (tag->number) {
    case TAG_CPU_RAW_NAME:
    case TAG_CPU_NAME:
        FCOMPAT_QUEUE(fcompat_different_cpu_name, file_name(), tag->name, file.str, base.str);
        return true;
    case TAG_PCS_CONFIG:
        if (!pcs_configs_agree(base.uval, file.uval))
            FCOMPAT_QUEUE(fcompat_incompat_pcs_config, base_name(), ba_value_text(tag, base),
                          file_name(), ba_value_text(tag, file));
        return true;
    case TAG_WCHAR_T: {
        auto name = [](OFBA_AVAL v) { return v.uval == 2 ? "--wchar_t=16" : "--wchar_t=32"; };
        if (base.uval != 0 && file.uval != 0 && base.uval != file.uval)
            FCOMPAT_QUEUE(fcompat_incompat_wchar_t, base_name(), name(base), file_name(),
                          name(file));
        return true;
    }
    default:
        return false;
    }
}

// --- the file

bool ARM_FCOMPAT::skip_file_battr_check() {
    OFBA_VENDOR_SCN* scn = new_file()->abi_battr_vendor_section();
    if (!scn) return false;
    bool sections = scn->scope_list(Tag_Section), symbols = scn->scope_list(Tag_Symbol);
    if (!sections && !symbols) return false;
    FCOMPAT_QUEUE(fcompat_deprecated_attrs, file_name(),
                  !symbols    ? "section"
                  : !sections ? "symbol"
                              : "section and symbol");
    return true;
}

void ARM_FCOMPAT::check_target_compatibility() {
    ARM_MACHINE_DB* base = ARM_MACHINE_DB::of(base_file());
    ARM_MACHINE_DB* file = ARM_MACHINE_DB::of(new_file());
    if (!base || !file) return;
    if (new_file()->format() == OF_FORMAT_ELF && base->eabi_version() != file->eabi_version())
        FCOMPAT_QUEUE(fcompat_abiver_conflict, base_name(), base->eabi_version(), file_name(),
                      file->eabi_version());
    check_isa_compatibility();
}

void ARM_FCOMPAT::check_isa_compatibility() {
    unsigned version = ARM_MACHINE_DB::of(new_file())->find_isa_version();
    if (isa_limit() != 0 && version > isa_limit())
        FCOMPAT_QUEUE(fcompat_isaver_conflict, file_name(),
                      ARM_MACHINE_DB::isa_version_name(version),
                      ARM_MACHINE_DB::isa_version_name(isa_limit()));
}
