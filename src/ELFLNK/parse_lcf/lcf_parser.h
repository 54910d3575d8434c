// Reads a linker command file: options and input files, the MEMORY and SECTIONS directives, symbol
// assignments. A recursive descent parser over the lexer; each operation is one piece of the
// grammar, finds its first token as the current one, and leaves the first token behind it. A syntax
// error doesn't stop the parse: the first one sets a latch that silences those which follow from
// it, until the parser stands at the start of something new.
//
// Input is not trusted: every loop takes a token per turn or ends, and nesting is limited.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "ELFLNK/parse_lcf/command_parser.h"
#include "ELFLNK/parse_lcf/lcf_lexer.h"

class COLLECTION;
class ECC_ALGORITHM;
class EXPRESSION;
class LINKER_OBJECT;
class LOCATOR;
class MEMORY_RANGE;
class SECTION_SPEC;
class VER_DEF;
struct ECC_SPECIFICATION;
struct PLACEMENT_PROPERTIES;

class LCF_PARSER : public COMMAND_PARSER, protected LCF_LEXER {
  public:
    /// Reads the source's text under the name of the file.
    LCF_PARSER(std::unique_ptr<LCF_SOURCE> source, const char* file);

    void parse() override;
    const char* option_argument() override;
    void define_ppsym(const char* name, const char* value) override;
    void undefine_ppsym(const char* name) override;
    /// The next line comes from there; also a new start after errors.
    void set_srcloc(const char* file, unsigned line);

    /// Numbers assignments, output sections and section specifications in file order.
    static uint32_t next_seq_id() { return next_seq_id_m++; }
    /// True once a SECTIONS directive was read.
    static bool sections_seen() { return sections_seen_m; }

  protected:
    /// Shows a syntax error that the latch lets through.
    virtual void show_error(DIAGNOSTIC& diag);
    /// An option word of the file; false if there is no such option.
    virtual bool process_option(const char* text);
    /// An input file of the file.
    virtual void add_input_file(const char* name, const SOURCE_POSITION& pos);
    /// The file of a section specification, a name without wildcards; searched means along the
    /// directories.
    virtual void attach_file(SECTION_SPEC* spec, const char* name, bool searched,
                             const SOURCE_POSITION& pos);

    void version_directive();
    void version_definition();
    bool keyword_cs(std::string_view word) const;

  private:
    void lexical_error(DIAGNOSTIC& diag, const SOURCE_POSITION& pos) override;

    // Errors and small steps.
    void syntax_error(DIAGNOSTIC& diag, const SOURCE_POSITION& pos);
    void syntax_error(DIAGNOSTIC& diag) { syntax_error(diag, token().position()); }
    void unexpected_eof();
    bool lex_required(int code);
    bool lex_skip_required(int code);
    bool lex_skip_optional(int code);
    bool keyword(std::string_view word) const;
    bool keyword_prefix(std::string_view word) const;
    static bool keyword_compare(std::string_view text, std::string_view word, bool prefix);
    bool enter_nesting();
    void leave_nesting() { --nesting_; }
    bool at_end(int closer) const { return code() == closer || code() == TOK_EOF; }
    std::string text() const { return token().text; }

    // Top level.
    void top_level_item();
    void option();
    void filename_or_assign();

    // MEMORY.
    void memory_directive();
    void memory_item(int& page);
    void memory_page(int& page);
    void memory_alias(int page);
    MEMORY_RANGE* memory_range(int page);
    bool memory_specifier(MEMORY_RANGE* range);
    void memory_attr(MEMORY_RANGE* range);
    void memory_fill(MEMORY_RANGE* range, bool vfill, const SOURCE_POSITION& pos);

    // ECC.
    void ecc_directive();
    void ecc_algorithm();
    void ecc_parameter(ECC_ALGORITHM& algorithm, bool& has_parity);
    void skip_ecc_value();
    void mirroring(ECC_ALGORITHM& algorithm);
    void hamming_mask(ECC_ALGORITHM& algorithm);
    void ecc_spec(MEMORY_RANGE* range);
    void add_ecc_spec(ECC_SPECIFICATION& spec, const char* input, bool has_page, int page);
    bool expr_boolean(bool& value);

    // VERSION.
    void skip_definition();
    bool is_version_clause();
    void version_symbols(VER_DEF* verdef);

    // SECTIONS.
    void sections_directive();
    void output_section_list(COLLECTION* parent);
    void output_section(COLLECTION* parent);
    void group_or_union(COLLECTION* parent);
    const char* group_or_union_name(bool is_union);
    void consolidate_placement_properties(COLLECTION* section, const PLACEMENT_PROPERTIES& props);

    // Properties of output sections, GROUPs and UNIONs.
    void section_properties(COLLECTION* section, PLACEMENT_PROPERTIES& props);
    bool section_property(COLLECTION* section, PLACEMENT_PROPERTIES& props, bool& comma_taken);
    void optional_address(PLACEMENT_PROPERTIES& props);
    bool address_specifier(PLACEMENT_PROPERTIES& props, bool& comma_taken);
    void address(LOCATOR* locator);
    void address_items(LOCATOR* locator, LOCATOR* common, bool& comma_taken);
    bool address_property(LOCATOR* own, LOCATOR* common);
    bool address_flag(LOCATOR* locator);
    void parse_palign(LOCATOR* common);
    bool section_type(COLLECTION* section);
    void section_type_word(COLLECTION* section);
    bool section_symbol(LINKER_OBJECT* object);
    bool table_symbol(COLLECTION* section);
    bool crc_table_symbol(COLLECTION* section);
    /// COLLECTION's operation for a table operator.
    using TABLE_OPERATOR = void (COLLECTION::*)(const char* name, const char* word,
                                                const SOURCE_POSITION* pos);
    bool table_request(const char* parameter, COLLECTION* section, TABLE_OPERATOR apply);
    bool unordered_property(PLACEMENT_PROPERTIES& props);
    bool fill_property(COLLECTION* section);
    void optional_fill(LINKER_OBJECT* object);

    // Bodies of output sections.
    bool section_composition(COLLECTION* section);
    void section_item(COLLECTION* section, unsigned& spec_number);
    void assignment_spec(COLLECTION* section);
    void add_dot_expr_to_collection(COLLECTION* section, EXPRESSION* expr,
                                    const SOURCE_POSITION& pos);
    void add_assignment_to_object(LINKER_OBJECT* object, const char* symbol, int op, bool weak,
                                  const SOURCE_POSITION& pos);
    void input_section_spec(COLLECTION* section, unsigned& spec_number);
    void input_section_filespec(SECTION_SPEC* spec);
    bool input_section_library(std::string& name);
    void input_section_lib_members(SECTION_SPEC* spec);
    void input_section_list(SECTION_SPEC* spec);
    void input_section_symbols(SECTION_SPEC* spec);

    // Expressions.
    EXPRESSION* expression();
    EXPRESSION* expr_binary(int level);
    EXPRESSION* expr_unary();
    EXPRESSION* expr_operator_call();
    EXPRESSION* expr_mem_range_property(int op);
    EXPRESSION* expr_leaf();
    EXPRESSION* expr_sym(bool allow_dot);
    EXPRESSION* expr_weak_sym();
    EXPRESSION* expr_assignment();
    EXPRESSION* checked(EXPRESSION* expr);
    bool expr_const_starts() const;
    bool expr_const_expr(uint64_t& value);
    bool int_property_literal(uint64_t& value, unsigned& radix, unsigned& digits);
    bool int_property_literal(uint64_t& value);

    bool latch_ = false;
    unsigned nesting_ = 0;

    static uint32_t next_seq_id_m;
    static bool sections_seen_m;
};
