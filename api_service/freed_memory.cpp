#include "api_service/freed_memory.hpp"

#include <malloc.h>

namespace xpon::api_service {

void give_back_freed_memory(std::size_t bytes) {
    constexpr std::size_t worth_it = 1024 * 1024;
    if (bytes >= worth_it) {
        ::malloc_trim(0);
    }
}

} // namespace xpon::api_service
