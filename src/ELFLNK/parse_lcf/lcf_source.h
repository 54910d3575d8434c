// Where the parser of command files gets its text: one line after the other, each with its newline.
// The file itself is one source; a preprocessor in front of it is another, and tells the parser
// where its next line comes from.
#pragma once

#include <cstddef>
#include <string_view>

class LCF_SOURCE {
  public:
    virtual ~LCF_SOURCE() = default;
    /// The next line up to and including its newline, valid until the next call; empty at the end
    /// of the text.
    virtual std::string_view next_line() = 0;
    /// A preprocessor reports open quotes itself.
    virtual bool is_preprocessed() const { return false; }
    /// Where the character at this offset of the line that came last stands in its file, if the
    /// line isn't what the file holds; else nothing changes.
    virtual void find_place(size_t, unsigned&, unsigned&) const {}
    virtual void define_ppsym(const char*, const char*) {}
    virtual void undefine_ppsym(const char*) {}
};

/// The lines of a text that stays in memory.
class LCF_TEXT_SOURCE : public LCF_SOURCE {
  public:
    explicit LCF_TEXT_SOURCE(std::string_view text) : rest_(text) {}
    std::string_view next_line() override;

  private:
    std::string_view rest_;
};
