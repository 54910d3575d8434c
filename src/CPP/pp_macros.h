// The macros of one run of the preprocessor, by name. What a macro is made of lives as long as the
// table.
#pragma once

#include <array>
#include <cstdint>
#include <string_view>
#include <vector>

#include "CPP/pp_token.h"
#include "UTIL/mzone.h"

/// Macros whose body is made at each use.
enum class PP_BUILTIN : uint8_t { NONE, FILE_NAME, LINE_NUMBER };

struct MACDEF {
    static constexpr int NO_PARENTHESIS = -1;

    std::string_view name;
    PP_TOKENS body;
    int params = NO_PARENTHESIS; // number of parameters
    PP_BUILTIN builtin = PP_BUILTIN::NONE;
    bool standard = false;
    bool defined = false;
    bool active = false; // its expansion is being read

    bool same_body(const MACDEF& other) const;
};

class PP_MACROS {
  public:
    PP_MACROS() : slots_(FIRST_SIZE), zone_(ZONE_BLOCK, __FILE__, __LINE__) {}

    /// The macro of that name, or null.
    MACDEF* find(std::string_view name) { return may_be_macro(name) ? lookup(name) : nullptr; }
    /// Defines a macro, or defines it anew. The tokens are copied.
    MACDEF* define(const MACDEF& macro);
    void remove(MACDEF* macro) { macro->defined = false; }

  private:
    static constexpr size_t FIRST_SIZE = 256; // a power of two
    static constexpr size_t ZONE_BLOCK = 2000;

    // Most words of a file are no macros, and most of those have another length or first letter.
    bool may_be_macro(std::string_view name) const {
        return !name.empty() &&
               (lengths_[static_cast<unsigned char>(name[0])] & length_bit(name.size())) != 0;
    }
    static uint64_t length_bit(size_t length) { return uint64_t{1} << (length < 63 ? length : 63); }
    MACDEF* lookup(std::string_view name) const;
    size_t slot(std::string_view name) const;
    void grow();
    PP_TOKENS copy(PP_TOKENS tokens);

    std::vector<MACDEF*> slots_;
    size_t used_ = 0;
    std::array<uint64_t, 256> lengths_{}; // by first letter: a bit for each length of a name
    MZONE zone_;
};
