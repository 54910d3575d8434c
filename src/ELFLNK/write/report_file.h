// The files that reports go to, and what is said if that fails.
#pragma once

class FHM_FILE;

/// The file of that name for a report, or standard output without a name; null after the report
/// that it cannot be opened.
FHM_FILE* open_report(const char* name);
/// Ends the report; `written`: all of its text went to the file so far. `what` is its name for the
/// user.
void close_report(FHM_FILE* file, bool written, const char* what);
