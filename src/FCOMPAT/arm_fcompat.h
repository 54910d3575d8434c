// What two ARM files must agree on.
#pragma once

#include "FCOMPAT/fcompat.h"

class ARM_FCOMPAT final : public FCOMPAT {
  public:
    bool custom_diagnostic(const OFE::OFBA_TAG* tag, OFE::OFBA_AVAL base,
                           OFE::OFBA_AVAL file) override;
    bool skip_file_battr_check() override;
    void check_target_compatibility() override;
    void check_target_ba_attrlist(FILE_ATTRIBUTES& base, FILE_ATTRIBUTES& file) override;

  private:
    void check_isa_compatibility();
    bool pcs_configs_agree(unsigned base, unsigned file) const;

    void ba_arm_isa(unsigned tag, LIST* base, LIST* file);
    void ba_arm_enum(unsigned tag, LIST* base, LIST* file);
    void ba_aeabi_align(LIST* base, LIST* file);
    void ba_aeabi_compat(LIST* base, LIST* file);
    void ba_arm_fp(unsigned tag, LIST* base, LIST* file);
    void ba_arm_hardfp_use(LIST* base, LIST* file);
    void ba_arm_virtualization(LIST* base, LIST* file);
    void ba_arm_fp_interface(FILE_ATTRIBUTES& base, FILE_ATTRIBUTES& file, bool& base_uses,
                             bool& file_uses);
    void ba_arm_vfp_compat(FILE_ATTRIBUTES& base, FILE_ATTRIBUTES& file);
};
