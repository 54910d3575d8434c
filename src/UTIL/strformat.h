// printf formatting into a std::string.
#pragma once

#include <cstdarg>
#include <string>

/// The formatted text.
[[gnu::format(printf, 1, 2)]] std::string strformat(const char* format, ...);
[[gnu::format(printf, 1, 0)]] std::string vstrformat(const char* format, va_list args);

/// Appends the formatted text to `to`; returns the number of characters added.
[[gnu::format(printf, 2, 0)]] size_t vstrappend(std::string& to, const char* format, va_list args);
