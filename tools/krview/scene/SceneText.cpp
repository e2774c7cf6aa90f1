#include "SceneText.h"

#include "InputError.h"

#include <nlohmann/json.hpp>

#include <cstdint>
#include <iterator>
#include <string_view>
#include <utility>

namespace
{

constexpr std::size_t kMostBytes = std::size_t{1} << 20;
constexpr std::size_t kMostNesting = 64;

using Json = nlohmann::json;

/// Walks through a text and tells somebody else how far it is.
class CountingIterator
{
public:
    // NOLINTBEGIN(readability-identifier-naming): names of the standard library
    using iterator_category = std::forward_iterator_tag;
    using value_type = char;
    using difference_type = std::ptrdiff_t;
    using pointer = const char*;
    using reference = const char&;
    // NOLINTEND(readability-identifier-naming)

    CountingIterator(const char* at, std::size_t* count) noexcept : fAt(at), fCount(count) {}

    reference operator*() const noexcept { return *fAt; }
    CountingIterator& operator++() noexcept
    {
        ++fAt;
        ++*fCount;
        return *this;
    }
    bool operator==(const CountingIterator& other) const noexcept { return fAt == other.fAt; }
    bool operator!=(const CountingIterator& other) const noexcept { return fAt != other.fAt; }

private:
    const char* fAt;
    std::size_t* fCount;
};

/// Makes the values of what the JSON parser reports.
class TreeBuilder : public nlohmann::json_sax<Json>
{
public:
    explicit TreeBuilder(SceneText& scene) : fScene(scene) {}

    void parse()
    {
        const std::string_view text = fScene.source->text();
        Json::sax_parse(CountingIterator(text.data(), &fRead), CountingIterator(text.data() + text.size(), &fRead),
                        this);
    }

    bool null() override { return add(PlacedValue::Kind::Null); }
    bool boolean(bool value) override { return add(PlacedValue::Kind::Truth, value ? 1 : 0); }
    bool number_integer(std::int64_t value) override { return addWhole(static_cast<double>(value)); }
    bool number_unsigned(std::uint64_t value) override { return addWhole(static_cast<double>(value)); }
    bool number_float(double value, const std::string&) override { return add(PlacedValue::Kind::Number, value); }
    bool string(std::string& value) override
    {
        add(PlacedValue::Kind::Text);
        fAdded->text = std::move(value);
        return true;
    }
    bool binary(Json::binary_t&) override { return false; } // not in texts
    bool start_object(std::size_t) override { return open(PlacedValue::Kind::Object); }
    bool start_array(std::size_t) override { return open(PlacedValue::Kind::List); }
    bool end_object() override { return close(); }
    bool end_array() override { return close(); }
    bool key(std::string& name) override
    {
        fKeyPosition = begin();
        fKey = std::move(name);
        return true;
    }

    bool parse_error(std::size_t position, const std::string&, const nlohmann::detail::exception& error) override
    {
        // Texts are "[name] parse error at line 3, column 7: what" or, of a number out of range, "[name] what".
        constexpr std::string_view kSyntax = "parse error at ";
        std::string_view text = error.what();
        text.remove_prefix(std::min(text.find("] ") + 2, text.size()));
        const bool isSyntax = text.starts_with(kSyntax);
        if (isSyntax)
            text.remove_prefix(std::min(text.find(": ") + 2, text.size()));
        fail(isSyntax ? std::max<std::size_t>(position, 1) - 1 : begin(), std::string(text));
    }

private:
    [[noreturn]] void fail(std::size_t position, const std::string& text) const
    {
        throw InputError({fScene.source->name(), fScene.source, position}, text);
    }

    /// Where what is reported now begins: behind what was reported last and the signs that are not reported.
    std::size_t begin()
    {
        const std::string_view text = fScene.source->text();
        const std::size_t from = std::exchange(fReported, fRead);
        return std::min(text.find_first_not_of(" \t\r\n,:", from), text.size());
    }

    bool addWhole(double value) { return add(PlacedValue::Kind::WholeNumber, value); }

    bool add(PlacedValue::Kind kind, double number = 0)
    {
        PlacedValue* place = &fScene.root;
        if (!fOpen.empty())
            place = &fOpen.back()->members.emplace_back();
        place->name = std::exchange(fKey, {});
        place->kind = kind;
        place->position = begin();
        place->keyPosition = fKeyPosition;
        place->number = number;
        place->end = kind == PlacedValue::Kind::Number || kind == PlacedValue::Kind::WholeNumber
                         ? endOfNumber(place->position)
                         : fRead;
        fAdded = place;
        return true;
    }

    /// The parser may have read one sign more.
    [[nodiscard]] std::size_t endOfNumber(std::size_t position) const
    {
        const std::string_view text = fScene.source->text();
        return std::min(text.find_first_not_of("+-.0123456789eE", position), text.size());
    }

    bool open(PlacedValue::Kind kind)
    {
        add(kind);
        if (fOpen.size() == kMostNesting)
            fail(fAdded->position, "lists and objects stand more than 64 deep in each other here");
        fOpen.push_back(fAdded);
        return true;
    }

    bool close()
    {
        fOpen.back()->end = fRead;
        fOpen.pop_back();
        fReported = fRead;
        return true;
    }

    SceneText& fScene;
    std::size_t fRead = 0;     ///< bytes that the parser has read; one past a number if another sign ended it
    std::size_t fReported = 0; ///< as many when it reported something last
    std::vector<PlacedValue*> fOpen;
    PlacedValue* fAdded = nullptr;
    std::string fKey;
    std::size_t fKeyPosition = 0;
};

} // namespace

SceneText readSceneText(const std::string& path)
{
    return readSceneText(std::make_shared<const krTools::Source>(path, krTools::readText(path, kMostBytes)));
}

SceneText readSceneText(std::shared_ptr<const krTools::Source> source)
{
    SceneText scene{std::move(source), {}};
    TreeBuilder(scene).parse();
    return scene;
}
