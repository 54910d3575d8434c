// How the map file names the file that a line is about.
#pragma once

class ARCHIVE_FILE;
class OBJ_FILE;

/// Prints library and member, or the file; a library that the line before named is left blank.
class MAP_ORIGIN {
  public:
    /// Nothing for null and for the file of what the linker makes.
    void print(const OBJ_FILE* file);

  private:
    const ARCHIVE_FILE* library_ = nullptr;
};
