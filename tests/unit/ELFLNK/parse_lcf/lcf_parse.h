// A parser for tests: what it would do outside of itself is only noted.
#pragma once

#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "DIAG/diagnostic.h"
#include "DIAG/message.h"
#include "ELFLNK/memmap/memory_map.h"
#include "ELFLNK/object/root_collection.h"
#include "ELFLNK/object/section_spec.h"
#include "ELFLNK/parse_lcf/lcf_parser.h"
#include "OPTIONGEN/option_obj.h"

// Parses a text; files and options are only noted.
template <class PARSER>
class PARSE_AS : public PARSER {
  public:
    explicit PARSE_AS(std::string_view text)
        : PARSER(std::make_unique<LCF_TEXT_SOURCE>(text), "t.cmd") {
        char* buffer = nullptr;
        size_t size = 0;
        FILE* file = open_memstream(&buffer, &size);
        DIAGNOSTIC::fp_m = file;
        DIAGNOSTIC::wrap_enabled_m = false;
        DIAGNOSTIC::max_errors_m = ~0u;
        memory_map->clear();
        if (global_opts == nullptr) global_opts = new option_obj(true);
        first_member_ = root_collection->members().size();
        this->parse();
        DIAGNOSTIC::fp_m = nullptr;
        fclose(file);
        messages.assign(buffer, size);
        free(buffer);
    }

    /// The nth object that the text added at the top of the tree.
    COLLECTION* object(size_t n = 0) const {
        auto at = root_collection->members().begin();
        std::advance(at, static_cast<long>(first_member_ + n));
        return as_collection(*at);
    }
    size_t object_count() const { return root_collection->members().size() - first_member_; }
    const LOCATOR* run() const { return object()->run_locator(); }
    const LOCATOR* load() const { return object()->load_locator(); }
    MEMORY_RANGE* range(const char* name) const { return memory_map->lookup_by_name(name); }
    bool says(const std::string& text) const { return messages.find(text) != std::string::npos; }
    int errors() const {
        int n = 0;
        for (size_t at = messages.find("error"); at != std::string::npos;
             at = messages.find("error", at + 1))
            ++n;
        return n;
    }

    std::string messages; // as printed
    std::string places;   // LINE:COLUMN: TEXT of each syntax error
    std::vector<std::string> files;
    std::vector<std::string> options;
    std::vector<std::string> spec_files;

  protected:
    bool process_option(const char* text) override {
        options.push_back(text);
        if (options.back() == "o") {
            const char* argument = this->option_argument();
            options.push_back(argument != nullptr ? argument : "");
        }
        return options.back() != "bad";
    }
    void add_input_file(const char* name, const SOURCE_POSITION&) override {
        files.push_back(name);
    }
    void attach_file(SECTION_SPEC* spec, const char* name, bool searched,
                     const SOURCE_POSITION&) override {
        spec->add_file_name(name);
        spec_files.push_back(std::string(name) + (searched ? "+" : ""));
    }

    void show_error(DIAGNOSTIC& diag) override {
        places += std::to_string(diag.src()->line()) + ":" + std::to_string(diag.src()->column()) +
                  ": " + static_cast<DIAG::MESSAGE_BASE&>(diag).text() + "\n";
        PARSER::show_error(diag);
    }

  private:
    size_t first_member_;
};

using PARSE = PARSE_AS<LCF_PARSER>;
