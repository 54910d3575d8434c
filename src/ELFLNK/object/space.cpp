// Holes and the places of dot expressions.
#include "ELFLNK/object/space.h"

#include "DIAG/diagnostic.h"
#include "ELFLNK/expr/expr_mgr.h"
#include "ELFLNK/expr/expression.h"
#include "ELFLNK/object/collection.h"
#include "ELFLNK/object/fill_data.h"
#include "ELFLNK/object/root_collection.h"
#include "UTIL/narrow.h"

SPACE::SPACE(const char* name, uint64_t size, const SOURCE_POSITION* pos)
    : LINKER_OBJECT(name, pos), size_(size) {
    set_attrs(PA_ALLOCATED | PA_READ);
}

void SPACE::set_size(uint64_t size) {
    if (size == size_) return;
    size_ = size;
    if (parent() != nullptr) parent()->flush_size();
}

void SPACE::write_data_internal(OFE::OF_SECTION* output, uint32_t offset) {
    if (output == nullptr || size_ == 0) return;
    fill_data(output, offset, narrow<uint32_t>(size_), fill());
}

namespace {

const char* name_of_place(const EXPRESSION* expr) {
    return expr->is_assign_to_dot() || expr->left() == nullptr ? "<space>"
                                                               : expr->left()->symbol_name();
}

/// The value of the right side will not change any more.
bool is_settled(const EXPRESSION* right) {
    return right->evaluation_occurred() && !right->reevaluation_required() &&
           !right->check_subtree_for_failure();
}

} // namespace

DOT_EXPRESSION::DOT_EXPRESSION(EXPRESSION* expr, const SOURCE_POSITION* pos)
    : SPACE(name_of_place(expr), 0, pos), expr_(expr->is_assign_to_dot() ? expr : nullptr) {}

bool DOT_EXPRESSION::evaluate(int64_t& value) {
    const unsigned errors = DIAGNOSTIC::error_count_m;
    value = get_expr_mgr()->evaluate(expr_, this, !fault_reported_);
    if (DIAGNOSTIC::error_count_m != errors) fault_reported_ = true;
    return is_settled(expr_->right());
}

uint64_t DOT_EXPRESSION::size() {
    if (expr_ == nullptr || size_ != 0 || expr_->opcode() != EXPR_OP_ADD_ASSIGN) return size_;
    const uint64_t origin = dot_origin_;
    dot_origin_ = run_address();
    int64_t value = 0;
    const bool known = evaluate(value);
    dot_origin_ = origin;
    if (!known) return size_;
    if (value >= 1)
        size_ = static_cast<uint64_t>(value);
    else if (value == 0 && expr_->right()->opcode() == EXPR_OP_INT)
        root_collection->unregister_object(this);
    return size_;
}
