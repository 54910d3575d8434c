// What the preprocessor asks of the program that it works for.
#pragma once

class DIAGNOSTIC;

class CPP_CLIENT_INTERFACE {
  public:
    virtual ~CPP_CLIENT_INTERFACE() = default;
    /// The path of an include file, or null; `angle` for a name in angle brackets. `from` is the
    /// path of the file that includes it.
    virtual const char* find_h_file(const char* name, const char* from, bool angle) = 0;
    /// The next line of output comes from there.
    virtual void set_srcloc(const char* file, unsigned line) = 0;
    /// Takes a message, which carries its position.
    virtual void process_diagnostic(DIAGNOSTIC& diag) = 0;
};
