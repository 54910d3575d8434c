// The expression tree of the command file language. A tree is evaluated at three times: while the
// file is parsed (constants, without an object), during placement (arithmetic on dot), and in the
// assignment passes of EXPR_MGR. Values are signed 64-bit. Nodes live to the end of the process;
// nobody deletes them.
#pragma once

#include <cstdint>
#include <set>
#include <string>

#include "DIAG/source_position.h"
#include "UTIL/oalloc.h"

class LINKER_OBJECT;
class DIAGNOSTIC;
class PPRINT;

namespace OFE {
class OF_SECTION;
class OF_SYMBOL;
} // namespace OFE

/// What a node computes. EXPR_OP_<identifier>, from the table.
enum EXPR_OPCODE : int {
#define EXPR_OP(code, ident, name, cls) EXPR_OP_##ident = code,
#include "ELFLNK/expr/expr_opcodes.def"
#undef EXPR_OP
};

/// Class bits of an operator.
enum EXPR_CLASS : unsigned {
    EXPR_CLASS_ASSIGN = 0x01,
    EXPR_CLASS_LEAF = 0x02,
    EXPR_CLASS_ADDRESS = 0x04,
    EXPR_CLASS_PLACEMENT = 0x08,
    EXPR_CLASS_UNARY = 0x10,
    EXPR_CLASS_BINARY = 0x20,
    EXPR_CLASS_LOAD_OR_DOT = 0x40,
    EXPR_CLASS_RUN = 0x80,
};

/// How strongly an assignment defines its symbol; the values are those of a symbol's binding.
enum EXPR_SYM_BINDING : int { EXPR_BIND_LOCAL = 1, EXPR_BIND_STRONG = 2, EXPR_BIND_WEAK = 3 };

/// How far the evaluation of a node has come.
enum EXPR_STATUS : int {
    EXPR_NOT_EVALUATED = 0,
    EXPR_EVALUATED = 1,
    EXPR_FAILED = 2,
    EXPR_REPEAT = 3
};

class EXPRESSION : public OALLOC<EXPRESSION> {
  public:
    EXPRESSION(EXPR_OPCODE opcode, const SOURCE_POSITION* pos);
    /// A symbol. The name is not copied.
    EXPRESSION(EXPR_OPCODE opcode, const char* symbol, EXPR_SYM_BINDING binding,
               const SOURCE_POSITION* pos);
    /// An integer constant.
    EXPRESSION(EXPR_OPCODE opcode, int64_t value, const SOURCE_POSITION* pos);
    /// An operator. A unary one has its operand on the left and null on the right.
    EXPRESSION(EXPR_OPCODE opcode, EXPRESSION* left, EXPRESSION* right, const SOURCE_POSITION* pos);
    EXPRESSION(const EXPRESSION&) = delete;
    EXPRESSION& operator=(const EXPRESSION&) = delete;

    /// -1, or with a width the tree `-1 & ((1 << bits) - 1)`.
    static EXPRESSION* minusone(unsigned bits);

    /// The value of the tree seen from the object, which may be null.
    int64_t evaluate(LINKER_OBJECT* object);

    bool is_assignment() const { return (opclass() & EXPR_CLASS_ASSIGN) != 0; }
    bool is_assign_to_dot() const;
    bool has_dot() const;
    /// The tree contains ALIGN; its valid operand raises *align where larger.
    bool has_align(unsigned long* align) const;
    bool is_relocatable() const;
    /// The first symbol of the tree that is defined in a section, or null.
    OFE::OF_SYMBOL* find_relocatable_symbol() const;
    /// A user's assignment of a plain start or end operator.
    bool is_user_addr_op() const;

    unsigned opclass() const { return opclass(opcode_); }
    static unsigned opclass(int opcode);
    std::string opname() const;
    /// The tree as text, for traces.
    std::string get_string() const;
    void dump(PPRINT* pp) const;
    void dump_subtree(PPRINT* pp) const;
    /// Adds the names that the tree refers to; of an assignment, its right side only.
    void get_expr_refs(std::set<std::string>& names) const;

    bool evaluation_occurred() const;
    bool reevaluation_required() const;
    bool check_subtree_for_failure() const;

    EXPR_OPCODE opcode() const { return opcode_; }
    EXPRESSION* left() const { return left_; }
    EXPRESSION* right() const { return right_; }
    /// The name of a symbol node, "" if it has none.
    const char* symbol_name() const { return symbol_ ? symbol_ : ""; }
    EXPR_SYM_BINDING binding() const { return binding_; }
    int64_t value() const { return value_; }
    int status() const { return status_; }
    const SOURCE_POSITION& source_position() const { return pos_; }
    uint32_t seq_id() const { return seq_id_; }
    void set_seq_id(uint32_t id) { seq_id_ = id; }
    bool is_user() const { return user_; }
    void set_user(bool user) { user_ = user; }
    /// Nodes on the longest way down, at least 1; the parser refuses trees that are too deep to
    /// walk.
    unsigned depth() const { return depth_; }
    /// Turns this node into the constant 0.
    void make_zero();
    /// Replaces what an assignment assigns.
    void set_right(EXPRESSION* right) { right_ = right; }

    /// Errors of evaluation aren't shown; what failed is to be tried again.
    static bool silent_m;
    /// Symbols without a final value are waited for, not reported.
    static bool suppress_order_of_eval_errors_m;
    /// What nothing refers to is out of the link: a symbol that isn't in it won't be.
    static bool unreferenced_removed_m;

  private:
    int64_t evaluate_name();
    int64_t evaluate_dot(LINKER_OBJECT* object);
    int64_t evaluate_placement(LINKER_OBJECT* object);
    int64_t evaluate_align(LINKER_OBJECT* object);
    int64_t evaluate_mem_range_property();
    int64_t evaluate_unary(LINKER_OBJECT* object);
    int64_t evaluate_binary(LINKER_OBJECT* object);
    int64_t evaluate_assign_to_dot(LINKER_OBJECT* object);
    int64_t evaluate_assign_to_symbol(LINKER_OBJECT* object);
    int64_t bad_expression();
    OFE::OF_SECTION* section_of_value(LINKER_OBJECT* object);
    bool illegal_placement_relative_op(const LINKER_OBJECT* object) const;
    bool expression_conflicts(OFE::OF_SECTION* section);
    void evaluation_error(DIAGNOSTIC& diag, const void* about);

    EXPR_OPCODE opcode_;
    EXPRESSION* left_ = nullptr;
    EXPRESSION* right_ = nullptr;
    const char* symbol_ = nullptr;
    EXPR_SYM_BINDING binding_ = EXPR_BIND_STRONG;
    int64_t value_ = 0;
    int status_ = EXPR_NOT_EVALUATED;
    SOURCE_POSITION pos_;
    uint32_t seq_id_ = 0;
    unsigned depth_ = 1;
    bool user_ = true;
};
