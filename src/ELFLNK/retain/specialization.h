// Run-time specialization: a function of the run-time library gives way to a smaller build of it
// when the link shows that the full one isn't needed.
//
// The library supplies the variants under fixed names, and marks a default function that may be
// replaced by a marker symbol in its file. Until the decisions are made all references to the
// function lead to a placeholder section, which in turn keeps the variants, so that their own
// references count. Collection decides in two steps, before and after load images are formed: the
// placeholder and the variants that lose have no referrer any more and leave the link.
#pragma once

#include <cstdint>
#include <set>
#include <string>
#include <vector>

namespace OFE {
class OF_SECTION;
class OF_SYMBOL;
} // namespace OFE

/// One variant: the features it supports, one bit each.
struct SPECIALIZATION_ROUTINE {
    const char* name = nullptr;
    OFE::OF_SYMBOL* symbol = nullptr; ///< null if the library has no such variant
    uint32_t flags = 0;
};

class SPECIALIZATION {
  public:
    /// Enters the object with the manager.
    SPECIALIZATION();
    SPECIALIZATION(const SPECIALIZATION&) = delete;
    SPECIALIZATION& operator=(const SPECIALIZATION&) = delete;
    virtual ~SPECIALIZATION() = default;

    /// Sets the name and the variants, from the least capable to the most capable.
    virtual void init() = 0;
    /// Sets flags_; the result is a mask of the features that can't yet be told.
    virtual uint32_t update_flags_before_compressed_sections_formed() = 0;
    virtual void update_flags_after_compressed_sections_formed() = 0;
    virtual bool can_specialize() = 0;

    /// Puts the placeholder in the function's place, if it may be replaced at all.
    void instantiate_specialization();
    void update_before_compressed_sections_formed();
    void update_after_compressed_sections_formed();
    /// Something refers to the function, and there are variants.
    bool active() const;
    bool is_instantiated() const { return placeholder_section_ != nullptr; }
    /// The section is that of a variant: it stays by references only.
    bool section_immune_to_retain(OFE::OF_SECTION* section) const {
        return immune_.count(section) != 0;
    }
    OFE::OF_SECTION* placeholder_section() const { return placeholder_section_; }
    const std::vector<SPECIALIZATION_ROUTINE>& routines() const { return routines_; }

  protected:
    void set_name(const char* name) { name_ = name; }
    void add_routine(const char* name, uint32_t flags);
    /// For each variant one more, with a suffix and one more feature, behind all others.
    void expand_routine_list(const char* suffix, uint32_t flag);
    OFE::OF_SYMBOL* symbol() const { return symbol_; }
    /// The file that defines the function has a symbol of this name.
    bool defining_file_has(const char* marker) const;

    uint32_t flags_ = 0; ///< the features that the link needs

  private:
    void keep_variants_that_exist();
    void make_placeholder();
    /// The smallest sufficient variant, or null while that can't be told.
    OFE::OF_SYMBOL* select_routine(uint32_t mask);
    bool is_covered(uint32_t known) const;
    void remove_routine(size_t index);

    const char* name_ = nullptr;
    std::vector<SPECIALIZATION_ROUTINE> routines_;
    std::set<OFE::OF_SECTION*> immune_;
    OFE::OF_SYMBOL* symbol_ = nullptr; ///< the definition of the function
    OFE::OF_SECTION* placeholder_section_ = nullptr;
    OFE::OF_SYMBOL* placeholder_symbol_ = nullptr;
};

/// All specializations, in the order in which they were made.
class SPECIALIZATION_MANAGER {
  public:
    static void instantiate_specializations();
    static void update_before_compressed_sections_formed();
    static void update_after_compressed_sections_formed();
    static void register_specialization(SPECIALIZATION* specialization);
    static const std::vector<SPECIALIZATION*>& specializations();
    static bool any_instantiated();
    /// The specialization whose placeholder the section is, or null.
    static const SPECIALIZATION* find(const OFE::OF_SECTION* placeholder);
    static bool section_immune_to_retain(OFE::OF_SECTION* section);

  private:
    static std::vector<SPECIALIZATION*>& list();
};
