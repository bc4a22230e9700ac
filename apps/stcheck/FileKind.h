#pragma once

#include <string>

namespace stcheck {

// Why `path` cannot be a standards file, as one line naming it ("standards file PATH is a
// folder, not a standards drawing", "... not found"); empty when it is a regular file.
std::string standardsFileProblem(const std::string& path);

}  // namespace stcheck
