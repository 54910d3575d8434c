// The ECC directive, which describes algorithms, and ECC = { ... } of a memory range, which says
// whose ECC bytes the range holds.
#include "ELFLNK/ecc/ecc_manager.h"

#include "ELFLNK/memmap/memory_map.h"
#include "ELFLNK/parse_lcf/lcf_errors.h"
#include "ELFLNK/parse_lcf/lcf_parser.h"
#include "UTIL/savestr.h"

namespace {

constexpr unsigned ADDRESS_WORDS = ECC_ALGORITHM::ECC_BITS;
constexpr unsigned HAMMING_WORDS = ADDRESS_WORDS + 2 * ECC_ALGORITHM::ECC_BITS;
constexpr unsigned UNIT_SHIFT = 3; // a unit has eight bytes
constexpr uint64_t PARITY_LIMIT = 0xFF;

uint32_t byte_swapped(uint32_t word) {
    return word << 24 | (word & 0xFF00) << 8 | (word >> 8 & 0xFF00) | word >> 24;
}

// Eight words for the address, then a pair for the data of each bit, first byte first.
void set_masks(ECC_ALGORITHM& algorithm, const std::array<uint32_t, HAMMING_WORDS>& words) {
    ECC_ALGORITHM::ADDRESS_BITS address{};
    ECC_ALGORITHM::DATA_BITS data{};
    for (unsigned bit = 0; bit < ECC_ALGORITHM::ECC_BITS; ++bit) {
        const uint32_t* pair = &words[ADDRESS_WORDS + 2 * bit];
        address[bit] = words[bit] >> UNIT_SHIFT;
        data[bit] = uint64_t{byte_swapped(pair[1])} << 32 | byte_swapped(pair[0]);
    }
    algorithm.set_hamming_masks(address, data);
}

} // namespace

void LCF_PARSER::ecc_directive() {
    latch_ = false;
    set_mode(MODE_MEMORY); // "name:PARITY_MASK" is three tokens
    lex();
    if (lex_skip_required('{'))
        while (!at_end('}')) ecc_algorithm();
    clear_mode(MODE_MEMORY);
    lex_skip_required('}');
    latch_ = false;
}

void LCF_PARSER::ecc_algorithm() {
    if (!lex_required(TOK_NAME)) {
        lex();
        return;
    }
    const SOURCE_POSITION pos = token().position();
    const char* name = savestr(text());
    lex();
    if (!lex_skip_required(':')) return;
    ECC_ALGORITHM algorithm;
    bool has_parity = false;
    while (!at_end('}')) {
        if (lex_skip_optional(',')) continue;
        if (code() == TOK_NAME && (lex_peek() == ':' || lex_peek() == '}')) break;
        ecc_parameter(algorithm, has_parity);
    }
    if (!has_parity) DIAG_REPORT_AT(&pos, elnk_ecc_parity_mask_missing);
    ecc_manager.add_algorithm(name, algorithm);
}

void LCF_PARSER::ecc_parameter(ECC_ALGORITHM& algorithm, bool& has_parity) {
    const SOURCE_POSITION pos = token().position();
    uint64_t value = 0;
    const bool is_parity = keyword("PARITY_MASK");
    if (is_parity || keyword("ADDRESS_MASK")) {
        lex();
        lex_skip_optional('=');
        if (!expr_const_expr(value)) return skip_ecc_value();
        if (!is_parity) return algorithm.set_address_mask(static_cast<uint32_t>(value));
        has_parity = true;
        if (value > PARITY_LIMIT) DIAG_REPORT_AT(&pos, elnk_parity_mask_not_8bits);
        algorithm.set_parity_mask(static_cast<uint32_t>(value & PARITY_LIMIT));
    } else if (keyword("MIRRORING")) {
        lex();
        lex_skip_optional('=');
        mirroring(algorithm);
    } else if (keyword("HAMMING_MASK")) {
        lex();
        lex_skip_optional('=');
        hamming_mask(algorithm);
    } else {
        LCF_ERROR(elnk_bad_ecc_parameter);
        lex();
        if (lex_skip_optional('=')) skip_ecc_value();
    }
}

// What is left of a parameter that went wrong.
void LCF_PARSER::skip_ecc_value() {
    if (code() == ',' || at_end('}')) return;
    if (code() != TOK_NAME || (lex_peek() != '=' && lex_peek() != ':')) lex();
}

void LCF_PARSER::mirroring(ECC_ALGORITHM& algorithm) {
    if (!lex_required(TOK_NAME)) return;
    const std::string word = text();
    const std::string_view scheme = word == "ASPEN"   ? std::string_view("A")
                                    : word == "BIRCH" ? std::string_view("ABABABAB")
                                                      : std::string_view(word);
    if (!algorithm.parse_mirror_scheme(scheme)) LCF_ERROR(elnk_ecc_bad_mirroring, word);
    lex();
}

void LCF_PARSER::hamming_mask(ECC_ALGORITHM& algorithm) {
    if (code() == TOK_NAME) {
        if (keyword_cs("FMC"))
            LCF_ERROR(elnk_ecc_fmc_deprecated);
        else if (!keyword_cs("R4"))
            LCF_ERROR(elnk_bad_hamming_mask, text());
        lex();
        return;
    }
    std::array<uint32_t, HAMMING_WORDS> words{};
    unsigned count = 0;
    if (!lex_required(TOK_INT)) return;
    while (code() == TOK_INT) {
        if (count == HAMMING_WORDS) {
            LCF_ERROR(elnk_bad_hamming_mask, text());
        } else {
            words[count++] = static_cast<uint32_t>(token().value);
        }
        lex();
        if (code() != ',' || lex_peek() != TOK_INT) break;
        lex();
    }
    set_masks(algorithm, words);
}

// input_range = name, input_page = expression, algorithm = name, fill = boolean.
void LCF_PARSER::ecc_spec(MEMORY_RANGE* range) {
    ECC_SPECIFICATION spec;
    spec.position = token().position();
    spec.ecc_range = range;
    if (!lex_skip_required('{')) return;
    const char* input = nullptr;
    bool has_page = false;
    uint64_t page = 0;
    while (!at_end('}')) {
        if (lex_skip_optional(',')) continue;
        const bool is_input = keyword("INPUT_RANGE");
        const bool is_page = keyword("INPUT_PAGE");
        const bool is_algorithm = keyword("ALGORITHM");
        const bool is_fill = keyword("FILL");
        if (!is_input && !is_page && !is_algorithm && !is_fill) {
            LCF_ERROR(elnk_bad_ecc_spec_parameter, text());
            lex();
            if (lex_skip_optional('=')) skip_ecc_value();
            continue;
        }
        lex();
        lex_skip_optional('=');
        if (is_page) {
            has_page = expr_const_expr(page);
            if (!has_page) skip_ecc_value();
        } else if (is_fill) {
            bool fill = true;
            if (expr_boolean(fill)) spec.no_fill = !fill;
        } else if (lex_required(TOK_NAME)) {
            (is_input ? input : spec.algorithm) = savestr(text());
            lex();
        } else {
            skip_ecc_value();
        }
    }
    lex_skip_required('}');
    add_ecc_spec(spec, input, has_page, static_cast<int>(page));
}

void LCF_PARSER::add_ecc_spec(ECC_SPECIFICATION& spec, const char* input, bool has_page, int page) {
    const SOURCE_POSITION& pos = spec.position;
    if (input == nullptr) {
        DIAG_REPORT_AT(&pos, elnk_ecc_spec_requires_range);
        return;
    }
    spec.input_range =
        has_page ? memory_map->lookup_by_name(input, page) : memory_map->lookup_by_name(input);
    if (spec.input_range == nullptr) {
        DIAG_REPORT_AT(&pos, elnk_no_such_mem_range, input);
        return;
    }
    if (!has_page && memory_map->is_name_ambiguous(input)) {
        DIAG_REPORT_AT(&pos, elnk_ambiguous_memory_range, input);
        return;
    }
    const ECC_SPECIFICATION* other = spec.input_range->ecc_spec();
    if (other != nullptr && other->ecc_range == spec.input_range) {
        DIAG_REPORT_AT(&pos, elnk_cant_calc_ecc_for_ecc, input);
        return;
    }
    ecc_manager.add_specification(spec);
}

bool LCF_PARSER::expr_boolean(bool& value) {
    const bool yes = keyword("YES") || keyword("TRUE");
    const bool known = yes || keyword("NO") || keyword("FALSE");
    if (known)
        value = yes;
    else
        LCF_ERROR(elnk_bad_boolean, text());
    if (code() != ',' && !at_end('}')) lex();
    return known;
}
