#pragma once
#include <stdexcept>
#include <string>
#include <utility>

/// An error in the user's scene or options. The text says what is wrong; origin() is the scene file, or "krview" for the
/// command line.
class InputError : public std::runtime_error
{
public:
    InputError(std::string origin, const std::string& text) : std::runtime_error(text), fOrigin(std::move(origin)) {}

    [[nodiscard]] const std::string& origin() const noexcept { return fOrigin; }

private:
    std::string fOrigin;
};
