// Choosing a CRC algorithm by name or id and running it over a buffer.
#include "ELFLNK/crc/crcgen.h"

#include "DIAG/user_msg_api.h"

#include <algorithm>
#include <iterator>

static const CRCGEN::CRC_CONFIG crc_configs_m[] = {
#define CRC_CONFIG_ROW(name, order, polynomial, init, reflected, crcxor, fast, manager)            \
    {{name, order, polynomial, 1, init, reflected, reflected, crcxor, fast}, manager},
#include "ELFLNK/crc/crc_configs.def"
#undef CRC_CONFIG_ROW
};
static_assert(std::size(crc_configs_m) == 13, "ids stand in programs: rows are only added");

static const CRCGEN::CRC_CONFIG_TYPE default_config = 9;

CRCGEN::CRCGEN() : config_(crc_configs_m[default_config]) {}

int CRCGEN::find_crc_config(std::string_view name) {
    const auto row = std::find_if(std::begin(crc_configs_m), std::end(crc_configs_m),
                                  [&](const auto& r) { return r.algorithm.name == name; });
    return row == std::end(crc_configs_m) ? -1 : static_cast<int>(row - crc_configs_m);
}

const char* CRCGEN::find_crc_name(CRC_CONFIG_TYPE id) {
    if (id < std::size(crc_configs_m)) return crc_configs_m[id].algorithm.name.data();
    USER_MSG::get_umsg_obj()->error("invalid crc id: %u", id);
    return "UNKNOWN";
}

void CRCGEN::set_config(CRC_CONFIG_TYPE id) {
    if (id < std::size(crc_configs_m))
        config_ = crc_configs_m[id];
    else
        USER_MSG::get_umsg_obj()->error("invalid CRC configuration type\n");
}

// False, after a message, if the parameters contradict each other.
bool CRCGEN::prepare_for_calculation() const {
    const CRC::algorithm_t& a = config_.algorithm;
    const char* fault = nullptr;
    const uint64_t mask =
        a.order >= 8 && a.order <= 64 ? ~uint64_t{0} >> (64 - a.order) : uint64_t{0};
    if (mask == 0 || a.order % 8 != 0)
        fault = "order must be 8, 16, 24, 32, or 64";
    else if ((a.polynomial & mask) != a.polynomial)
        fault = "invalid polynomial (polynom & crcmask != polynom)\n";
    else if ((a.crcinit & mask) != a.crcinit)
        fault = "invalid crcinit (crcinit & crcmask != crcinit)\n";
    else if ((a.crcxor & mask) != a.crcxor)
        fault = "invalid crcxor (crcxor & crcmask != crcxor)\n";
    if (fault) USER_MSG::get_umsg_obj()->error("%s", fault);
    return !fault;
}

uint64_t CRCGEN::gen_crc(const DATA_MAP& map) const {
    if (!prepare_for_calculation()) return 0;
    CRC crc(config_.algorithm);
    const auto manager = config_.new_data_manager(map);
    while (!manager->end_of_buffer()) crc.read_data(manager->read());
    return manager->update_crc(crc.finalize());
}

uint64_t data_map_crc(const DATA_MAP& map, const CRCGEN& generator) {
    return map.empty() ? generator.crcinit() : generator.gen_crc(map);
}
