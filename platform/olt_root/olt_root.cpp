#include "xpon/peer_side/olt_root.hpp"

#include <cstdlib>

namespace xpon {

std::string below_olt_root(std::string_view absolute_path) {
    const char* root = std::getenv("OLT_ROOT"); // NOLINT(concurrency-mt-unsafe): nothing changes the environment
    std::string path = root == nullptr ? "" : root;
    path += absolute_path;
    return path;
}

} // namespace xpon
