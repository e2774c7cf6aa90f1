#pragma once
#include <nlohmann/json_fwd.hpp>

#include <functional>
#include <map>
#include <string>
#include <vector>

/// A value in a scene file that knows where it stands: what does not fit is reported by an InputError with its path.
class SceneValue
{
public:
    using Taker = std::function<void(const SceneValue&)>;

    /// @param file   borrowed, as is the value
    /// @param path   what leads to the value, such as "lights[0].key"; empty for the whole file
    SceneValue(const std::string& file, const nlohmann::json& value, std::string path);

    [[noreturn]] void fail(const std::string& text) const;
    [[nodiscard]] const std::string& file() const noexcept { return fFile; }
    [[nodiscard]] const std::string& path() const noexcept { return fPath; }

    [[nodiscard]] bool isText() const noexcept;
    [[nodiscard]] bool isObject() const noexcept;

    [[nodiscard]] double number(double least, double greatest) const;
    [[nodiscard]] unsigned wholeNumber(unsigned least, unsigned greatest) const;
    [[nodiscard]] bool truth() const;
    [[nodiscard]] std::string text() const;
    /// A number, a truth value or a list of either.
    [[nodiscard]] std::vector<double> numbers() const;
    /// A list of so many numbers.
    [[nodiscard]] std::vector<double> numbers(std::size_t count) const;
    /// The items of a list, in order.
    void forEachItem(const Taker& take) const;
    /// The members of an object, whatever their names.
    void forEachMember(const std::function<void(const std::string&, const SceneValue&)>& take) const;
    /// Hands each member of an object to the taker of its name; one without a taker is an error.
    void readMembers(const std::map<std::string, Taker>& takers) const;

private:
    [[noreturn]] void failType(const char* wanted) const;

    const std::string& fFile;
    const nlohmann::json& fValue;
    std::string fPath;
};
