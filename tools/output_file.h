// Files to be written, whole or not at all. "-" is standard output.
#pragma once

#include "file.h"

#include <span>
#include <string>
#include <string_view>
#include <sys/stat.h>

namespace fikleipa::tool {

// A file that appears under its name when it is complete. Until commit() its bytes lie in a file without a name, which
// goes away with the process, or, where the file system has no such files, in a temporary one, which goes away on every
// signal but SIGKILL.
//
// A link stays a link, also one to a file that is not there yet. A file that is there is replaced by another with its
// permissions where that loses nothing; one that has further names, another owner or group than new files get, or
// attributes such as access lists of its own, and one in a folder that cannot be written to, is written over from its
// beginning when all bytes are there and the disk has room for them, while signals wait. It must be writable either
// way. Pipes and devices are written directly.
//
// Two moments are left in which SIGKILL finds something: that between the temporary name and the final one of a file
// that replaces another, which leaves the temporary name behind, and that of writing over a file.
class OutputFile {
public:
    // Fails if `path` is the file that `input` reads. There is at most one OutputFile at a time.
    explicit OutputFile(const std::string& path, const InputFile* input = nullptr);
    OutputFile(const OutputFile&) = delete;
    OutputFile& operator=(const OutputFile&) = delete;
    ~OutputFile();

    void write(std::span<const unsigned char> bytes);
    void write(std::string_view text);
    void commit();

private:
    bool openTemporary(const std::string& folder, mode_t mode);
    bool openNamedTemporary(const std::string& folder, mode_t mode);
    bool isLikeExisting() const;
    bool takePlace();
    void writeOver();

    std::string name_;
    std::string path_; // without links; empty when written directly
    Descriptor existing_;
    bool replaces_ = true; // rather than writes over what exists
    Descriptor file_;
    std::string temporary_; // empty without a name
};

// To be called first. Opens what is closed of the three standard streams, to nothing, so that no file takes its place,
// and lets a write to a closed pipe or past the limit of a file's size be an error like any other.
void prepareProcess();

} // namespace fikleipa::tool
