// What command files say of error correction: the algorithms by name, and which memory ranges hold
// the ECC bytes of which others.
#pragma once

#include <map>
#include <memory>
#include <string>
#include <vector>

#include "DIAG/source_position.h"
#include "ELFLNK/ecc/ecc_algorithm.h"

class MEMORY_RANGE;

/// ECC = { ... } of a memory range. Both ranges point to it.
struct ECC_SPECIFICATION {
    const char* algorithm = nullptr;     // name, or null for the only one there is
    MEMORY_RANGE* input_range = nullptr; // what the bytes are computed from
    MEMORY_RANGE* ecc_range = nullptr;   // what holds them
    bool no_fill = false;                // nothing for what is empty in the input range
    SOURCE_POSITION position;
};

class ECC_MANAGER {
  public:
    /// A later algorithm of the same name takes the place of an earlier one.
    void add_algorithm(const char* name, const ECC_ALGORITHM& algorithm);
    /// Null if there is none of that name.
    const ECC_ALGORITHM* find_algorithm(const char* name) const;
    size_t algorithm_count() const { return algorithms_.size(); }

    ECC_SPECIFICATION* add_specification(const ECC_SPECIFICATION& spec);
    /// In the order of the command files.
    const std::vector<std::unique_ptr<ECC_SPECIFICATION>>& specifications() const {
        return specifications_;
    }

  private:
    std::map<std::string, ECC_ALGORITHM> algorithms_;
    std::vector<std::unique_ptr<ECC_SPECIFICATION>> specifications_;
};

extern ECC_MANAGER ecc_manager;
