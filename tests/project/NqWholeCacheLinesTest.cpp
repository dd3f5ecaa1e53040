#include <gtest/gtest.h>

#include <cstdint>
#include <map>
#include <memory>
#include <new>
#include <vector>

namespace {

TEST(NqWholeCacheLinesTest, NoTwoObjectsShareALine) {
    std::vector<std::unique_ptr<char[]>> objects;
    std::map<std::uintptr_t, const char*> ownerOfLine;
    for (const bool isKept : {false, true}) { // the second time in the gaps that the first has left
        for (const std::size_t size : {1u, 8u, 56u, 64u, 65u, 128u, 1000u}) {
            for (unsigned i = 0; i < 30; ++i) {
                auto& object = objects.emplace_back(new char[size]);
                const auto begin = reinterpret_cast<std::uintptr_t>(object.get());
                if (!isKept && i % 3 == 0) {
                    object.reset();
                    continue;
                }
                for (std::uintptr_t line = begin / 64; line <= (begin + size - 1) / 64; ++line) {
                    EXPECT_TRUE(ownerOfLine.emplace(line, object.get()).second) << size;
                }
            }
        }
    }
}

TEST(NqWholeCacheLinesTest, WhatCannotBeGivenIsRefused) {
    volatile std::size_t size = SIZE_MAX;
    EXPECT_THROW(::operator delete(::operator new(size)), std::bad_alloc);
    EXPECT_EQ(::operator new(size / 2, std::nothrow), nullptr);
    void* const nothing = ::operator new(size - SIZE_MAX);
    EXPECT_NE(nothing, nullptr);
    ::operator delete(nothing);
}

} // namespace
