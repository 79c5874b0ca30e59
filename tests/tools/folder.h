// Folders and files of tests.
#pragma once

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <unistd.h>

namespace fikleipa::tool {

// A new folder that goes away with everything in it.
class Folder {
public:
    Folder() {
        std::string name = (std::filesystem::temp_directory_path() / "fikleipa-test-XXXXXX").string();
        if (::mkdtemp(name.data()) == nullptr) throw std::filesystem::filesystem_error("mkdtemp", {});
        path_ = name;
    }
    Folder(const Folder&) = delete;
    Folder& operator=(const Folder&) = delete;
    ~Folder() {
        std::error_code ignored;
        std::filesystem::remove_all(path_, ignored);
    }

    const std::filesystem::path& path() const { return path_; }

private:
    std::filesystem::path path_;
};

inline std::string slurp(const std::filesystem::path& file) {
    std::ifstream stream(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
}

inline void spill(const std::filesystem::path& file, const std::string& text) {
    std::ofstream(file, std::ios::binary) << text;
}

} // namespace fikleipa::tool
