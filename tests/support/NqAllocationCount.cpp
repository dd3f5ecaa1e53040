#include "support/NqAllocationCount.h"

#include <cerrno>
#include <cstdlib>

// All allocation of the program comes by here, that of operator new and of the C libraries too.

extern "C" {
void* __libc_malloc(std::size_t size) noexcept;
void* __libc_calloc(std::size_t count, std::size_t size) noexcept;
void* __libc_realloc(void* block, std::size_t size) noexcept;
void* __libc_memalign(std::size_t alignment, std::size_t size) noexcept;
}

namespace {

std::size_t theAllocations = 0;

} // namespace

extern "C" {
void* malloc(std::size_t size) noexcept {
    ++theAllocations;
    return __libc_malloc(size);
}
void* calloc(std::size_t count, std::size_t size) noexcept {
    ++theAllocations;
    return __libc_calloc(count, size);
}
void* realloc(void* block, std::size_t size) noexcept {
    ++theAllocations;
    return __libc_realloc(block, size);
}
void* aligned_alloc(std::size_t alignment, std::size_t size) noexcept {
    ++theAllocations;
    return __libc_memalign(alignment, size);
}
int posix_memalign(void** block, std::size_t alignment, std::size_t size) noexcept {
    ++theAllocations;
    *block = __libc_memalign(alignment, size);
    return *block ? 0 : ENOMEM;
}
}

std::size_t nqAllocations() {
    return theAllocations;
}
