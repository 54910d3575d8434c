// Where a message points: a place in the user's input.
//
// Objects of the link keep their position by value, so it is small: the file's name is an interned
// pointer.
#pragma once

/// The interface of a position.
class DIAG_SRCINFO {
  public:
    virtual ~DIAG_SRCINFO() = default;
    /// The file's name; empty if there is none.
    virtual const char* file() const = 0;
    /// The line, from 1; 0 means unknown.
    virtual unsigned line() const = 0;
    /// The column, from 1; 0 means unknown.
    virtual unsigned column() const = 0;
    /// True if the position is only near the place meant.
    virtual bool approx() const = 0;
    /// Equal file name, line and column.
    virtual bool is_equal(const DIAG_SRCINFO* other) const = 0;
};

class DIAG_SRCINFO_DATA : public DIAG_SRCINFO {
  public:
    DIAG_SRCINFO_DATA() = default;
    DIAG_SRCINFO_DATA(const char* file, unsigned line, unsigned column = 0, bool approx = false) {
        set_file(file);
        set_line(line);
        set_column(column);
        set_approx(approx);
    }
    /// A copy of any position.
    explicit DIAG_SRCINFO_DATA(const DIAG_SRCINFO& other)
        : DIAG_SRCINFO_DATA(other.file(), other.line(), other.column(), other.approx()) {}
    DIAG_SRCINFO_DATA(const DIAG_SRCINFO_DATA&) = default;
    DIAG_SRCINFO_DATA& operator=(const DIAG_SRCINFO_DATA&) = default;

    const char* file() const override { return file_; }
    unsigned line() const override { return line_; }
    unsigned column() const override { return column_; }
    bool approx() const override { return approx_; }
    bool is_equal(const DIAG_SRCINFO* other) const override;

    /// Keeps a lasting copy of the name; null means empty.
    void set_file(const char* file);
    void set_line(unsigned line) { line_ = line; }
    void set_column(unsigned column) { column_ = column; }
    void set_approx(bool approx) { approx_ = approx; }

  private:
    const char* file_ = "";
    unsigned line_ = 0;
    unsigned column_ = 0;
    bool approx_ = false;
};

/// The position of something in a command file, option or input.
class SOURCE_POSITION : public DIAG_SRCINFO_DATA {
  public:
    SOURCE_POSITION() = default;
    /// File, line and column of `other`, never its approximate mark; null gives an unknown
    /// position.
    explicit SOURCE_POSITION(const SOURCE_POSITION* other) {
        if (other != nullptr)
            *this = SOURCE_POSITION(other->file(), other->line(), other->column());
    }
    SOURCE_POSITION(const char* file, unsigned line, unsigned column = 0)
        : DIAG_SRCINFO_DATA(file, line, column) {}
    SOURCE_POSITION(const SOURCE_POSITION&) = default;
    SOURCE_POSITION& operator=(const SOURCE_POSITION&) = default;

    bool is_known() const { return file()[0] != '\0'; }
};
