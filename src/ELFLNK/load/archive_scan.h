// Archive members on demand.
#pragma once

#include <vector>

class ARCHIVE_FILE;
class AR_GROUP_SCAN_ITEM;
class SCAN_ITEM;

/// The archive is named at this place: warns about a missing directory, enters it for --priority
/// and --scan_libraries.
void build_ar_def_table(ARCHIVE_FILE* archive);
void clear_ar_def_table();
/// Reads an archive until a pass over its directory loads nothing. True if anything was loaded.
bool scan_archive(ARCHIVE_FILE* archive);
/// Reads the archives and groups of the list again and again until nothing is loaded.
bool reread_archives(const std::vector<SCAN_ITEM*>& list);
bool reread_group(AR_GROUP_SCAN_ITEM* group);
/// --priority: each needed name is served by the first archive that has it.
void priority_archive_search();
/// --scan_libraries: names that several places define.
void report_multiple_definitions();
