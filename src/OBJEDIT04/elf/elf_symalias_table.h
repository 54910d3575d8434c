// The section that says which symbols are aliases of which: pairs of symbol ids.
#pragma once

#include "OBJEDIT04/ofe/of_state_machine.h"
#include <utility>
#include <vector>

namespace OFE {

class ELF_SECTION;

class ELF_SYMALIAS_TABLE final : public OF_STATE_MACHINE {
  public:
    using PAIR = std::pair<unsigned, unsigned>; // alias, target

    explicit ELF_SYMALIAS_TABLE(ELF_SECTION* section);

    int progress_to_state(OF_STATE target) override;
    int revert_to_state(OF_STATE target) override;

    int load();
    int save();
    void add_alias(unsigned alias, unsigned target); // nothing when equal
    void add_alias(const char* alias, const char* target);
    const std::vector<PAIR>& alias_map() const { return aliases_; }
    int update_symbol_refs(const RECORD_MAP<unsigned>& map);

  private:
    ELF_SECTION* section_;
    std::vector<PAIR> aliases_;
    bool loaded_ = false;
};

} // namespace OFE
