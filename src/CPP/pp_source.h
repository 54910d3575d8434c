// The files that the preprocessor reads, innermost last, and the phases of translation that come
// before tokens: trigraphs, lines continued by a backslash, comments. A line that needs none of
// them is a view of its file.
#pragma once

#include <memory_resource>
#include <string_view>
#include <vector>

#include "CPP/pp_token.h"

class PP_SOURCE {
  public:
    /// No line of a file is longer, nor one joined of several.
    static constexpr size_t MAX_LINE = 16384;

    explicit PP_SOURCE(PP_ERRORS& errors) : errors_(errors) {}

    /// Reads on at the start of another file. The text stays valid while it is read.
    void push(const char* name, std::string_view text);
    /// Goes back to the file that included this one; false if there is none.
    bool pop();
    /// Nothing more is read, from any file.
    void end();

    size_t depth() const { return files_.size(); }
    const char* path() const { return files_.back().path; }
    /// The name for messages and __FILE__: that of the last #line, if there was one.
    const char* file() const { return files_.back().name; }
    /// The line that is worked on; 0 before the first.
    unsigned line() const { return line_; }
    void set_file(const char* name) { files_.back().name = name; }
    void set_next_line(unsigned line) { files_.back().next_line = line; }

    /// The next line of the current file as it stands there, with its newline; empty at the end.
    std::string_view peek() const;
    /// Steps over it.
    void take();
    /// Steps over it and the lines that continue it.
    void skip();
    /// The next line with everything resolved; false at the file's end. Text that isn't in the file
    /// is put into `memory`.
    bool read(PP_LINE& line, std::pmr::memory_resource* memory);

  private:
    struct FILE_STATE {
        const char* path;
        const char* name;
        std::string_view rest;
        unsigned next_line;
    };
    class JOINER;

    std::vector<FILE_STATE> files_;
    unsigned line_ = 0;
    PP_ERRORS& errors_;
};
