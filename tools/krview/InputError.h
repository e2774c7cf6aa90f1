#pragma once
#include <stdexcept>
#include <string>
#include <utility>

/// Something wrong in what the user gave to be shown. The text says what, `origin()` whose it is: a scene file, or the
/// program for what stands on the command line.
class InputError : public std::runtime_error
{
public:
    InputError(std::string origin, const std::string& text) : std::runtime_error(text), fOrigin(std::move(origin)) {}

    [[nodiscard]] const std::string& origin() const noexcept { return fOrigin; }

private:
    std::string fOrigin;
};
