#pragma once
#include <common/MessageOutput.h>
#include <common/Source.h>

#include <cstddef>
#include <memory>
#include <stdexcept>
#include <string>
#include <utility>

/// Where the user wrote something.
struct InputPlace
{
    std::string origin;                            ///< the file, or "krview" for the command line
    std::shared_ptr<const krTools::Source> source; ///< the scene file; null: there is no more to say than the origin
    std::size_t position = 0;                      ///< byte index into it
};

/// An error in the user's scene or options. The text says what is wrong.
class InputError : public std::runtime_error
{
public:
    InputError(InputPlace place, const std::string& text) : std::runtime_error(text), fPlace(std::move(place)) {}

    /// Shows it, with the line if there is one.
    void print(krTools::MessageOutput& output) const;

private:
    InputPlace fPlace;
};
