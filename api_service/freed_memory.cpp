#include "api_service/freed_memory.hpp"

#include <cerrno>
#include <cstdint>
#include <span>

#include <sys/mman.h>

#include <link.h>
#include <malloc.h>
#include <unistd.h>

namespace xpon::api_service {
namespace {

int give_back_pages_of(dl_phdr_info* object, std::size_t, void*) {
    const auto page_size = static_cast<std::uintptr_t>(::sysconf(_SC_PAGESIZE));
    for (const auto& segment : std::span(object->dlpi_phdr, object->dlpi_phnum)) {
        if (segment.p_type == PT_LOAD && (segment.p_flags & PF_W) == 0) {
            const auto begin = object->dlpi_addr + segment.p_vaddr;
            const auto first_page = begin - begin % page_size;
            // Nobody writes to these, so that nothing is lost.
            ::madvise(reinterpret_cast<void*>(first_page), begin + segment.p_memsz - first_page, MADV_DONTNEED);
        }
    }
    return 0;
}

} // namespace

void give_back_freed_memory(std::size_t bytes) {
    constexpr std::size_t worth_it = 1024 * 1024;
    if (bytes >= worth_it) {
        ::malloc_trim(0);
    }
}

void give_back_pages_of_start() {
    ::dl_iterate_phdr(give_back_pages_of, nullptr);
    ::malloc_trim(0);
    errno = 0;
}

} // namespace xpon::api_service
