#pragma once
#include <cstddef>
#include <memory>
#include <new>
#include <type_traits>
#include <utility>
#include <vector>

namespace krFrontend
{

/// Storage for the nodes of a tree, returned all at once. Nodes with a destructor do not belong here.
class Arena
{
public:
    template <class T, class... Arguments>
    T* make(Arguments&&... arguments)
    {
        static_assert(std::is_trivially_destructible_v<T>);
        fUsed = (fUsed + alignof(T) - 1) / alignof(T) * alignof(T);
        if (fUsed + sizeof(T) > kBlock)
        {
            fBlocks.push_back(std::make_unique_for_overwrite<std::byte[]>(kBlock));
            fUsed = 0;
        }
        void* place = fBlocks.back().get() + fUsed;
        fUsed += sizeof(T);
        return new (place) T{std::forward<Arguments>(arguments)...};
    }

private:
    static constexpr std::size_t kBlock = std::size_t{64} * 1024;

    std::vector<std::unique_ptr<std::byte[]>> fBlocks;
    std::size_t fUsed = kBlock;
};

} // namespace krFrontend
