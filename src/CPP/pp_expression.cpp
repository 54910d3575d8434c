// Conditions by precedence climbing. An operand that doesn't count, as behind "0 &&", is parsed but
// draws no warnings.
#include "CPP/pp_expression.h"

#include <utility>

#include "DIAG/cpp_msgs.h"

namespace {

// Deeper than any condition that people write, and shallow enough for the stack.
constexpr unsigned MAX_DEPTH = 500;
constexpr unsigned SHIFT_MASK = 63;
constexpr int PREC_COMMA = 0;
constexpr int PREC_QUESTION = 1;
constexpr int PREC_NONE = -1;

struct BINARY {
    uint16_t kind;
    int precedence;
};

constexpr BINARY binary_operators[] = {
    {PP_COMMA, PREC_COMMA},
    {PP_QUESTION, PREC_QUESTION},
    {PP_LOR, 2},
    {PP_LAND, 3},
    {PP_OR, 4},
    {PP_XOR, 5},
    {PP_AND, 6},
    {PP_EQ, 7},
    {PP_NE, 7},
    {PP_LT, 8},
    {PP_LE, 8},
    {PP_GT, 8},
    {PP_GE, 8},
    {PP_SHL, 9},
    {PP_SHR, 9},
    {PP_PLUS, 10},
    {PP_MINUS, 10},
    {PP_STAR, 11},
    {PP_SLASH, 11},
    {PP_PERCENT, 11},
};

int precedence(uint16_t kind) {
    for (const BINARY& op : binary_operators)
        if (op.kind == kind) return op.precedence;
    return PREC_NONE;
}

int digit_value(char c) {
    if (pp_is_digit(c)) return c - '0';
    const char small = static_cast<char>(c | 0x20);
    return small >= 'a' && small <= 'f' ? small - 'a' + 10 : -1;
}

bool is_suffix(std::string_view text) {
    unsigned u = 0;
    unsigned l = 0;
    for (char c : text) {
        if (c == 'u' || c == 'U')
            ++u;
        else if (c == 'l' || c == 'L')
            ++l;
        else
            return false;
    }
    return u <= 1 && l <= 2;
}

class EVALUATOR {
  public:
    EVALUATOR(PP_TOKENS tokens, PP_ERRORS& errors) : tokens_(tokens), errors_(errors) {}

    bool run(PP_VALUE& result) {
        result = expression(PREC_COMMA);
        return !failed_ && at_ == tokens_.size();
    }

  private:
    uint16_t kind() const { return at_ < tokens_.size() ? tokens_[at_].kind : uint16_t{0}; }

    PP_VALUE fail() {
        failed_ = true;
        at_ = tokens_.size();
        return {};
    }

    PP_VALUE expression(int lowest) {
        PP_VALUE left = unary();
        while (!failed_) {
            const uint16_t op = kind();
            const int prec = precedence(op);
            if (prec < lowest) break;
            ++at_;
            if (op == PP_QUESTION)
                left = choice(std::move(left));
            else
                left = binary(op, prec, std::move(left));
        }
        return left;
    }

    PP_VALUE choice(PP_VALUE condition) {
        if (depth_ >= MAX_DEPTH) return fail();
        ++depth_;
        const bool taken = condition.value != 0;
        PP_VALUE first = operand(PREC_COMMA, taken);
        if (kind() != PP_COLON) return fail();
        ++at_;
        PP_VALUE second = operand(PREC_QUESTION, !taken);
        --depth_;
        PP_VALUE& result = taken ? first : second;
        result.is_unsigned = first.is_unsigned || second.is_unsigned;
        result.undefined.merge(condition.undefined);
        return result;
    }

    // The right side of an operator that may leave it out of account.
    PP_VALUE operand(int lowest, bool counts) {
        if (!counts) ++dead_;
        PP_VALUE value = expression(lowest);
        if (!counts) {
            --dead_;
            value.undefined.clear();
        }
        return value;
    }

    PP_VALUE binary(uint16_t op, int prec, PP_VALUE left) {
        const bool counts =
            !(op == PP_LAND && left.value == 0) && !(op == PP_LOR && left.value != 0);
        PP_VALUE right = operand(prec + 1, counts);
        if (op == PP_COMMA) return right;
        right.undefined.merge(left.undefined);
        PP_VALUE result{0, false, std::move(right.undefined)};
        const bool is_unsigned = left.is_unsigned || right.is_unsigned;
        if (logic(op, left, right, is_unsigned, result.value)) return result;
        const bool is_shift = op == PP_SHL || op == PP_SHR;
        result.is_unsigned = is_shift ? left.is_unsigned : is_unsigned;
        result.value = arithmetic(op, left.value, right.value, result.is_unsigned);
        return result;
    }

    // Comparisons and logic.
    static bool logic(uint16_t op, const PP_VALUE& left, const PP_VALUE& right, bool is_unsigned,
                      int64_t& result) {
        const int64_t a = left.value;
        const int64_t b = right.value;
        const bool less = is_unsigned ? static_cast<uint64_t>(a) < static_cast<uint64_t>(b) : a < b;
        switch (op) {
        case PP_LAND:
            result = a != 0 && b != 0;
            return true;
        case PP_LOR:
            result = a != 0 || b != 0;
            return true;
        case PP_EQ:
            result = a == b;
            return true;
        case PP_NE:
            result = a != b;
            return true;
        case PP_LT:
            result = less;
            return true;
        case PP_GE:
            result = !less;
            return true;
        case PP_LE:
            result = less || a == b;
            return true;
        case PP_GT:
            result = !less && a != b;
            return true;
        default:
            return false;
        }
    }

    int64_t arithmetic(uint16_t op, int64_t left, int64_t right, bool is_unsigned) {
        const uint64_t a = static_cast<uint64_t>(left);
        const uint64_t b = static_cast<uint64_t>(right);
        const unsigned shift = static_cast<unsigned>(b) & SHIFT_MASK;
        switch (op) {
        case PP_OR:
            return static_cast<int64_t>(a | b);
        case PP_XOR:
            return static_cast<int64_t>(a ^ b);
        case PP_AND:
            return static_cast<int64_t>(a & b);
        case PP_SHL:
            return static_cast<int64_t>(a << shift);
        case PP_SHR:
            return is_unsigned ? static_cast<int64_t>(a >> shift) : left >> shift;
        case PP_PLUS:
            return static_cast<int64_t>(a + b);
        case PP_MINUS:
            return static_cast<int64_t>(a - b);
        case PP_STAR:
            return static_cast<int64_t>(a * b);
        default:
            return quotient(op == PP_SLASH, left, right, is_unsigned);
        }
    }

    int64_t quotient(bool divide, int64_t left, int64_t right, bool is_unsigned) {
        if (right == 0) {
            if (dead_ == 0) errors_.cpp_error(DIAG::cpp_divzero(__FILE__, __LINE__));
            return 0;
        }
        const uint64_t a = static_cast<uint64_t>(left);
        const uint64_t b = static_cast<uint64_t>(right);
        if (is_unsigned) return static_cast<int64_t>(divide ? a / b : a % b);
        if (right == -1) return divide ? static_cast<int64_t>(0 - a) : 0; // may overflow
        return divide ? left / right : left % right;
    }

    PP_VALUE unary() {
        const uint16_t op = kind();
        if (op != PP_TILDE && op != PP_PLUS && op != PP_MINUS && op != PP_NOT) return leaf();
        if (depth_ >= MAX_DEPTH) return fail();
        ++depth_;
        ++at_;
        PP_VALUE v = unary();
        --depth_;
        if (op == PP_TILDE) v.value = ~v.value;
        if (op == PP_MINUS) v.value = static_cast<int64_t>(0 - static_cast<uint64_t>(v.value));
        if (op == PP_NOT) {
            v.value = v.value == 0;
            v.is_unsigned = false;
        }
        return v;
    }

    PP_VALUE leaf() {
        PP_VALUE v;
        if (at_ >= tokens_.size()) return fail();
        const PP_TOKEN& t = tokens_[at_++];
        switch (t.kind) {
        case PP_LPAREN:
            if (depth_ >= MAX_DEPTH) return fail();
            ++depth_;
            v = expression(PREC_COMMA);
            --depth_;
            if (kind() != PP_RPAREN) return fail();
            ++at_;
            return v;
        case PP_NUMBER:
            return pp_integer(t.str(), v) ? v : fail();
        case PP_CHAR:
            return character(t.str(), v) ? v : fail();
        case PP_NAME:
            v.undefined.emplace(t.str());
            return v;
        default:
            return fail();
        }
    }

    // 'a' has the value of its character, 'ab' those of both.
    static bool character(std::string_view text, PP_VALUE& result) {
        uint64_t value = 0;
        unsigned count = 0;
        for (size_t i = 1; i + 1 < text.size(); ++count) {
            unsigned char c = static_cast<unsigned char>(text[i++]);
            if (c == '\\' && i + 1 < text.size()) c = pp_escape(text, i);
            value = value << 8 | c;
        }
        result.value = count == 1 ? static_cast<signed char>(value) : static_cast<int64_t>(value);
        return count != 0;
    }

    PP_TOKENS tokens_;
    PP_ERRORS& errors_;
    size_t at_ = 0;
    unsigned depth_ = 0;
    unsigned dead_ = 0;
    bool failed_ = false;
};

} // namespace

bool pp_integer(std::string_view text, PP_VALUE& result) {
    unsigned radix = 10;
    size_t at = 0;
    if (text.size() > 2 && text[0] == '0' && (text[1] | 0x20) == 'x') {
        radix = 16;
        at = 2;
    } else if (text[0] == '0') {
        radix = 8;
    }
    uint64_t value = 0;
    const size_t begin = at;
    for (; at < text.size(); ++at) {
        const int digit = digit_value(text[at]);
        if (digit < 0 || digit >= static_cast<int>(radix)) break;
        value = value * radix + static_cast<unsigned>(digit);
    }
    const std::string_view suffix = text.substr(at);
    if (at == begin || !is_suffix(suffix)) return false;
    result.value = static_cast<int64_t>(value);
    result.is_unsigned = result.value < 0 || suffix.find_first_of("uU") != suffix.npos;
    return true;
}

unsigned char pp_escape(std::string_view text, size_t& at) {
    static constexpr std::string_view letters = "abfnrtv";
    static constexpr std::string_view meanings = "\a\b\f\n\r\t\v";
    const char c = text[at++];
    if (const size_t which = letters.find(c); which != letters.npos)
        return static_cast<unsigned char>(meanings[which]);
    unsigned value = 0;
    if (c == 'x') {
        for (; at < text.size() && digit_value(text[at]) >= 0; ++at)
            value = (value << 4 | static_cast<unsigned>(digit_value(text[at]))) & 0xFF;
        return static_cast<unsigned char>(value);
    }
    constexpr size_t OCTAL_DIGITS = 3;
    const size_t last = at - 1 + OCTAL_DIGITS;
    if (c < '0' || c > '7') return static_cast<unsigned char>(c);
    for (--at; at < text.size() && at < last && text[at] >= '0' && text[at] <= '7'; ++at)
        value = value << 3 | static_cast<unsigned>(text[at] - '0');
    return static_cast<unsigned char>(value);
}

bool pp_evaluate(PP_TOKENS tokens, PP_VALUE& result, PP_ERRORS& errors) {
    if (EVALUATOR(tokens, errors).run(result)) return true;
    errors.cpp_error(DIAG::cpp_expr_syntax(__FILE__, __LINE__));
    return false;
}
