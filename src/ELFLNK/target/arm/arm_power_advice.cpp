// See the header.
#include "ELFLNK/target/arm/arm_power_advice.h"

#include "ELFLNK/build/link_kind.h"
#include "ELFLNK/file/file_manager.h"
#include "ELFLNK/target/arm/arm_target.h"
#include "OBJEDIT04/attributes/build_attr_table.h"
#include "OBJEDIT04/ofe/object_file.h"

namespace {

constexpr unsigned TAG_LOW_POWER_MODE = 326;
constexpr unsigned TAG_PORTS = 327;

} // namespace

unsigned ARM_POWER_ADVICE::lpm_instruction_info() {
    if (attributes_ == nullptr || attributes_->file_list() == nullptr) return 0;
    const unsigned info = attributes_->file_list()->uval(TAG_LOW_POWER_MODE);
    return info == 1 || info == 2 ? info : 0;
}

std::string ARM_POWER_ADVICE::ports_initialization_info() {
    if (attributes_ == nullptr || attributes_->file_list() == nullptr) return {};
    const char* info = attributes_->file_list()->str(TAG_PORTS);
    return info != nullptr ? info : "";
}

void ARM_TARGET::check_advice() {
    OFE::OBJECT_FILE* output = output_OF_FILE();
    ARM_POWER_ADVICE(output != nullptr ? output->qv_battr_vendor_section() : nullptr)
        .check_power_advice();
}
