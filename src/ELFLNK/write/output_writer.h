// A file that takes its name only when it is complete. Bytes go to a file beside the name; commit()
// gives it the name, and whatever ends the process before removes it. Links to a file stay and lead
// to the new one. A device, and a name in a folder where no file can be made, are written in place;
// a pipe gets the bytes when they are complete, since writing goes to and fro.
#pragma once

#include <string>

class FHM_FILE;

class OUTPUT_WRITER {
  public:
    explicit OUTPUT_WRITER(const char* name) : name_(name), target_(name) {}
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
    bool open_beside(bool pipe);
    bool put_in_place() const;
    void close();

    const char* name_;
    std::string target_; // the file that the name leads to
    std::string beside_; // empty: written in place
    bool pipe_ = false;
    FHM_FILE* file_ = nullptr;
};
