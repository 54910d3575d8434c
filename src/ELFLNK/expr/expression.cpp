// The expression tree apart from its evaluation: construction, questions, and its text.
#include "ELFLNK/expr/expression.h"

#include <algorithm>
#include <cstring>

#include "ELFLNK/symbol/symbol_table.h"
#include "OBJEDIT04/ofe/of_symbol.h"
#include "UTIL/pprint.h"
#include "UTIL/strformat.h"

bool EXPRESSION::silent_m = false;
bool EXPRESSION::suppress_order_of_eval_errors_m = false;
bool EXPRESSION::unreferenced_removed_m = false;

namespace {

struct OPCODE_ROW {
    int code;
    const char* name;
    unsigned cls;
};

constexpr OPCODE_ROW opcodes[] = {
#define EXPR_OP(code, ident, name, cls) {code, name, cls},
#include "ELFLNK/expr/expr_opcodes.def"
#undef EXPR_OP
};
constexpr int opcode_count = static_cast<int>(std::size(opcodes));

constexpr bool codes_are_dense() {
    for (int i = 0; i < opcode_count; ++i)
        if (opcodes[i].code != i) return false;
    return true;
}
static_assert(codes_are_dense());

bool is_address_op(int opcode) {
    return opcode == EXPR_OP_DOT || opcode == EXPR_OP_RUN_START || opcode == EXPR_OP_RUN_END ||
           opcode == EXPR_OP_LOAD_START || opcode == EXPR_OP_LOAD_END;
}

bool is_mem_op(int opcode) {
    return opcode == EXPR_OP_MEM_START || opcode == EXPR_OP_MEM_END || opcode == EXPR_OP_MEM_SIZE;
}

// Does any node of the tree pass?
template <class TEST>
bool any_node(const EXPRESSION* expr, const TEST& test) {
    if (expr == nullptr) return false;
    return test(expr) || any_node(expr->left(), test) || any_node(expr->right(), test);
}

} // namespace

EXPRESSION::EXPRESSION(EXPR_OPCODE opcode, const SOURCE_POSITION* pos)
    : opcode_(opcode), pos_(pos) {}

EXPRESSION::EXPRESSION(EXPR_OPCODE opcode, const char* symbol, EXPR_SYM_BINDING binding,
                       const SOURCE_POSITION* pos)
    : opcode_(opcode), symbol_(symbol), binding_(binding), pos_(pos) {}

EXPRESSION::EXPRESSION(EXPR_OPCODE opcode, int64_t value, const SOURCE_POSITION* pos)
    : opcode_(opcode), value_(value), pos_(pos) {}

EXPRESSION::EXPRESSION(EXPR_OPCODE opcode, EXPRESSION* left, EXPRESSION* right,
                       const SOURCE_POSITION* pos)
    : opcode_(opcode), left_(left), right_(right), pos_(pos) {
    depth_ = 1 + std::max(left ? left->depth_ : 0u, right ? right->depth_ : 0u);
}

EXPRESSION* EXPRESSION::minusone(unsigned bits) {
    auto constant = [](int64_t value) { return new EXPRESSION(EXPR_OP_INT, value, nullptr); };
    EXPRESSION* minus = constant(-1);
    if (bits == 0) return minus;
    auto* shift = new EXPRESSION(EXPR_OP_SHL, constant(1), constant(bits), nullptr);
    auto* mask = new EXPRESSION(EXPR_OP_SUB, shift, constant(1), nullptr);
    return new EXPRESSION(EXPR_OP_AND, minus, mask, nullptr);
}

void EXPRESSION::make_zero() {
    opcode_ = EXPR_OP_INT;
    value_ = 0;
    left_ = right_ = nullptr;
    symbol_ = nullptr;
}

bool EXPRESSION::is_assign_to_dot() const {
    return is_assignment() && left_ != nullptr && left_->opcode_ == EXPR_OP_DOT;
}

bool EXPRESSION::has_dot() const {
    return any_node(this, [](const EXPRESSION* e) { return e->opcode_ == EXPR_OP_DOT; });
}

bool EXPRESSION::has_align(unsigned long* align) const {
    bool found = false;
    if (opcode_ == EXPR_OP_ALIGN && left_ != nullptr) {
        found = true;
        auto value = static_cast<uint64_t>(left_->evaluate(nullptr));
        bool valid = value != 0 && (value & (value - 1)) == 0;
        if (align != nullptr && valid && value > *align) *align = value;
    }
    if (left_ != nullptr && left_->has_align(align)) found = true;
    if (right_ != nullptr && right_->has_align(align)) found = true;
    return found;
}

bool EXPRESSION::is_relocatable() const {
    if (is_address_op(opcode_)) return true;
    if (opcode_ == EXPR_OP_SYMBOL) {
        OFE::OF_SYMBOL* sym = global_symbols.lookup_def(symbol_name());
        return sym != nullptr && sym->kind() == OFE::OF_SYM_KIND_DEFINED;
    }
    if (is_mem_op(opcode_)) return false;
    return (left_ != nullptr && left_->is_relocatable()) ||
           (right_ != nullptr && right_->is_relocatable());
}

OFE::OF_SYMBOL* EXPRESSION::find_relocatable_symbol() const {
    if (opcode_ == EXPR_OP_SYMBOL) {
        OFE::OF_SYMBOL* sym = global_symbols.lookup_def(symbol_name());
        return sym != nullptr && sym->kind() == OFE::OF_SYM_KIND_DEFINED ? sym : nullptr;
    }
    if (is_mem_op(opcode_)) return nullptr;
    OFE::OF_SYMBOL* sym = left_ != nullptr ? left_->find_relocatable_symbol() : nullptr;
    if (sym == nullptr && right_ != nullptr) sym = right_->find_relocatable_symbol();
    return sym;
}

bool EXPRESSION::is_user_addr_op() const {
    return user_ && is_assignment() && right_ != nullptr && is_address_op(right_->opcode_) &&
           !right_->has_dot();
}

unsigned EXPRESSION::opclass(int opcode) {
    return opcode >= 0 && opcode < opcode_count ? opcodes[opcode].cls : 0;
}

std::string EXPRESSION::opname() const {
    if (opcode_ == EXPR_OP_SYMBOL) return symbol_name();
    if (opcode_ == EXPR_OP_INT) return strformat("0x%lx", static_cast<unsigned long>(value_));
    if (opcode_ >= 0 && opcode_ < opcode_count) return opcodes[opcode_].name;
    return strformat("<? %d>", static_cast<int>(opcode_));
}

std::string EXPRESSION::get_string() const {
    unsigned cls = opclass();
    if ((cls & (EXPR_CLASS_BINARY | EXPR_CLASS_ASSIGN)) != 0 && left_ != nullptr &&
        right_ != nullptr)
        return left_->get_string() + ' ' + opname() + ' ' + right_->get_string();
    if ((cls & EXPR_CLASS_UNARY) != 0 && left_ != nullptr)
        return opname() + '(' + left_->get_string() + ')';
    return opname();
}

void EXPRESSION::dump(PPRINT* pp) const {
    pp->printf("%s\n", get_string().c_str());
}

void EXPRESSION::dump_subtree(PPRINT* pp) const {
    pp->printf("%s (status %d)\n", opname().c_str(), status_);
    pp->push();
    if (left_ != nullptr) left_->dump_subtree(pp);
    if (right_ != nullptr) right_->dump_subtree(pp);
    pp->pop();
}

void EXPRESSION::get_expr_refs(std::set<std::string>& names) const {
    if (opcode_ == EXPR_OP_SYMBOL) {
        if (symbol_name()[0] != '\0') names.insert(symbol_);
        return;
    }
    if (is_mem_op(opcode_)) return;
    if (left_ != nullptr && !is_assignment()) left_->get_expr_refs(names);
    if (right_ != nullptr) right_->get_expr_refs(names);
}

bool EXPRESSION::evaluation_occurred() const {
    return any_node(this, [](const EXPRESSION* e) { return e->status_ != EXPR_NOT_EVALUATED; });
}

bool EXPRESSION::reevaluation_required() const {
    return any_node(this, [](const EXPRESSION* e) { return e->status_ == EXPR_REPEAT; });
}

bool EXPRESSION::check_subtree_for_failure() const {
    return any_node(this, [](const EXPRESSION* e) { return e->status_ == EXPR_FAILED; });
}
