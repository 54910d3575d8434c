// The order of the entries of an initialiser table.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

/// The priority in a name like ".init_array.00100:a.o": the first number between '.' or ':' and
/// '.', ':' or '$'.
std::optional<uint64_t> init_priority(std::string_view name);

/// True if `a` has to come before `b`: numbered entries first, in ascending order; others keep
/// their order.
bool init_precedes(std::string_view a, std::string_view b);
