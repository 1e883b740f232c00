#pragma once

#include <windows.h>

#include <cstddef>

namespace support {

/// How many blocks of the process heap are in use; LocalAlloc takes its memory there.
inline std::size_t heap_use()
{
    const HANDLE heap = ::GetProcessHeap();
    std::size_t blocks = 0;
    PROCESS_HEAP_ENTRY entry{};
    ::HeapLock(heap);
    while (::HeapWalk(heap, &entry))
        if ((entry.wFlags & PROCESS_HEAP_ENTRY_BUSY) != 0)
            ++blocks;
    ::HeapUnlock(heap);
    return blocks;
}

} // namespace support
