// Remembers every symbol assignment of the link and evaluates them again and again until they
// settle: an assignment may depend on addresses that exist only after placement, and on assignments
// that come later.
#pragma once

#include <cstddef>
#include <set>
#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "ELFLNK/expr/expression.h"

/// An assignment, the object that it belongs to, and the output symbol that it defines (null until
/// there is one).
struct OBJREL_ASG {
    EXPRESSION* expr;
    LINKER_OBJECT* object;
    OFE::OF_SYMBOL* symbol;
    bool user;
    bool redef_reported = false;
    bool removed = false; // settled, or taken back
};

class EXPR_MGR {
  public:
    /// Registers an assignment; any other expression is fatal. Its symbol is made now if there is
    /// an output file.
    void add_assignment(EXPRESSION* expr, LINKER_OBJECT* object, bool user);
    /// Makes the symbols of the assignments that came before the output file did. Called once it
    /// exists.
    void create_pending_symbols();
    /// Warns where a user's assignment stands in for what an input file defines.
    void report_redefinition(const OFE::OF_SYMBOL* assigned, OFE::OF_SYMBOL* replaced) const;
    /// Drops an assignment from the list; nothing happens if it isn't there.
    void remove_assignment(const EXPRESSION* expr);
    /// Drops the assignments whose symbols have left the link.
    void drop_undefined();
    /// One assignment belongs to another object from now on.
    void move_assignment(const EXPRESSION* expr, LINKER_OBJECT* to);
    /// All assignments of an object belong to another one from now on.
    void move_assignments(const LINKER_OBJECT* from, LINKER_OBJECT* to);
    /// Adds the names that the expression refers to.
    void add_refs(const EXPRESSION* expr);
    /// Some expression of the link refers to the name.
    bool is_refd(const char* name) const;
    /// Every reference to the name in the tree becomes the constant 0.
    void replace_sym_with_zero(EXPRESSION* expr, const char* name);
    /// Warns of second assignments to one name.
    void check_for_redefs(bool sort);
    /// The passes over all assignments that are not settled. Without report, errors wait for a
    /// later call.
    void evaluate_all_sym_assignments(bool report);
    /// One evaluation; errors are shown only with report.
    int64_t evaluate(EXPRESSION* expr, LINKER_OBJECT* object, bool report);

    /// Assignments not yet settled, in the order of the last evaluation.
    const std::vector<OBJREL_ASG>& pending() const { return assignments_; }

  private:
    void create_sym_for_assign(OBJREL_ASG& asg);
    void evaluate_until_settled(bool report);
    bool evaluate_one(std::size_t i, bool report);
    void sort_assignments();

    std::vector<OBJREL_ASG> assignments_;
    std::unordered_map<const OFE::OF_SYMBOL*, const EXPRESSION*> user_symbols_; // strong ones
    std::unordered_set<std::string_view> refs_; // texts that live to the end
    bool in_pass_ = false;
};

/// The one manager.
EXPR_MGR* get_expr_mgr();
