#include <gtest/gtest.h>

#include <cstdint>
#include <memory>
#include <new>
#include <set>
#include <vector>

namespace {

TEST(NqWholeCacheLinesTest, NoTwoObjectsShareALine) {
    std::vector<std::unique_ptr<char[]>> objects;
    std::set<std::uintptr_t> lines;
    for (const std::size_t size : {1u, 8u, 56u, 64u, 65u, 128u, 1000u, 8u, 65u}) {
        for (unsigned i = 0; i < 30; ++i) {
            const auto begin = reinterpret_cast<std::uintptr_t>(objects.emplace_back(new char[size]).get());
            for (std::uintptr_t line = begin / 64; line <= (begin + size - 1) / 64; ++line) {
                EXPECT_TRUE(lines.insert(line).second) << size;
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
