#pragma once
#include <concepts>
#include <cstddef>
#include <type_traits>
#include <utility>

class IResource;

template <class From, class To>
concept PointerConvertibleTo = std::convertible_to<From*, To*>;

/// A counted reference to a shared object: it calls ref() and unref() so that its owner need not. It holds an object or
/// nothing, and is as large as a pointer.
/// @tparam T  a class with ref() and unref(), const or not; it may be incomplete where a Ref is only declared
template <class T>
class Ref
{
public:
    /// Holds nothing.
    constexpr Ref() noexcept = default;
    constexpr Ref(std::nullptr_t) noexcept {}
    /// Adds a reference to the object; null holds nothing.
    explicit Ref(T* object) : fObject(object)
    {
        if (fObject)
            counted()->ref();
    }
    Ref(const Ref& other) : Ref(other.fObject) {}
    Ref(Ref&& other) noexcept : fObject(std::exchange(other.fObject, nullptr)) {}
    /// From a reference to a derived class, or to the same class that is not const.
    template <PointerConvertibleTo<T> Other>
    Ref(const Ref<Other>& other) : Ref(static_cast<T*>(other.get()))
    {
    }
    template <PointerConvertibleTo<T> Other>
    Ref(Ref<Other>&& other) noexcept : fObject(other.release())
    {
    }
    ~Ref()
    {
        if (fObject)
            counted()->unref();
    }
    /// Takes what `other` holds and gives up what was held, in this order: an object that ends here may look at this
    /// reference, or assign to it.
    Ref& operator=(Ref other) noexcept
    {
        swap(*this, other);
        return *this;
    }
    friend void swap(Ref& left, Ref& right) noexcept { std::swap(left.fObject, right.fObject); }

    /// Takes over a reference that the caller holds, as the creator of an IResource does; null holds nothing.
    [[nodiscard]] static Ref adopt(T* object) noexcept
    {
        Ref result;
        result.fObject = object;
        return result;
    }

    /// The object, borrowed; null when nothing is held.
    [[nodiscard]] T* get() const noexcept { return fObject; }
    [[nodiscard]] T& operator*() const noexcept { return *fObject; }
    [[nodiscard]] T* operator->() const noexcept { return fObject; }
    [[nodiscard]] explicit operator bool() const noexcept { return fObject; }
    /// Whether both are the same object, or both are nothing.
    friend bool operator==(const Ref&, const Ref&) noexcept = default;
    friend bool operator==(const Ref& left, const T* right) noexcept { return left.fObject == right; }

    /// Gives the reference up to the caller, who must call unref(); nothing is held afterwards.
    [[nodiscard]] T* release() noexcept { return std::exchange(fObject, nullptr); }

private:
    /// The object for counting, which does not change what it is. An override of ref() hides the overload for const
    /// objects, so the cast and not that overload.
    [[nodiscard]] std::remove_const_t<T>* counted() const noexcept
    {
        return const_cast<std::remove_const_t<T>*>(fObject);
    }

    T* fObject = nullptr;
};

/// Makes an object and the one reference to it, whichever count the class starts with: an IResource starts with its
/// creator's reference, which is taken over, every other shared object with none.
template <class T, class... Arguments>
[[nodiscard]] Ref<T> makeRef(Arguments&&... arguments)
{
    auto* object = new T(std::forward<Arguments>(arguments)...);
    if constexpr (std::derived_from<T, IResource>)
        return Ref<T>::adopt(object);
    else
        return Ref<T>(object);
}
