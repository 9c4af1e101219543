/** Where a virtual member function stands in its class's table. */
#pragma once

#include <cstddef>
#include <cstring>

#include <gtest/gtest.h>

namespace kestrin_test {

/**
 * The slot of a virtual member function, counted from 0; a virtual destructor takes two. -1 for a
 * function that is not virtual.
 *
 * Compilers on our platforms agree on what a pointer to a member function holds: an address and an
 * adjustment. For a virtual function the address is the offset into the table, marked by an odd
 * number: the address itself is odd, or on ARM, where odd addresses are real ones, the adjustment.
 */
template <class Member>
int VtableSlot(Member member)
{
    std::ptrdiff_t words[2] = {};
    static_assert(sizeof member == sizeof words, "not a pointer to a member function");
    std::memcpy(words, &member, sizeof words);
#if defined(__arm__) || defined(__aarch64__)
    if (words[1] % 2 == 0)
        return -1;
    return static_cast<int>(words[0] / static_cast<std::ptrdiff_t>(sizeof(void*)));
#else
    if (words[0] % 2 == 0)
        return -1;
    return static_cast<int>((words[0] - 1) / static_cast<std::ptrdiff_t>(sizeof(void*)));
#endif
}

/** Expects the functions to stand one after the other, and no other of the interface behind them.
 */
template <class Interface, class... Members>
void ExpectSlots(int first, Members... members)
{
    // What a derived class adds stands in the first slot that is free.
    struct Derived : Interface
    {
        virtual void Added() = 0;
    };
    int expected = first;
    for (int slot : {VtableSlot(members)..., VtableSlot(&Derived::Added)})
        EXPECT_EQ(slot, expected++);
}

} // namespace kestrin_test
