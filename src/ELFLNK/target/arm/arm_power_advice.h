// What ARM objects note of the power that they draw: attributes of the vendor's subsection.
#pragma once

#include "ELFLNK/target/power_advice.h"

namespace OFE {
class OFBA_VENDOR_SCN;
}

class ARM_POWER_ADVICE final : public POWER_ADVICE {
  public:
    /// Null for an output without attributes of the vendor.
    explicit ARM_POWER_ADVICE(const OFE::OFBA_VENDOR_SCN* attributes) : attributes_(attributes) {}

  private:
    unsigned lpm_instruction_info() override;
    std::string ports_initialization_info() override;

    const OFE::OFBA_VENDOR_SCN* attributes_;
};
