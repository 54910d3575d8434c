// The evaluation of an expression. What can't be known yet isn't an error: the node's status says
// that it failed or is to be evaluated again, and the value is 0 or preliminary.
#include <set>
#include <tuple>
#include <vector>

#include "DIAG/elnk_msgs.h"
#include "DIAG/user_msg_api.h"
#include "ELFLNK/build/build.h"
#include "ELFLNK/expr/expression.h"
#include "ELFLNK/memmap/memory_map.h"
#include "ELFLNK/object/root_collection.h"
#include "ELFLNK/object/space.h"
#include "ELFLNK/symbol/symbol_table.h"
#include "ELFLNK/target/target.h"
#include "OBJEDIT04/ofe/of_section.h"
#include "OBJEDIT04/ofe/of_symbol.h"

// Reports the message `id` as an error of this node's evaluation; `about` tells messages of one id
// apart.
#define EXPR_ERROR_ABOUT(about, id, ...)                                                           \
    do {                                                                                           \
        DIAG::id expr_error_diag(__FILE__, __LINE__ __VA_OPT__(, ) __VA_ARGS__);                   \
        evaluation_error(expr_error_diag, about);                                                  \
    } while (false)
#define EXPR_ERROR(id, ...) EXPR_ERROR_ABOUT(nullptr, id __VA_OPT__(, ) __VA_ARGS__)

namespace {

// Arithmetic wraps around like the addresses that it works on.
int64_t wrap(uint64_t value) {
    return static_cast<int64_t>(value);
}

int64_t arithmetic(EXPR_OPCODE op, int64_t a, int64_t b) {
    auto ua = static_cast<uint64_t>(a);
    auto ub = static_cast<uint64_t>(b);
    switch (op) {
    case EXPR_OP_ADD:
        return wrap(ua + ub);
    case EXPR_OP_SUB:
        return wrap(ua - ub);
    case EXPR_OP_MUL:
        return wrap(ua * ub);
    case EXPR_OP_DIV:
        return b == 0 ? 0 : b == -1 ? wrap(0 - ua) : a / b;
    case EXPR_OP_MOD:
        return b == 0 || b == -1 ? 0 : a % b;
    case EXPR_OP_SHL:
        return ub > 63 ? 0 : wrap(ua << ub);
    case EXPR_OP_SHR:
        return ub > 63 ? (a < 0 ? -1 : 0) : a >> ub;
    case EXPR_OP_AND:
        return a & b;
    case EXPR_OP_OR:
        return a | b;
    case EXPR_OP_XOR:
        return a ^ b;
    case EXPR_OP_LAND:
        return a != 0 && b != 0;
    case EXPR_OP_LOR:
        return a != 0 || b != 0;
    case EXPR_OP_EQ:
        return a == b;
    case EXPR_OP_NE:
        return a != b;
    case EXPR_OP_LT:
        return a < b;
    case EXPR_OP_LE:
        return a <= b;
    case EXPR_OP_GT:
        return a > b;
    case EXPR_OP_GE:
        return a >= b;
    default:
        return 0;
    }
}

EXPR_OPCODE operation_of_assignment(EXPR_OPCODE op) {
    switch (op) {
    case EXPR_OP_ADD_ASSIGN:
        return EXPR_OP_ADD;
    case EXPR_OP_SUB_ASSIGN:
        return EXPR_OP_SUB;
    case EXPR_OP_MUL_ASSIGN:
        return EXPR_OP_MUL;
    case EXPR_OP_DIV_ASSIGN:
        return EXPR_OP_DIV;
    default:
        return EXPR_OP_NOP;
    }
}

DOT_EXPRESSION* as_dot(LINKER_OBJECT* object) {
    return object != nullptr && object->is_dot_expression() ? static_cast<DOT_EXPRESSION*>(object)
                                                            : nullptr;
}

bool is_run_op(int op) {
    return op == EXPR_OP_RUN_START || op == EXPR_OP_RUN_END || op == EXPR_OP_RUN_SIZE;
}
bool is_load_op(int op) {
    return op == EXPR_OP_LOAD_START || op == EXPR_OP_LOAD_END || op == EXPR_OP_LOAD_SIZE;
}

// The object has no final place yet for what the operator asks.
bool lacks_placement(int op, const LINKER_OBJECT* object) {
    if (object->run_placement_is_complete()) return false;
    return is_run_op(op) || (is_load_op(op) && !object->load_placement_is_complete());
}

// Symbols of the tree that are defined in another section than the given one.
void collect_foreign_symbols(const EXPRESSION* expr, const OFE::OF_SECTION* section,
                             std::vector<OFE::OF_SYMBOL*>& found) {
    if (expr == nullptr || expr->opcode() == EXPR_OP_MEM_START ||
        expr->opcode() == EXPR_OP_MEM_END || expr->opcode() == EXPR_OP_MEM_SIZE)
        return;
    if (expr->opcode() == EXPR_OP_SYMBOL) {
        OFE::OF_SYMBOL* sym = global_symbols.lookup_def(expr->symbol_name());
        if (sym != nullptr && sym->kind() == OFE::OF_SYM_KIND_DEFINED && sym->section() != section)
            found.push_back(sym);
        return;
    }
    collect_foreign_symbols(expr->left(), section, found);
    collect_foreign_symbols(expr->right(), section, found);
}

// Symbols of the output have 32 bits; negative values are their complement.
void report_cut_value(const SOURCE_POSITION* pos, int64_t value, const char* name) {
    if (value >= INT32_MIN && value <= int64_t{UINT32_MAX}) return;
    USER_MSG::get_umsg_obj()->warning(
        pos, 0U, "value %#llx of symbol \"%s\" does not fit into 32 bits; %#x is used",
        static_cast<unsigned long long>(value), name, static_cast<unsigned>(value));
}

const char* section_name(const OFE::OF_SECTION* section) {
    return section != nullptr ? section->name() : "";
}

} // namespace

// The one road of every error: silent failures mean "try again later". A tree is evaluated in many
// passes, but what is wrong with a node is said once.
void EXPRESSION::evaluation_error(DIAGNOSTIC& diag, const void* about) {
    static std::set<std::tuple<const EXPRESSION*, unsigned, const void*>> said;
    dc_SEVERITY severity = diag.severity();
    if (severity >= dc_ERROR) status_ = EXPR_FAILED;
    if (severity == dc_FATAL || !silent_m || diag.info()->is_internal) {
        if (!said.emplace(this, diag.info()->code, about).second) return;
        diag.set_src(&pos_);
        diag.report();
    } else {
        status_ = EXPR_REPEAT;
    }
}

int64_t EXPRESSION::bad_expression() {
    EXPR_ERROR(elnk_bad_expr);
    return 0;
}

int64_t EXPRESSION::evaluate(LINKER_OBJECT* object) {
    status_ = EXPR_EVALUATED;
    if (is_assign_to_dot() && right_ != nullptr) return evaluate_assign_to_dot(object);
    switch (opcode_) {
    case EXPR_OP_NOP:
        return 0;
    case EXPR_OP_INT:
        return value_;
    case EXPR_OP_SYMBOL:
        return evaluate_name();
    case EXPR_OP_ASSIGN:
        return evaluate_assign_to_symbol(object);
    case EXPR_OP_DOT:
        return object != nullptr ? evaluate_dot(object) : bad_expression();
    case EXPR_OP_ALIGN:
        if (left_ == nullptr) return bad_expression();
        return object != nullptr ? evaluate_align(object) : left_->evaluate(nullptr);
    case EXPR_OP_MEM_START:
    case EXPR_OP_MEM_END:
    case EXPR_OP_MEM_SIZE:
        return evaluate_mem_range_property();
    default:
        break;
    }
    if (is_run_op(opcode_) || is_load_op(opcode_))
        return object != nullptr ? evaluate_placement(object) : bad_expression();
    unsigned cls = opclass();
    if ((cls & EXPR_CLASS_UNARY) != 0) return evaluate_unary(object);
    if ((cls & EXPR_CLASS_BINARY) != 0) return evaluate_binary(object);
    return bad_expression();
}

int64_t EXPRESSION::evaluate_unary(LINKER_OBJECT* object) {
    if (left_ == nullptr) return bad_expression();
    int64_t value = left_->evaluate(object);
    switch (opcode_) {
    case EXPR_OP_NEG:
        return wrap(0 - static_cast<uint64_t>(value));
    case EXPR_OP_COMPL:
        return ~value;
    case EXPR_OP_NOT:
        return value == 0;
    default:
        return value;
    }
}

int64_t EXPRESSION::evaluate_binary(LINKER_OBJECT* object) {
    if (left_ == nullptr || right_ == nullptr) return bad_expression();
    int64_t a = left_->evaluate(object);
    int64_t b = right_->evaluate(object);
    return arithmetic(opcode_, a, b);
}

int64_t EXPRESSION::evaluate_name() {
    const char* name = symbol_name();
    if (name[0] == '\0') return 0;
    OFE::OF_SYMBOL* sym = global_symbols.lookup_def(name);
    if (suppress_order_of_eval_errors_m) {
        if (sym == nullptr || !sym->final_value()) {
            status_ = EXPR_REPEAT;
            return 0;
        }
    } else if (sym == nullptr) {
        EXPR_ERROR(elnk_expr_undef_sym, name);
        return 0;
    }
    if (unreferenced_removed_m && !root_collection->symbol_is_in_link(sym))
        EXPR_ERROR(elnk_expr_del_sym, name, name);
    if (sym->final_value()) return sym->value();
    EXPR_ERROR(elnk_expr_use_before_def, name);
    return 0;
}

// Dot counts from the origin that the caller has set in the object.
int64_t EXPRESSION::evaluate_dot(LINKER_OBJECT* object) {
    DOT_EXPRESSION* dot = as_dot(object);
    if (dot == nullptr) {
        EXPR_ERROR(elnk_expr_bad_lobj);
        return 0;
    }
    if (!dot->run_placement_is_complete()) status_ = EXPR_FAILED;
    return wrap(dot->run_address() - dot->dot_origin());
}

int64_t EXPRESSION::evaluate_assign_to_dot(LINKER_OBJECT* object) {
    if (as_dot(object) == nullptr) {
        EXPR_ERROR(elnk_expr_bad_lobj);
        return 0;
    }
    int64_t old = left_->evaluate(object);
    int64_t value = right_->evaluate(object);
    if (opcode_ == EXPR_OP_ASSIGN) return value;
    EXPR_OPCODE op = operation_of_assignment(opcode_);
    if (op == EXPR_OP_NOP) {
        EXPR_ERROR(elnk_bad_expr_op);
        return 0;
    }
    return arithmetic(op, old, value);
}

int64_t EXPRESSION::evaluate_align(LINKER_OBJECT* object) {
    DOT_EXPRESSION* dot = as_dot(object);
    if (dot == nullptr) {
        EXPR_ERROR(elnk_expr_bad_align_context);
        return 0;
    }
    auto align = static_cast<uint64_t>(left_->evaluate(nullptr));
    if ((align & (align - 1)) != 0) {
        EXPR_ERROR(elnk_bad_align_val);
        return 0;
    }
    uint64_t address = dot->run_address();
    if (align > 1) address = (address + align - 1) & ~(align - 1);
    return wrap(address - dot->dot_origin());
}

int64_t EXPRESSION::evaluate_placement(LINKER_OBJECT* object) {
    if (is_load_op(opcode_) && !silent_m && !object->has_attr(PA_HAS_DATA) && object->size() != 0)
        EXPR_ERROR(elnk_bad_loadrel_op, opname(), object->name());
    if (lacks_placement(opcode_, object)) {
        status_ = EXPR_FAILED;
        return 0;
    }
    switch (opcode_) {
    case EXPR_OP_RUN_START:
        return wrap(object->run_address());
    case EXPR_OP_RUN_END:
        return wrap(object->run_address() + object->size());
    case EXPR_OP_LOAD_START:
        return wrap(object->load_address());
    case EXPR_OP_LOAD_END:
        return wrap(object->load_address() + object->size());
    default:
        return wrap(object->size());
    }
}

int64_t EXPRESSION::evaluate_mem_range_property() {
    if (left_ == nullptr || right_ == nullptr) return bad_expression();
    int64_t page = right_->evaluate(nullptr);
    std::string name = left_->opname();
    MEMORY_RANGE* range = memory_map->lookup_by_name(name.c_str(), static_cast<int>(page));
    if (range == nullptr) {
        EXPR_ERROR(elnk_expr_bad_mem_range_page, opname(), name, static_cast<int>(page));
        return 0;
    }
    switch (opcode_) {
    case EXPR_OP_MEM_START:
        return wrap(range->origin());
    case EXPR_OP_MEM_END:
        return wrap(range->end());
    default:
        return wrap(range->length());
    }
}

bool EXPRESSION::illegal_placement_relative_op(const LINKER_OBJECT* object) const {
    return lacks_placement(opcode_, object);
}

int64_t EXPRESSION::evaluate_assign_to_symbol(LINKER_OBJECT* object) {
    if (left_ == nullptr || right_ == nullptr) return bad_expression();
    const char* name = left_->symbol_name();
    value_ = right_->evaluate(object);
    OFE::OF_SYMBOL* sym = global_symbols.lookup_def(name);
    if (sym == nullptr) {
        EXPR_ERROR(elnk_ldefsym_not_found, name);
        return 0;
    }
    if (!global_symbols.is_linker_symbol(sym)) {
        // A definition of an input file that came first stays as it is, whether its value is known
        // yet or not.
        if (!sym->final_value()) status_ = EXPR_REPEAT;
        return sym->value();
    }
    if (object != nullptr && !object->is_load_segment() && object->has_attr(PA_ALLOCATED) &&
        right_->illegal_placement_relative_op(object)) {
        status_ = EXPR_FAILED;
        return value_;
    }
    OFE::OF_SECTION* section = section_of_value(object);
    if (expression_conflicts(section) || (Target->scn_addr_ops_use_bytes() && is_user_addr_op()))
        section = nullptr;
    bool final = evaluation_occurred() && !reevaluation_required() && !check_subtree_for_failure();
    if (final && user_) report_cut_value(&pos_, value_, name);
    update_linker_symbol(sym, section, static_cast<uint64_t>(value_), final,
                         static_cast<OFE::OF_SYM_BINDING>(left_->binding_));
    return sym->value();
}

// The section that the symbol is relative to, or null: the symbol is absolute.
OFE::OF_SECTION* EXPRESSION::section_of_value(LINKER_OBJECT* object) {
    if (!right_->is_relocatable()) return nullptr;
    bool of_object = (right_->opclass() & EXPR_CLASS_ADDRESS) != 0 || right_->has_dot();
    if (of_object) return object != nullptr ? object->output_OF_SECTION() : nullptr;
    OFE::OF_SYMBOL* sym = right_->find_relocatable_symbol();
    return sym != nullptr ? sym->section() : nullptr;
}

bool EXPRESSION::expression_conflicts(OFE::OF_SECTION* section) {
    if (section == nullptr) return false;
    std::vector<OFE::OF_SYMBOL*> foreign;
    collect_foreign_symbols(right_, section, foreign);
    if (foreign.empty()) return false;
    OFE::OF_SYMBOL* own = right_->find_relocatable_symbol();
    bool own_section = own != nullptr && own->section() == section;
    const char* own_name = own_section ? own->name() : "DOT operator";
    for (OFE::OF_SYMBOL* sym : foreign) {
        if (Target->sections_mix_addressability(section, sym->section()))
            EXPR_ERROR_ABOUT(sym, elnk_ldefsym_mixed_section_types, own_name, section_name(section),
                             sym->name(), section_name(sym->section()));
        else
            EXPR_ERROR_ABOUT(sym, elnk_ldefsym_mixed_sections, own_name, section_name(section),
                             sym->name(), section_name(sym->section()));
    }
    return true;
}
