// The indenting printer of object dumps: a stack of prefixes in front of each line on standard
// output.
#pragma once

#include <list>
#include <string>

class PPRINT {
  public:
    /// Starts with an empty prefix and `depth` indents of three blanks.
    explicit PPRINT(int depth = 0);

    /// One level deeper, with this prefix.
    void push(const char* prefix = "   ") { prefixes_.emplace_back(prefix); }
    /// Back one level; the last one leaves the empty prefix.
    void pop();
    /// Another prefix for this level.
    void set(const char* prefix) { pop(), push(prefix); }
    /// Writes all prefixes.
    void indent() const;
    /// The prefixes, then the formatted text.
    [[gnu::format(printf, 2, 3)]] void printf(const char* format, ...) const;

  private:
    std::list<std::string> prefixes_;
};
