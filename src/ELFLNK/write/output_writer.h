// A file that takes its name only when it is complete. Bytes go to a file beside the name; commit()
// gives it the name, and whatever ends the process before removes it. A name that is no regular
// file (a device, a pipe) and one in a folder where no file can be made are written in place.
#pragma once

#include <string>

class FHM_FILE;

class OUTPUT_WRITER {
  public:
    explicit OUTPUT_WRITER(const char* name) : name_(name) {}
    ~OUTPUT_WRITER();
    OUTPUT_WRITER(const OUTPUT_WRITER&) = delete;
    OUTPUT_WRITER& operator=(const OUTPUT_WRITER&) = delete;

    // The file to write to, in mode "wb+"; null when the name cannot be written, with errno set.
    FHM_FILE* open();
    // The bytes are complete: the file takes the name. False, with errno set, when something went
    // wrong on the way.
    bool commit(bool executable);
    // Removes what was written, and what stands under the name.
    void discard();

  private:
    bool open_beside();
    void close();

    const char* name_;
    std::string beside_; // empty: written in place
    FHM_FILE* file_ = nullptr;
};
