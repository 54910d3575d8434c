// The parser of command files, behind the preprocessor, on any text. What a command file makes
// lives to the end of a link, so each input leaves something behind; libFuzzer is run in processes
// that take turns (-fork=1).
#include <memory>
#include <string_view>

#include "CPP/cpp.h"
#include "DIAG/diagnostic.h"
#include "ELFLNK/expr/expression.h"
#include "ELFLNK/filter/filter.h"
#include "ELFLNK/memmap/memory_map.h"
#include "ELFLNK/object/root_collection.h"
#include "ELFLNK/object/section_spec.h"
#include "ELFLNK/object/space.h"
#include "ELFLNK/parse_lcf/lcf_parser.h"
#include "OPTIONGEN/option_obj.h"
#include "fuzz.h"

namespace {

// The lines of the text behind the preprocessor, which finds no include files.
class SOURCE : public LCF_SOURCE, private CPP_CLIENT_INTERFACE {
  public:
    explicit SOURCE(std::string_view text) : cpp_("fuzz.cmd", text, this) {}
    std::string_view next_line() override { return cpp_.fgets(); }
    bool is_preprocessed() const override { return true; }
    void find_place(size_t offset, unsigned& line, unsigned& column) const override {
        if (cpp_.is_rewritten()) cpp_.find_place(offset, line, column);
    }
    LCF_PARSER* parser = nullptr;

  private:
    const char* find_h_file(const char*, const char*, bool) override { return nullptr; }
    void set_srcloc(const char* file, unsigned line) override { parser->set_srcloc(file, line); }
    void process_diagnostic(DIAGNOSTIC& diag) override { diag.report(); }

    CPP cpp_;
};

// Files and options are noted only: what they do is outside of the parser.
class PARSER : public LCF_PARSER {
  public:
    explicit PARSER(std::unique_ptr<LCF_SOURCE> text) : LCF_PARSER(std::move(text), "fuzz.cmd") {}

  protected:
    bool process_option(const char* text) override {
        const std::string_view option = text;
        if (option.ends_with('o')) use(option_argument() != nullptr);
        return option != "x";
    }
    void add_input_file(const char* name, const SOURCE_POSITION& pos) override {
        use(name[0] + pos.line());
    }
    void attach_file(SECTION_SPEC* spec, const char* name, bool, const SOURCE_POSITION&) override {
        spec->add_file_name(name);
    }
};

void walk_assignments(const LINKER_OBJECT* object) {
    for (const EXPRESSION* expr : object->assignments()) use(expr->get_string().size());
}

// The patterns alone: which reserved names a section pattern takes depends on a target.
void match(const FILTER* filter) {
    if (!filter) return;
    match(filter->left());
    match(filter->right());
    const char* pattern = filter->get_pattern();
    if (!pattern) return;
    for (const char* name : {".text", ".text.main", "a.o", "aaaaaaaaaaaaaaaaaaaaaaaa", "*"})
        use(match_glob(pattern, name) + glob_subset(pattern, name));
    use(glob_subset(pattern, pattern));
}

void walk(COLLECTION* collection) {
    walk_assignments(collection);
    if (SECTION_SPEC* spec = as_section_spec(collection)) {
        match(spec->file_filter());
        match(spec->member_filter());
        match(spec->section_filter());
    }
    for (LINKER_OBJECT* member : collection->members()) {
        REQUIRE(member->parent() == collection);
        if (COLLECTION* inner = as_collection(member))
            walk(inner);
        else
            walk_assignments(member);
    }
}

// A fatal message ends a link; here what comes after it is tried too.
bool end_nothing() {
    for (DIAG_INFO* row = DIAG_INFO_ENTRY; row->code != 0; ++row)
        if (row->severity == dc_FATAL) row->severity = dc_ERROR;
    return true;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static FILE* const nowhere = fopen("/dev/null", "w");
    static const bool endless = end_nothing();
    use(endless);
    DIAGNOSTIC::fp_m = nowhere;
    DIAGNOSTIC::max_errors_m = ~0u;
    if (global_opts == nullptr) global_opts = new option_obj(true);
    memory_map->clear();
    root_collection = new ROOT_COLLECTION;
    auto source =
        std::make_unique<SOURCE>(std::string_view(reinterpret_cast<const char*>(data), size));
    SOURCE& lines = *source;
    PARSER parser(std::move(source));
    lines.parser = &parser;
    parser.parse();
    walk(root_collection);
    return 0;
}
