// The CRC algorithms that a command file can name, and the generator that computes one over a
// buffer.
//
// crc_configs.def is the one list of algorithms; an algorithm's id, which the target's run-time
// reads from the CRC table, is its place there.
#pragma once

#include "ELFLNK/crc/crc_data_manager.h"
#include "ELFLNK/crc/crc_engine.h"

#include <cstdint>
#include <string_view>

class CRCGEN {
  public:
    /// Algorithm id: 0 to 12.
    using CRC_CONFIG_TYPE = unsigned;

    /// A row of the list of algorithms.
    struct CRC_CONFIG {
        CRC::algorithm_t algorithm;
        std::unique_ptr<CRC_DATA_MANAGER> (*new_data_manager)(const DATA_MAP& map);
    };

    /// A generator for "CRC32".
    CRCGEN();

    /// The id of the algorithm of that name, upper and lower case as listed; -1 if there is none.
    static int find_crc_config(std::string_view name);
    /// The name of an algorithm. An id without algorithm is reported and named "UNKNOWN".
    static const char* find_crc_name(CRC_CONFIG_TYPE id);

    /// Chooses an algorithm; an id without algorithm is reported and changes nothing.
    void set_config(CRC_CONFIG_TYPE id);
    /// Chooses an algorithm that is not in the list.
    void set_config(const CRC_CONFIG& config) { config_ = config; }
    uint64_t crcinit() const { return config_.algorithm.crcinit; }

    /// The check value of the bytes from the map's position to its end, in the order that the
    /// algorithm's data manager gives them; 0, after a message, if the algorithm makes no sense.
    uint64_t gen_crc(const DATA_MAP& map) const;

  private:
    bool prepare_for_calculation() const;

    CRC_CONFIG config_;
};

/// The check value of a buffer: the generator's initial value if it is empty.
uint64_t data_map_crc(const DATA_MAP& map, const CRCGEN& generator);
