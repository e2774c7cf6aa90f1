#pragma once
#include <krender/core/Ref.h>

#include <utility>
#include <vector>

/// Pointers to shared objects, with one reference on each. It is for interfaces that hand out plain pointers; where they
/// do not, std::vector<Ref<T>> is enough. Null pointers are kept and hold nothing.
template <class T>
class RefVector
{
public:
    RefVector() noexcept = default;
    /// Takes over a reference that the caller holds on each object.
    explicit RefVector(std::vector<T*> objects) noexcept : fPointers(std::move(objects)) {}
    RefVector(const RefVector&) = delete;
    RefVector& operator=(const RefVector&) = delete;
    ~RefVector() { clear(); }

    /// The objects, borrowed.
    [[nodiscard]] const std::vector<T*>& pointers() const noexcept { return fPointers; }

    /// Appends an object.
    void append(Ref<T> object)
    {
        fPointers.push_back(nullptr);
        fPointers.back() = object.release();
    }
    /// Appends objects and takes over a reference that the caller holds on each. They may be this vector's own, hence
    /// the copy.
    void adopt(std::vector<T*> objects) { fPointers.insert(fPointers.end(), objects.begin(), objects.end()); }

    /// Empties the vector, then gives up the references in order, so that an object's end finds the vector empty.
    void clear()
    {
        clear([](T&) {});
    }
    /// As above.
    /// @param before  called with each object before its reference is given up
    template <class Before>
    void clear(Before before)
    {
        for (T* object : std::exchange(fPointers, {}))
            if (const auto last = Ref<T>::adopt(object))
                before(*last);
    }

private:
    std::vector<T*> fPointers;
};
