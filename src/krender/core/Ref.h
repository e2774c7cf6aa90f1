#pragma once
#include <type_traits>
#include <utility>

/// A counted reference to a shared object: it calls ref() and unref() so that its owner need not. It holds an object or
/// nothing, and is as large as a pointer. T is any class with ref() and unref().
template <class T>
class Ref
{
public:
    /// Holds nothing.
    constexpr Ref() noexcept = default;
    /// Adds a reference to the object; null holds nothing.
    explicit Ref(T* object) : fObject(object)
    {
        if (fObject)
            counted()->ref();
    }
    Ref(const Ref& other) : Ref(other.fObject) {}
    Ref(Ref&& other) noexcept : fObject(std::exchange(other.fObject, nullptr)) {}
    ~Ref()
    {
        if (fObject)
            counted()->unref();
    }
    Ref& operator=(Ref other) noexcept
    {
        std::swap(fObject, other.fObject);
        return *this;
    }

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
    friend bool operator==(const Ref&, const Ref&) noexcept = default;

    /// Gives the reference up to the caller, who must call unref(); nothing is held afterwards.
    [[nodiscard]] T* release() noexcept { return std::exchange(fObject, nullptr); }

private:
    /// Counting does not change what an object is, so const objects are counted too. The cast finds a host's override
    /// where the overloads for const objects are hidden by it.
    [[nodiscard]] std::remove_const_t<T>* counted() const noexcept
    {
        return const_cast<std::remove_const_t<T>*>(fObject);
    }

    T* fObject = nullptr;
};
