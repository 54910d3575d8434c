// The rules that change names and bindings of the output's symbols: --hide, --unhide, --localize,
// --globalize and
// --make_static. Of two patterns that match a name the more restrictive one decides.
#pragma once

#include <set>
#include <unordered_set>
#include <vector>

class FILTER;

namespace OFE {
class OF_SYMBOL;
}

class OUTSYM_ATTR_MANAGER {
  public:
    // Null and empty texts are ignored, as is a pattern that is there already.
    void add_hide_pattern(const char* text);
    void add_unhide_pattern(const char* text);
    void add_localize_pattern(const char* text);
    void add_globalize_pattern(const char* text);

    // Decides for every output symbol; called at the end of build().
    void build_symbol_attr_lists();
    // Applies the decisions to an output that has been reopened for editing.
    void update_symbol_attrs();

    bool needs_hiding(OFE::OF_SYMBOL* symbol) const;
    bool needs_localization(OFE::OF_SYMBOL* symbol) const;
    bool localize_hidden_symbols() const;
    static void hide(OFE::OF_SYMBOL* symbol);
    static void localize(OFE::OF_SYMBOL* symbol);
    // Some symbol is to be hidden or localized.
    bool has_changes() const { return !hidden_.empty() || !localized_.empty(); }
    const std::vector<OFE::OF_SYMBOL*>& hidden_symbols() const { return hidden_; }
    const std::vector<OFE::OF_SYMBOL*>& localized_symbols() const { return localized_; }
    const std::vector<OFE::OF_SYMBOL*>& comdat_symbols() const { return comdat_; }
    const std::unordered_set<OFE::OF_SYMBOL*>& changed_symbols() const { return changed_; }
    void dump() const;

  private:
    struct FILTER_ORDER {
        bool operator()(const FILTER* a, const FILTER* b) const;
    };
    using PATTERNS = std::set<FILTER*, FILTER_ORDER>;
    struct RULE {
        const char* what; // names the rule in messages
        const char* on_option;
        const char* off_option;
        const PATTERNS& on;
        const PATTERNS& off;
    };

    static bool add_pattern(PATTERNS& set, const char* text);
    static const FILTER* find_first_match(const PATTERNS& set, const char* name);
    static bool decide(const RULE& rule, OFE::OF_SYMBOL* symbol);
    bool has_patterns() const { return !hide_.empty() || !localize_.empty(); }
    void report_comdat_symbols() const;

    PATTERNS hide_, unhide_, localize_, globalize_;
    std::vector<OFE::OF_SYMBOL*> hidden_, localized_, comdat_;
    std::unordered_set<OFE::OF_SYMBOL*> changed_;
};

extern OUTSYM_ATTR_MANAGER outsym_attr_manager;
