#pragma once

#include <filesystem>
#include <string>

namespace stcheck {

// Names what a path is when it is not a regular file, for messages: "a folder", "a FIFO",
// "a character device", ...; null for a regular file. Reading anything but a regular file
// could block (a FIFO) or never end (/dev/zero), so only regular files are read as drawings.
const char* fileKindName(std::filesystem::file_type type);

// Why `path` cannot be a standards file, as one line naming it ("standards file PATH is a
// folder, not a standards drawing", "... not found"); empty when it is a regular file.
std::string standardsFileProblem(const std::string& path);

}  // namespace stcheck
