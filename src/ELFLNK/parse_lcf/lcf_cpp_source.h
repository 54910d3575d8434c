// The lines of a command file behind the preprocessor.
#pragma once

#include "CPP/cpp.h"
#include "ELFLNK/parse_lcf/lcf_source.h"

class LCF_PARSER;

/// What the preprocessor asks of the linker.
class LCF_CPP_CLIENT : public CPP_CLIENT_INTERFACE {
  public:
    /// The parser that is told of positions.
    void set_parser(LCF_PARSER* parser) { parser_ = parser; }
    const char* find_h_file(const char* name, const char* from, bool angle) override;
    void set_srcloc(const char* file, unsigned line) override;
    void process_diagnostic(DIAGNOSTIC& diag) override;

  private:
    LCF_PARSER* parser_ = nullptr;
};

class LCF_CPP_SOURCE : public LCF_SOURCE {
  public:
    LCF_CPP_SOURCE(const char* file, std::string_view text) : cpp_(file, text, &client_) {}
    /// The parser that reads these lines.
    void set_parser(LCF_PARSER* parser) { client_.set_parser(parser); }
    std::string_view next_line() override { return cpp_.fgets(); }
    bool is_preprocessed() const override { return true; }
    void find_place(size_t offset, unsigned& line, unsigned& column) const override {
        if (cpp_.is_rewritten()) cpp_.find_place(offset, line, column);
    }
    void define_ppsym(const char* name, const char* value) override { cpp_.predefine(name, value); }
    void undefine_ppsym(const char* name) override { cpp_.undefine(name); }

  private:
    LCF_CPP_CLIENT client_;
    CPP cpp_;
};
