// Running another program and waiting for it.
#pragma once

#include <string>
#include <vector>

/// The time a tool took, in seconds.
struct timing_info {
    double user = 0;
    double system = 0;
    double elapsed = 0;
};

/// The directory of the running executable, where tools are looked up first; null if argv[0] named
/// none.
const char* run_search_path();

/// Takes the directory part of argv[0], if it has one, as run_search_path().
void set_execution_path_to_search_path(const char* argv0);

/// Runs `name` with `argc` arguments and waits. A long command line goes through a temporary file
/// behind `command_file_option` (null or empty: the tool takes none). The tool's exit status, or -1
/// if it could not be run.
int run_command(const char* name, const char* const* argv, int argc,
                const char* command_file_option, int verbosity, bool report_errors,
                timing_info* timing);

/// The command line of a tool while it is put together.
class argv_list {
  public:
    explicit argv_list(const char* name, const char* command_file_option = nullptr,
                       int verbosity = 0)
        : name_(name),
          command_file_option_(command_file_option ? command_file_option : ""),
          verbosity_(verbosity) {}

    void add(const char* text) { args_.emplace_back(text); }
    [[gnu::format(printf, 2, 3)]] void addf(const char* format, ...);
    /// Removes all arguments, or the one at `index`.
    void del() { args_.clear(); }
    void del(int index);
    const char* getarg(int index) const;
    int count() const { return static_cast<int>(args_.size()); }
    int execute(bool report_errors, timing_info* timing = nullptr) const;
    /// Prints the formatted text, then the command.
    [[gnu::format(printf, 2, 3)]] void dump(const char* format, ...) const;

  private:
    std::string name_;
    std::string command_file_option_;
    int verbosity_;
    std::vector<std::string> args_;
};
