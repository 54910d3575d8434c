// Expressions and assignments. While one is parsed, "*", "/" and their like are operators. Binary
// operators are parsed by climbing their precedence levels, so that the depth of the recursion is
// that of the parentheses, which is limited, as is the depth of the tree that comes out.
#include "ELFLNK/expr/expression.h"

#include "ELFLNK/parse_lcf/lcf_errors.h"
#include "ELFLNK/parse_lcf/lcf_parser.h"
#include "UTIL/savestr.h"

namespace {

// A deeper tree can't be walked safely.
constexpr unsigned max_tree_depth = 1000;

constexpr int level_assign = 0;
constexpr int level_lowest = 1;

struct BINARY_OP {
    int token;
    int level;
    EXPR_OPCODE op;
};

constexpr BINARY_OP binary_ops[] = {
    {'*', 8, EXPR_OP_MUL},
    {'/', 8, EXPR_OP_DIV},
    {'%', 8, EXPR_OP_MOD},
    {'+', 7, EXPR_OP_ADD},
    {'-', 7, EXPR_OP_SUB},
    {TOK_SHL, 6, EXPR_OP_SHL},
    {TOK_SHR, 6, EXPR_OP_SHR},
    {'<', 5, EXPR_OP_LT},
    {'>', 5, EXPR_OP_GT},
    {TOK_LE, 5, EXPR_OP_LE},
    {TOK_GE, 5, EXPR_OP_GE},
    {TOK_EQ, 5, EXPR_OP_EQ},
    {TOK_NE, 5, EXPR_OP_NE},
    {'&', 4, EXPR_OP_AND},
    {'|', 3, EXPR_OP_OR},
    {TOK_LAND, 2, EXPR_OP_LAND},
    {TOK_LOR, 1, EXPR_OP_LOR},
    {'=', level_assign, EXPR_OP_ASSIGN},
    {TOK_ADD_ASSIGN, level_assign, EXPR_OP_ADD_ASSIGN},
    {TOK_SUB_ASSIGN, level_assign, EXPR_OP_SUB_ASSIGN},
    {TOK_MUL_ASSIGN, level_assign, EXPR_OP_MUL_ASSIGN},
    {TOK_DIV_ASSIGN, level_assign, EXPR_OP_DIV_ASSIGN},
};

const BINARY_OP* find_binary(int token) {
    for (const BINARY_OP& op : binary_ops)
        if (op.token == token) return &op;
    return nullptr;
}

bool ends_expression(int token) {
    return token == ')' || token == ',' || token == ';' || token == '{' || token == '}' ||
           token == TOK_NAME;
}

EXPR_OPCODE unary_op(int token) {
    switch (token) {
    case '-':
        return EXPR_OP_NEG;
    case '~':
        return EXPR_OP_COMPL;
    case '!':
        return EXPR_OP_NOT;
    default:
        return EXPR_OP_NOP;
    }
}

} // namespace

EXPRESSION* LCF_PARSER::expression() {
    latch_ = false;
    set_mode(MODE_EXPR);
    EXPRESSION* expr = expr_binary(level_lowest);
    clear_mode(MODE_EXPR);
    return expr;
}

// Null for an operand that is missing or a tree that is too deep.
EXPRESSION* LCF_PARSER::checked(EXPRESSION* expr) {
    if (expr == nullptr || expr->depth() <= max_tree_depth) return expr;
    LCF_ERROR(elnk_bad_expr);
    return nullptr;
}

// An operand, and all operators of at least this level with their right sides.
EXPRESSION* LCF_PARSER::expr_binary(int level) {
    EXPRESSION* left = expr_unary();
    while (left != nullptr && !ends_expression(code())) {
        const BINARY_OP* op = find_binary(code());
        if (op == nullptr) {
            LCF_ERROR(elnk_syn_bad_bin_op, text());
            break;
        }
        if (op->level < level) break;
        SOURCE_POSITION pos = token().position();
        lex();
        EXPRESSION* right = expr_binary(op->level + 1);
        if (right == nullptr) return nullptr;
        left = checked(new EXPRESSION(op->op, left, right, &pos));
    }
    return left;
}

EXPRESSION* LCF_PARSER::expr_unary() {
    SOURCE_POSITION pos = token().position();
    EXPR_OPCODE op = unary_op(code());
    if (op == EXPR_OP_NOP) return expr_operator_call();
    if (!enter_nesting()) {
        LCF_ERROR(elnk_syn_bad_expr_leaf, text());
        return nullptr;
    }
    lex();
    EXPRESSION* operand = expr_unary();
    leave_nesting();
    return operand == nullptr ? nullptr : new EXPRESSION(op, operand, nullptr, &pos);
}

// The operators that look like a call; without "(" behind them the words are symbols.
EXPRESSION* LCF_PARSER::expr_operator_call() {
    if (code() != TOK_NAME || lex_peek() != '(') return expr_leaf();
    SOURCE_POSITION pos = token().position();
    if (keyword("START")) return expr_mem_range_property(EXPR_OP_MEM_START);
    if (keyword("END")) return expr_mem_range_property(EXPR_OP_MEM_END);
    if (keyword("SIZE")) return expr_mem_range_property(EXPR_OP_MEM_SIZE);
    bool is_align = keyword("ALIGN");
    if (!is_align && !keyword("PHY")) return expr_leaf();
    if (!enter_nesting()) {
        LCF_ERROR(elnk_syn_bad_expr_leaf, text());
        return nullptr;
    }
    lex();
    lex();
    EXPRESSION* operand = is_align ? expr_binary(level_lowest) : expr_sym(false);
    leave_nesting();
    lex_skip_required(')');
    if (operand == nullptr) return nullptr;
    return new EXPRESSION(is_align ? EXPR_OP_ALIGN : EXPR_OP_PHY, operand, nullptr, &pos);
}

EXPRESSION* LCF_PARSER::expr_mem_range_property(int op) {
    SOURCE_POSITION pos = token().position();
    lex();
    lex();
    if (code() != TOK_NAME) {
        LCF_ERROR(elnk_syn_bad_mem_range_name, text());
        if (!at_end(')')) lex();
        lex_skip_optional(')');
        return nullptr;
    }
    auto* range = new EXPRESSION(EXPR_OP_SYMBOL, savestr(text()), EXPR_BIND_STRONG, &pos);
    int64_t page = 0;
    lex();
    if (lex_skip_optional(',') && lex_required(TOK_INT)) {
        page = static_cast<int64_t>(token().value);
        lex();
    }
    lex_skip_required(')');
    return new EXPRESSION(static_cast<EXPR_OPCODE>(op), range,
                          new EXPRESSION(EXPR_OP_INT, page, &pos), &pos);
}

EXPRESSION* LCF_PARSER::expr_leaf() {
    SOURCE_POSITION pos = token().position();
    if (code() == '(' && enter_nesting()) {
        lex();
        EXPRESSION* inner = expr_binary(level_lowest);
        leave_nesting();
        return lex_skip_required(')') ? inner : nullptr;
    }
    if (code() == TOK_INT) {
        auto* value = new EXPRESSION(EXPR_OP_INT, static_cast<int64_t>(token().value), &pos);
        lex();
        return value;
    }
    if (code() == '.' || code() == TOK_NAME) return expr_sym(true);
    LCF_ERROR(elnk_syn_bad_expr_leaf, text());
    return nullptr;
}

// A symbol, WEAK(symbol), or dot where it is allowed.
EXPRESSION* LCF_PARSER::expr_sym(bool allow_dot) {
    SOURCE_POSITION pos = token().position();
    if (code() == '.' && allow_dot) {
        lex();
        return new EXPRESSION(EXPR_OP_DOT, &pos);
    }
    if (keyword("WEAK") && lex_peek() == '(') return expr_weak_sym();
    if (code() != TOK_NAME) {
        LCF_ERROR(elnk_syn_bad_expr_sym, text());
        return nullptr;
    }
    auto* symbol = new EXPRESSION(EXPR_OP_SYMBOL, savestr(text()), EXPR_BIND_STRONG, &pos);
    lex();
    return symbol;
}

EXPRESSION* LCF_PARSER::expr_weak_sym() {
    SOURCE_POSITION pos = token().position();
    lex();
    lex();
    if (code() != TOK_NAME) {
        LCF_ERROR(elnk_syn_bad_expr_sym, text());
        return nullptr;
    }
    auto* symbol = new EXPRESSION(EXPR_OP_SYMBOL, savestr(text()), EXPR_BIND_WEAK, &pos);
    lex();
    lex_skip_required(')');
    return symbol;
}

// Ends behind the ";" or ",". On an error takes what is left of the assignment, so that the parse
// goes on.
EXPRESSION* LCF_PARSER::expr_assignment() {
    set_mode(MODE_EXPR);
    SOURCE_POSITION pos = token().position();
    EXPRESSION* left = expr_sym(true);
    const BINARY_OP* op = find_binary(code());
    EXPRESSION* right = nullptr;
    if (left != nullptr && (op == nullptr || op->level != level_assign))
        LCF_ERROR(elnk_syn_bad_agn_op, text());
    if (op != nullptr && op->level == level_assign) {
        lex();
        right = expr_binary(level_lowest);
    }
    if (left == nullptr || right == nullptr)
        while (code() != ';' && code() != ',' && !at_end('}')) lex();
    clear_mode(MODE_EXPR);
    if (code() == ';' || code() == ',')
        lex();
    else
        lex_skip_required(';');
    if (left == nullptr || right == nullptr) return nullptr;
    return checked(new EXPRESSION(op->op, left, right, &pos));
}

bool LCF_PARSER::expr_const_starts() const {
    return code() == TOK_INT || code() == '(' || unary_op(code()) != EXPR_OP_NOP;
}

bool LCF_PARSER::expr_const_expr(uint64_t& value) {
    if (!expr_const_starts()) {
        LCF_ERROR(elnk_syn_bad_expr, text());
        return false;
    }
    EXPRESSION* expr = expression();
    if (expr == nullptr) {
        LCF_ERROR(elnk_syn_bad_expr_eval);
        return false;
    }
    value = static_cast<uint64_t>(expr->evaluate(nullptr));
    return true;
}

// A single integer, of which radix and digits count; not an expression.
bool LCF_PARSER::int_property_literal(uint64_t& value, unsigned& radix, unsigned& digits) {
    lex();
    lex_skip_optional('=');
    unsigned parens = 0;
    while (lex_skip_optional('(')) ++parens;
    bool found = lex_required(TOK_INT);
    if (found) {
        value = token().value;
        radix = token().radix;
        digits = token().digits;
        lex();
    }
    while (parens-- > 0)
        if (!lex_skip_required(')')) break;
    return found;
}

bool LCF_PARSER::int_property_literal(uint64_t& value) {
    unsigned radix = 0;
    unsigned digits = 0;
    return int_property_literal(value, radix, digits);
}
