/**
 * Memory that no access may leave: pages before and behind it cannot be touched at all.
 *
 *     GuardedBuffer buffer(100);
 *     buffer.Data()[100] = 0; // ends the process
 *
 * Pages are larger than most buffers, so one side alone is tight; by default it is the end.
 */
#pragma once

#include <cstddef>
#include <cstdint>
#include <new>

#include <sys/mman.h>
#include <unistd.h>

namespace kestrin_test {

class GuardedBuffer
{
public:
    enum Side
    {
        AtEnd,
        AtBegin
    };

    explicit GuardedBuffer(std::size_t size, Side tight = AtEnd) : _size(size)
    {
        const auto page = static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
        const std::size_t inner = (size + page - 1) / page * page;
        _mapped = inner + 2 * page;
        void* memory = mmap(nullptr, _mapped, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
        if (memory == MAP_FAILED)
            throw std::bad_alloc();
        _memory = static_cast<std::uint8_t*>(memory);
        if (inner != 0 && mprotect(_memory + page, inner, PROT_READ | PROT_WRITE) != 0)
            throw std::bad_alloc();
        _data = _memory + page + (tight == AtEnd ? inner - size : 0);
    }
    ~GuardedBuffer() { munmap(_memory, _mapped); }
    GuardedBuffer(const GuardedBuffer&) = delete;
    GuardedBuffer& operator=(const GuardedBuffer&) = delete;

    std::uint8_t* Data() const { return _data; }
    std::size_t Size() const { return _size; }

private:
    std::size_t _size;
    std::size_t _mapped;
    std::uint8_t* _memory;
    std::uint8_t* _data;
};

} // namespace kestrin_test
