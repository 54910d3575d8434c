// The rules by which one attribute of a file is compared to the baseline's, and what they leave in
// the baseline. A rule that fails leaves it as it was.
#include <algorithm>
#include <cstring>
#include <strings.h>

#include "DIAG/fcompat_msgs.h"
#include "DIAG/gen_msgs.h"
#include "FCOMPAT/fcompat.h"
#include "OBJEDIT04/machine/machine_db.h"
#include "OBJEDIT04/ofe/object_file.h"

using namespace OFE;

bool FCOMPAT::ba_get_attrs(unsigned tag, LIST* base, LIST* file, OFBA_AVAL& base_val,
                           OFBA_AVAL& file_val) {
    if (!base) DIAG_REPORT(gen_null_pointer, "base");
    if (!base || !file) return false;
    if (OFBA_ATTR* attr = base->attr_tag(tag)) base_val = attr->val;
    if (OFBA_ATTR* attr = file->attr_tag(tag)) file_val = attr->val;
    return true;
}

// The baseline's attribute is made when it is absent.
void FCOMPAT::ba_merge(unsigned tag, LIST* base, unsigned value) {
    if (merge_ && base->uval(tag) != value) base->set_uval(tag, value);
}

void FCOMPAT::ba_failed(unsigned number, LIST* list, OFBA_AVAL base, OFBA_AVAL file) {
    const OFBA_TAG* tag = list->vendor_section()->tags()->create_tag(number, base_->machine_db());
    if (custom_diagnostic(tag, base, file)) return;
    FCOMPAT_QUEUE(fcompat_ba_neq, file_name_, tag->name, ba_value_text(tag, file),
                  ba_value_text(tag, base));
}

const char* FCOMPAT::ba_value_text(const OFBA_TAG* tag, OFBA_AVAL value) const {
    const char* text = nullptr;
    base_->machine_db()->of_tag_value(tag, value, text);
    return text ? text : "(unknown)";
}

bool FCOMPAT::ba_vendor_is_qv(const char* vendor) {
    return !*vendor || std::strcmp(vendor, OFBA_VENDOR_QV) == 0;
}

void FCOMPAT::ba_exact_uval(unsigned tag, LIST* base, LIST* file) {
    OFBA_AVAL b, f;
    if (ba_get_attrs(tag, base, file, b, f) && b.uval != f.uval) ba_failed(tag, base, b, f);
}

void FCOMPAT::ba_exact_custom_uval(unsigned tag, LIST* base, LIST* file, unsigned any) {
    OFBA_AVAL b, f;
    if (!ba_get_attrs(tag, base, file, b, f) || f.uval == any || f.uval == b.uval) return;
    if (b.uval == any)
        ba_merge(tag, base, f.uval);
    else
        ba_failed(tag, base, b, f);
}

void FCOMPAT::ba_exact_nonzero_uval(unsigned tag, LIST* base, LIST* file) {
    ba_exact_custom_uval(tag, base, file, 0);
}

void FCOMPAT::ba_exact_nonzero_custom_uval(unsigned tag, LIST* base, LIST* file, unsigned any) {
    OFBA_AVAL b, f;
    if (!ba_get_attrs(tag, base, file, b, f) || f.uval == 0) return;
    if (b.uval == 0)
        ba_merge(tag, base, f.uval);
    else
        ba_exact_custom_uval(tag, base, file, any);
}

void FCOMPAT::ba_min_uval(unsigned tag, LIST* base, LIST* file) {
    OFBA_AVAL b, f;
    if (ba_get_attrs(tag, base, file, b, f)) ba_merge(tag, base, std::min(b.uval, f.uval));
}

void FCOMPAT::ba_min_nonzero_uval(unsigned tag, LIST* base, LIST* file) {
    OFBA_AVAL b, f;
    if (!ba_get_attrs(tag, base, file, b, f) || f.uval == 0) return;
    ba_merge(tag, base, b.uval == 0 ? f.uval : std::min(b.uval, f.uval));
}

void FCOMPAT::ba_max_uval(unsigned tag, LIST* base, LIST* file) {
    OFBA_AVAL b, f;
    if (ba_get_attrs(tag, base, file, b, f)) ba_merge(tag, base, std::max(b.uval, f.uval));
}

void FCOMPAT::ba_sum_uval(unsigned tag, LIST* base, LIST* file) {
    OFBA_AVAL b, f;
    if (ba_get_attrs(tag, base, file, b, f)) ba_merge(tag, base, b.uval + f.uval);
}

// Equal texts are one copy, but for case.
void FCOMPAT::ba_exact_str(unsigned tag, LIST* base, LIST* file) {
    OFBA_AVAL b, f;
    if (ba_get_attrs(tag, base, file, b, f) && b.str != f.str && std::strcmp(b.str, f.str) != 0)
        ba_failed(tag, base, b, f);
}

void FCOMPAT::ba_icase_exact_nonempty_str(unsigned tag, LIST* base, LIST* file) {
    OFBA_AVAL b, f;
    if (!ba_get_attrs(tag, base, file, b, f) || b.str == f.str || !*f.str) return;
    if (!*b.str) {
        if (merge_) base->set_str(tag, f.str);
    } else if (strcasecmp(b.str, f.str) != 0) {
        ba_failed(tag, base, b, f);
    }
}
