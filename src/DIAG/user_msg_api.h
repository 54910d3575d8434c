// Free-text messages for code that has no row of its own: the object file layer's reports above
// all.
#pragma once

class DIAG_SRCINFO;

class USER_MSG {
  public:
    static USER_MSG* get_umsg_obj();

    [[gnu::format(printf, 2, 3)]] void debug(const char* format, ...);
    [[gnu::format(printf, 2, 3)]] void remark(const char* format, ...);
    [[gnu::format(printf, 2, 3)]] void advice(const char* format, ...);
    [[gnu::format(printf, 3, 4)]] void advice(const DIAG_SRCINFO* position, const char* format,
                                              ...);
    /// A warning, or an error if warnings count as errors. The number is not printed.
    [[gnu::format(printf, 3, 4)]] void warning(unsigned number, const char* format, ...);
    [[gnu::format(printf, 4, 5)]] void warning(const DIAG_SRCINFO* position, unsigned number,
                                               const char* format, ...);
    [[gnu::format(printf, 2, 3)]] void error(const char* format, ...);
    [[gnu::format(printf, 3, 4)]] void error(const DIAG_SRCINFO* position, const char* format, ...);
    /// A fault of the tool.
    [[gnu::format(printf, 2, 3)]] void apperror(const char* format, ...);
    [[gnu::format(printf, 2, 3)]] void fatal(const char* format, ...);
    [[gnu::format(printf, 3, 4)]] void fatal(const DIAG_SRCINFO* position, const char* format, ...);
    /// A fatal fault of the tool in `where`.
    [[gnu::format(printf, 3, 4)]] void die(const char* where, const char* format, ...);

    void set_warnings_as_errors(bool on) { warnings_as_errors_ = on; }
    unsigned get_error_count() const;

  private:
    USER_MSG() = default;
    bool warnings_as_errors_ = false;
};
