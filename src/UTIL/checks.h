// Whether the program checks its own work: in builds that aren't optimised, and in those with a
// sanitizer. A failed check says which object and which rule, and aborts.
#pragma once

#if !defined(__OPTIMIZE__) || defined(__SANITIZE_ADDRESS__)
inline constexpr bool CHECKS_ENABLED = true;
#else
inline constexpr bool CHECKS_ENABLED = false;
#endif
