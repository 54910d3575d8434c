// Symbols that are objects of the layout by themselves: common blocks, which get memory, and
// absolute symbols, which only stay in the link through their object.
#pragma once

#include "ELFLNK/object/linker_object.h"

namespace OFE {
class OF_SYMBOL;
} // namespace OFE

class SYMBOL_OBJECT : public LINKER_OBJECT {
  public:
    bool is_symbol_object() const override { return true; }
    OFE::OF_SYMBOL* symbol() const { return symbol_; }

  protected:
    SYMBOL_OBJECT(const char* name, OFE::OF_SYMBOL* symbol)
        : LINKER_OBJECT(name), symbol_(symbol) {}

  private:
    OFE::OF_SYMBOL* symbol_;
};

/// Memory of a common symbol; enters the root's symbol object map.
class COMMON_BLOCK : public SYMBOL_OBJECT {
  public:
    explicit COMMON_BLOCK(OFE::OF_SYMBOL* symbol);
    bool is_common_block() const override { return true; }
    uint64_t size() override;
    uint32_t alignment() const override;
    void write_data_internal(OFE::OF_SECTION* output, uint32_t offset) override;
    void dump_header(PPRINT* out) override;
};

/// Enters the root's symbol object map.
class ABSOLUTE_SYMBOL : public SYMBOL_OBJECT {
  public:
    explicit ABSOLUTE_SYMBOL(OFE::OF_SYMBOL* symbol);
    bool is_absolute_symbol() const override { return true; }
    uint64_t size() override { return 0; }
    void dump_header(PPRINT* out) override;
};
