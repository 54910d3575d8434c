// The list of assignments and its passes. An assignment leaves the list when its value is settled;
// what is left is tried again by the next call, when more objects have been placed.
#include "ELFLNK/expr/expr_mgr.h"

#include <algorithm>
#include <functional>
#include <string_view>
#include <unordered_map>

#include "DIAG/elnk_msgs.h"
#include "ELFLNK/build/build.h"
#include "ELFLNK/file/file_manager.h"
#include "ELFLNK/file/obj_file.h"
#include "ELFLNK/object/root_collection.h"
#include "ELFLNK/symbol/symbol_table.h"
#include "OBJEDIT04/ofe/of_symbol.h"
#include "UTIL/savestr.h"
#include "UTIL/trace.h"

namespace {

bool OBJREL_ASG_less(const OBJREL_ASG& a, const OBJREL_ASG& b) {
    bool a_root = a.object == root_collection;
    bool b_root = b.object == root_collection;
    if (a_root != b_root) return a_root;
    return a.expr->seq_id() < b.expr->seq_id();
}

bool is_done(const OBJREL_ASG& asg) {
    return asg.removed;
}

const char* assigned_name(const EXPRESSION* expr) {
    return expr->left() != nullptr ? expr->left()->symbol_name() : "";
}

bool is_settled(const EXPRESSION* expr) {
    return expr->evaluation_occurred() && !expr->reevaluation_required() &&
           !expr->check_subtree_for_failure();
}

std::string file_name_of(OFE::OF_SYMBOL* sym) {
    OBJ_FILE* file = file_manager.lookup_OF_FILE(sym->ofile());
    return file != nullptr ? file->name() : "(unknown file)";
}

} // namespace

EXPR_MGR* get_expr_mgr() {
    static EXPR_MGR manager;
    return &manager;
}

void EXPR_MGR::add_assignment(EXPRESSION* expr, LINKER_OBJECT* object, bool user) {
    if (expr == nullptr || !expr->is_assignment()) {
        DIAG_REPORT(elnk_bad_expr_op);
        return;
    }
    trace_eval.printf("add_assignment: %s\n", expr->get_string());
    expr->set_user(user);
    OBJREL_ASG asg{expr, object, nullptr, user};
    create_sym_for_assign(asg);
    assignments_.push_back(asg);
    add_refs(expr);
}

void EXPR_MGR::create_pending_symbols() {
    for (OBJREL_ASG& asg : assignments_)
        if (asg.symbol == nullptr) create_sym_for_assign(asg);
}

void EXPR_MGR::create_sym_for_assign(OBJREL_ASG& asg) {
    if (output_OF_FILE() == nullptr || asg.expr->is_assign_to_dot() || asg.expr->left() == nullptr)
        return;
    const char* name = assigned_name(asg.expr);
    EXPR_SYM_BINDING binding = asg.expr->left()->binding();
    OFE::OF_SYMBOL* def = global_symbols.lookup_def(name);
    bool global = def != nullptr && def->binding() != OFE::OF_SYM_BINDING_LOCAL;
    if (def != nullptr &&
        ((global && global_symbols.is_linker_symbol(def)) || global_symbols.override_symbols())) {
        asg.symbol = def;
        global_symbols.update_linker_symbol(def, asg.object);
    } else if (global && binding == EXPR_BIND_WEAK) {
        asg.symbol = def; // gives way to the definition that is there
    } else {
        asg.symbol = create_linker_symbol(name, asg.expr->source_position(), 0,
                                          static_cast<OFE::OF_SYM_BINDING>(binding));
        if (asg.symbol == nullptr) return;
        global_symbols.update_linker_symbol(asg.symbol, asg.object);
        if (asg.user && binding == EXPR_BIND_STRONG) user_symbols_[asg.symbol] = asg.expr;
        if (global) {
            report_redefinition(asg.symbol, def);
            global_symbols.update_symbol(def, asg.symbol);
        }
    }
    global_symbols.remove_undef_name(name);
}

void EXPR_MGR::report_redefinition(const OFE::OF_SYMBOL* assigned, OFE::OF_SYMBOL* replaced) const {
    auto found = user_symbols_.find(assigned);
    if (found == user_symbols_.end()) return;
    DIAG_REPORT_AT(&found->second->source_position(), elnk_infile_sym_redef, assigned->name(),
                   file_name_of(replaced));
}

void EXPR_MGR::remove_assignment(const EXPRESSION* expr) {
    // An evaluation in progress may drop an object, and its assignments with it: the list only
    // shrinks between passes.
    for (OBJREL_ASG& asg : assignments_)
        if (asg.expr == expr) asg.removed = true;
    if (!in_pass_) std::erase_if(assignments_, is_done);
}

void EXPR_MGR::drop_undefined() {
    std::erase_if(assignments_, [](const OBJREL_ASG& asg) {
        return asg.symbol != nullptr &&
               global_symbols.lookup_def(assigned_name(asg.expr)) == nullptr;
    });
}

static void give_assignment(OBJREL_ASG& asg, LINKER_OBJECT* to) {
    asg.object = to;
    if (asg.symbol != nullptr && global_symbols.is_linker_symbol(asg.symbol))
        global_symbols.update_linker_symbol(asg.symbol, to);
}

void EXPR_MGR::move_assignment(const EXPRESSION* expr, LINKER_OBJECT* to) {
    for (OBJREL_ASG& asg : assignments_)
        if (asg.expr == expr) give_assignment(asg, to);
}

void EXPR_MGR::move_assignments(const LINKER_OBJECT* from, LINKER_OBJECT* to) {
    for (OBJREL_ASG& asg : assignments_)
        if (asg.object == from) give_assignment(asg, to);
}

void EXPR_MGR::add_refs(const EXPRESSION* expr) {
    std::set<std::string> names;
    expr->get_expr_refs(names);
    for (const std::string& name : names) refs_.insert(savestr(name));
}

bool EXPR_MGR::is_refd(const char* name) const {
    return !refs_.empty() && refs_.find(name) != refs_.end();
}

void EXPR_MGR::replace_sym_with_zero(EXPRESSION* expr, const char* name) {
    if (expr == nullptr) return;
    if (expr->opcode() == EXPR_OP_SYMBOL && std::string_view(expr->symbol_name()) == name) {
        expr->make_zero();
        return;
    }
    if (!expr->is_assignment()) replace_sym_with_zero(expr->left(), name);
    replace_sym_with_zero(expr->right(), name);
}

void EXPR_MGR::sort_assignments() {
    std::stable_sort(assignments_.begin(), assignments_.end(), OBJREL_ASG_less);
}

void EXPR_MGR::check_for_redefs(bool sort) {
    if (sort) sort_assignments();
    std::unordered_map<std::string_view, const EXPRESSION*> first;
    for (OBJREL_ASG& asg : assignments_) {
        const char* name = assigned_name(asg.expr);
        if (first.emplace(name, asg.expr).second || asg.redef_reported) continue;
        DIAG_REPORT_AT(&asg.expr->source_position(), elnk_abs_sym_redef, name);
        asg.redef_reported = true;
    }
}

// Forward references resolve in as many passes as the chain of assignments is long; when nothing
// settles any more, a last pass says what is wrong with the rest.
void EXPR_MGR::evaluate_all_sym_assignments(bool report) {
    if (assignments_.empty()) return;
    sort_assignments();
    check_for_redefs(false);
    in_pass_ = true;
    EXPRESSION::suppress_order_of_eval_errors_m = true;
    evaluate_until_settled(report);
    EXPRESSION::suppress_order_of_eval_errors_m = false;
    for (size_t i = 0; i < assignments_.size(); ++i)
        if (!assignments_[i].removed && assignments_[i].expr->reevaluation_required())
            evaluate_one(i, report);
    in_pass_ = false;
    std::erase_if(assignments_, is_done);
}

// The passes. In the first one every assignment is evaluated, in the later ones those that wait;
// but as only the name that an assignment settles can help another one, a pass visits just those
// that refer to it: behind the assignment in the same pass, in front of it in the next.
void EXPR_MGR::evaluate_until_settled(bool report) {
    std::unordered_map<std::string, std::vector<size_t>> waiting;
    for (size_t i = 0; i < assignments_.size(); ++i) {
        std::set<std::string> names;
        assignments_[i].expr->get_expr_refs(names);
        for (const std::string& name : names) waiting[name].push_back(i);
    }
    static const std::vector<size_t> nobody;
    auto users_of = [&](size_t i) -> const std::vector<size_t>& {
        auto found = waiting.find(assigned_name(assignments_[i].expr));
        return found != waiting.end() ? found->second : nobody;
    };
    std::vector<size_t> pass; // from the second pass on a heap, lowest index first
    std::vector<size_t> next;
    for (size_t i = 0; i < assignments_.size(); ++i) {
        if (!evaluate_one(i, report)) continue;
        for (size_t user : users_of(i))
            if (user < i) next.push_back(user);
    }
    while (!next.empty()) {
        pass.swap(next);
        std::make_heap(pass.begin(), pass.end(), std::greater<>());
        while (!pass.empty()) {
            std::pop_heap(pass.begin(), pass.end(), std::greater<>());
            size_t i = pass.back();
            pass.pop_back();
            if (!assignments_[i].expr->reevaluation_required() || !evaluate_one(i, report))
                continue;
            for (size_t user : users_of(i)) {
                if (user < i) {
                    next.push_back(user);
                } else if (user > i) {
                    pass.push_back(user);
                    std::push_heap(pass.begin(), pass.end(), std::greater<>());
                }
            }
        }
    }
}

// True if the assignment is settled and leaves the list.
bool EXPR_MGR::evaluate_one(size_t i, bool report) {
    if (assignments_[i].removed) return false;
    EXPRESSION* expr = assignments_[i].expr;
    const LINKER_OBJECT* object = assignments_[i].object;
    trace_eval.printf("%s(%u): %s\n", object != nullptr ? object->name() : "", expr->seq_id(),
                      expr->get_string());
    int64_t value = evaluate(expr, assignments_[i].object, report);
    bool settled = is_settled(expr);
    trace_eval.printf("   (value = %08x, is_valid = %s, is_final = %s)\n", value,
                      expr->check_subtree_for_failure() ? "no" : "yes", settled ? "yes" : "no");
    if (settled) assignments_[i].removed = true;
    return settled;
}

int64_t EXPR_MGR::evaluate(EXPRESSION* expr, LINKER_OBJECT* object, bool report) {
    bool saved = EXPRESSION::silent_m;
    EXPRESSION::silent_m = !report;
    int64_t value = expr->evaluate(object);
    EXPRESSION::silent_m = saved;
    return value;
}
