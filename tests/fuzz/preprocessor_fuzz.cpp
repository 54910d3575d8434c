// The preprocessor of command files on any text: limits end it, lines end in one newline, and every
// place lies in the text.
#include <string_view>

#include "CPP/cpp.h"
#include "DIAG/diagnostic.h"
#include "fuzz.h"

namespace {

// Finds no file, and counts lines as the parser does.
class CLIENT : public CPP_CLIENT_INTERFACE {
  public:
    const char* find_h_file(const char* name, const char* from, bool angle) override {
        use(static_cast<uint64_t>(name[0]) + static_cast<uint64_t>(from[0]) + angle);
        return nullptr;
    }
    void set_srcloc(const char*, unsigned next) override { line = next - 1; }
    void process_diagnostic(DIAGNOSTIC& diag) override { use(diag.src()->line()); }

    unsigned line = 0;
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    const bool has_line_directives = text.find("line") != text.npos;
    unsigned lines = 1;
    for (char c : text) lines += c == '\n';
    CLIENT client;
    CPP cpp("fuzz.cmd", text, &client);
    cpp.predefine("PREDEFINED", "1 + (2)");
    for (std::string_view line = cpp.fgets(); !line.empty(); line = cpp.fgets()) {
        ++client.line;
        const size_t newline = line.find('\n');
        REQUIRE(newline == line.npos || newline + 1 == line.size());
        for (size_t at = 0; at < line.size(); ++at) {
            unsigned row = client.line;
            unsigned column = static_cast<unsigned>(at) + 1;
            if (cpp.is_rewritten()) cpp.find_place(at, row, column);
            REQUIRE(has_line_directives || (row >= 1 && row <= lines));
            REQUIRE(column >= 1);
        }
    }
    REQUIRE(cpp.fgets().empty());
    return 0;
}
