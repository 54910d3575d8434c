// The archive reader on any bytes: the symbol directory and all members, whose names and contents
// are read.
#include <string_view>

#include "ELFLNK/archive/ar_file.h"
#include "fuzz.h"

namespace {

// Looking a member up by name is a walk, so not every member is looked up.
constexpr size_t LOOKUPS = 32;

unsigned faults;

void on_error(AR_FILE*, AR_ERROR_CODE code, const char* text) {
    REQUIRE(code != AR_NO_ERROR && text[0] != '\0');
    ++faults;
}

bool within(std::string_view text, std::span<const uint8_t> bytes) {
    const auto* start = reinterpret_cast<const char*>(bytes.data());
    return text.empty() ||
           (text.data() >= start && text.data() + text.size() <= start + bytes.size());
}

void walk_members(const AR_FILE& archive) {
    const AR_MEMBER* previous = nullptr;
    for (const AR_MEMBER& member : archive.members()) {
        REQUIRE(within(member.name, archive.bytes()));
        const auto contents = archive.contents(member);
        REQUIRE(contents.size() == member.size);
        for (const uint8_t byte : contents) use(byte);
        for (const char c : member.name) use(static_cast<uint8_t>(c));
        REQUIRE(!previous || previous->offset + previous->size <= member.header_offset);
        REQUIRE(archive.member_at(member.header_offset) == &member);
        previous = &member;
    }
    for (size_t i = 0; i < archive.members().size() && i < LOOKUPS; ++i) {
        const AR_MEMBER* found = archive.find_member(archive.members()[i].name);
        REQUIRE(found && found->name == archive.members()[i].name);
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    faults = 0;
    AR_FILE archive("archive", {data, size}, on_error);
    const bool headers = archive.read_headers(true);
    REQUIRE(headers == (faults == 0));
    for (const AR_SYMBOL& symbol : archive.symbols()) {
        REQUIRE(within(symbol.name, archive.bytes()));
        for (const char c : symbol.name) REQUIRE(c != '\0');
    }
    if (headers) REQUIRE(archive.create_toc() == (faults == 0));
    walk_members(archive);
    for (const AR_SYMBOL& symbol : archive.symbols())
        use(archive.member_at(symbol.header_offset) != nullptr);
    // The directory has no say in what the members are.
    AR_FILE plain("archive", {data, size}, on_error);
    if (plain.read_headers(false) && plain.create_toc() && headers)
        REQUIRE(plain.members().size() == archive.members().size());
    return 0;
}
