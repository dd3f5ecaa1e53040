// A program that links this gives each of its objects cache lines of its own. Loops that one thread has made
// lie side by side in memory, or in gaps that an earlier object has left; where two of them run on two cores
// at once, each write to a line that they share takes it from the other core.

#include <cstdint>
#include <cstdlib>
#include <new>

namespace {

constexpr std::size_t kLine = 64;

} // namespace

void* operator new(std::size_t size) {
    const std::size_t lines = size / kLine + (size % kLine != 0 || size == 0 ? 1 : 0);
    for (;;) {
        if (lines <= PTRDIFF_MAX / kLine) {
            if (void* const memory = std::aligned_alloc(kLine, lines * kLine)) {
                return memory;
            }
        }
        const std::new_handler makeRoom = std::get_new_handler();
        if (!makeRoom) {
            throw std::bad_alloc();
        }
        makeRoom();
    }
}

void operator delete(void* memory) noexcept {
    std::free(memory);
}

void operator delete(void* memory, std::size_t) noexcept {
    std::free(memory);
}
