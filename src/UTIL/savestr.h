// Strings that live until the process ends.
//
// Names from command lines, command files and generated objects are kept by plain pointer all over
// the link. Equal texts share one copy, so two results of savestr() are the same pointer exactly if
// the texts are equal.
#pragma once

#include <string_view>

/// The one lasting copy of `text`. A null pointer gives a null pointer.
const char* savestr(const char* text);

/// The one lasting, NUL-terminated copy of `text`.
const char* savestr(std::string_view text);

/// The one lasting copy of a formatted text.
[[gnu::format(printf, 1, 2)]] const char* savestrf(const char* format, ...);
