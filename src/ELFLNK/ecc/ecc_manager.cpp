// The records of error correction.
#include "ELFLNK/ecc/ecc_manager.h"

#include "ELFLNK/memmap/memory_range.h"

void ECC_MANAGER::add_algorithm(const char* name, const ECC_ALGORITHM& algorithm) {
    algorithms_[name] = algorithm;
}

const ECC_ALGORITHM* ECC_MANAGER::find_algorithm(const char* name) const {
    const auto found = algorithms_.find(name);
    return found != algorithms_.end() ? &found->second : nullptr;
}

ECC_SPECIFICATION* ECC_MANAGER::add_specification(const ECC_SPECIFICATION& spec) {
    specifications_.push_back(std::make_unique<ECC_SPECIFICATION>(spec));
    ECC_SPECIFICATION* stored = specifications_.back().get();
    stored->input_range->set_ecc_spec(stored);
    stored->ecc_range->set_ecc_spec(stored);
    return stored;
}
