#include "TextEdit.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstddef>
#include <optional>
#include <string_view>
#include <utility>
#include <vector>

using Json = nlohmann::ordered_json;
using Kind = PlacedValue::Kind;

namespace
{

constexpr std::string_view kBlanks = " \t\r\n";
constexpr std::size_t kMostColumns = 120;

/// How a text is laid out.
struct Style
{
    std::string lineEnd = "\n";
    std::string indent = "    ";
    std::string colon = ": ";
    std::string comma = ", ";
    bool isOneLine = false;
};

/// Writes values that are new.
class Printer
{
public:
    explicit Printer(Style style) : fStyle(std::move(style)) {}

    [[nodiscard]] const Style& style() const noexcept { return fStyle; }

    /// In one line.
    [[nodiscard]] std::string flat(const Json& value) const
    {
        if (value.is_number_float())
        {
            std::array<char, 32> digits{};
            return {digits.data(),
                    std::to_chars(digits.data(), digits.data() + digits.size(), value.get<double>()).ptr};
        }
        if (!value.is_structured())
            return value.dump();
        std::string items;
        for (const auto& [key, item] : value.items())
            items += (items.empty() ? "" : fStyle.comma) + keyText(value, key) + flat(item);
        return brackets(value, items);
    }

    /// In as many lines as are good to read.
    /// @param indent  of the line that it begins in
    /// @param column  where it begins
    [[nodiscard]] std::string laidOut(const Json& value, const std::string& indent, std::size_t column) const
    {
        std::string line = flat(value);
        const bool isListOfObjects = value.is_array() && !value.empty() && value.front().is_object();
        if (fStyle.isOneLine || !value.is_structured() || value.empty() ||
            (!isListOfObjects && column + line.size() < kMostColumns))
            return line;
        return inLines(value, indent);
    }

    /// An object or a list with each of its items in lines of its own.
    [[nodiscard]] std::string inLines(const Json& value, const std::string& indent) const
    {
        const std::string begin = fStyle.lineEnd + indent + fStyle.indent;
        std::string items;
        for (const auto& [key, item] : value.items())
        {
            const std::string before = keyText(value, key);
            const std::string inner = indent + fStyle.indent;
            if (!items.empty())
                items += ',';
            items += begin;
            items += before;
            items += laidOut(item, inner, inner.size() + before.size());
        }
        return brackets(value, items + fStyle.lineEnd + indent);
    }

    [[nodiscard]] std::string keyText(const Json& parent, const std::string& key) const
    {
        return parent.is_object() ? Json(key).dump() + fStyle.colon : "";
    }

private:
    [[nodiscard]] static std::string brackets(const Json& value, const std::string& items)
    {
        return value.is_object() ? '{' + items + '}' : '[' + items + ']';
    }

    Style fStyle;
};

/// What tells the item of a list from others.
Json identity(const Json& item)
{
    for (const char* key : {"key", "name"})
        if (item.is_object() && item.contains(key))
            return item[key];
    return item;
}

/// A member of an object or an item of a list as it will stand in the text.
struct Piece
{
    std::string text;
    std::optional<std::size_t> old; ///< its place among those of the text; nothing: it is new
};

class Editor
{
public:
    explicit Editor(const SceneText& scene) : fText(scene.source->text()), fPrinter(styleOf(scene)) {}

    [[nodiscard]] std::string edited(const SceneText& scene, const Json& before, const Json& after) const
    {
        return std::string(fText.substr(0, scene.root.position)) + value(scene.root, before, after) +
               std::string(fText.substr(scene.root.end));
    }

private:
    [[nodiscard]] Style styleOf(const SceneText& scene) const
    {
        Style style;
        if (fText.find("\r\n") != std::string_view::npos)
            style.lineEnd = "\r\n";
        if (scene.root.members.empty())
            return style;
        const PlacedValue& first = scene.root.members.front();
        const std::string_view lead = between(scene.root.position + 1, first.keyPosition);
        style.isOneLine = lead.find('\n') == std::string_view::npos;
        if (!style.isOneLine)
            style.indent = lead.substr(lead.rfind('\n') + 1);
        const std::size_t keyEnd = fText.find_last_not_of(" \t\r\n:", first.position - 1) + 1;
        style.colon = between(keyEnd, first.position);
        if (kBlanks.find(style.colon.back()) == std::string_view::npos)
            style.comma = ",";
        return style;
    }

    [[nodiscard]] std::string_view between(std::size_t begin, std::size_t end) const
    {
        return fText.substr(begin, end - begin);
    }

    [[nodiscard]] std::string value(const PlacedValue& old, const Json& before, const Json& after) const
    {
        if (before == after)
            return std::string(between(old.position, old.end));
        if (old.kind == Kind::Object && after.is_string())
            return object(old, asPicture(before), asPicture(after));
        if (old.kind == Kind::Object && after.is_object())
            return object(old, asPicture(before), after);
        if (old.kind == Kind::List && after.is_array())
            return list(old, before.is_array() ? before : Json::array(), after);
        if (const double number = after.is_number() ? after.get<double>() : -1;
            old.kind == Kind::Truth && number >= 0 && number <= 1 && number == std::trunc(number))
            return number != 0 ? "true" : "false";
        const std::string text = fPrinter.laidOut(after, indentAt(old.position), columnAt(old.position));
        return text + (isWrittenWithPoint(old, text) ? ".0" : "");
    }

    [[nodiscard]] static Json asPicture(const Json& value)
    {
        return value.is_object() ? value : value.is_string() ? Json{{"picture", value}} : Json::object();
    }

    /// Whether a whole number takes the place of one such as 1.0.
    [[nodiscard]] bool isWrittenWithPoint(const PlacedValue& old, const std::string& text) const
    {
        return old.kind == Kind::Number && old.number == std::trunc(old.number) &&
               between(old.position, old.end).find('.') != std::string_view::npos &&
               text.find_first_not_of("-0123456789") == std::string::npos;
    }

    [[nodiscard]] std::string object(const PlacedValue& old, const Json& before, const Json& after) const
    {
        std::vector<Piece> pieces;
        for (std::size_t i = 0; i < old.members.size(); ++i)
        {
            const PlacedValue& member = old.members[i];
            const bool stays = after.contains(member.name) || !before.contains(member.name);
            if (!stays)
                continue;
            // What the text says in vain, because it is so anyway, is not in `before`.
            const Json was = before.contains(member.name) ? before[member.name] : said(member);
            const std::string begin(between(member.keyPosition, member.position));
            pieces.push_back({begin + value(member, was, after.value(member.name, was)), i});
        }
        std::size_t at = 0; // where a new member belongs: behind the one that stands before it in `after`
        for (const auto& member : after.items())
        {
            const std::string& key = member.key();
            const auto found =
                std::find_if(pieces.begin(), pieces.end(),
                             [&](const Piece& piece) { return piece.old && old.members[*piece.old].name == key; });
            if (found == pieces.end())
                pieces.insert(pieces.begin() + static_cast<std::ptrdiff_t>(at++),
                              newPiece(old, after, key, member.value()));
            else
                at = static_cast<std::size_t>(found - pieces.begin()) + 1;
        }
        return joined(old, pieces, after);
    }

    /// What a text says in so many words.
    [[nodiscard]] static Json said(const PlacedValue& old)
    {
        switch (old.kind)
        {
        case Kind::Null:
            return {};
        case Kind::Truth:
            return old.number != 0;
        case Kind::Number:
        case Kind::WholeNumber:
            return old.number;
        case Kind::Text:
            return old.text;
        case Kind::List:
        {
            Json items = Json::array();
            for (const PlacedValue& item : old.members)
                items.push_back(said(item));
            return items;
        }
        case Kind::Object:
            break;
        }
        return Json::object(); // its members are looked at one by one
    }

    /// Which of the items from `next` on a new one was; their number when it is none of them.
    [[nodiscard]] static std::size_t counterpart(const Json& item, const Json& before, std::size_t next,
                                                 const Json& after)
    {
        if (before.size() == after.size() && !item.is_object())
            return next;
        std::size_t same = next;
        while (same < before.size() && identity(before[same]) != identity(item))
            ++same;
        if (same < before.size() || next == before.size())
            return same;
        // One that is gone has got another name.
        const bool isGone = std::none_of(after.begin(), after.end(),
                                         [&](const Json& other) { return identity(other) == identity(before[next]); });
        return isGone ? next : same;
    }

    [[nodiscard]] std::string list(const PlacedValue& old, const Json& before, const Json& after) const
    {
        std::vector<Piece> pieces;
        std::size_t next = 0; // of the old items
        for (const Json& item : after)
        {
            const std::size_t same = counterpart(item, before, next, after);
            if (same < std::min(before.size(), old.members.size()))
            {
                pieces.push_back({value(old.members[same], before[same], item), same});
                next = same + 1;
            }
            else
                pieces.push_back(newPiece(old, after, "", item));
        }
        return joined(old, pieces, after);
    }

    [[nodiscard]] Piece newPiece(const PlacedValue& parent, const Json& siblings, const std::string& key,
                                 const Json& item) const
    {
        const std::string before = fPrinter.keyText(siblings, key);
        const std::string lead = leadOf(parent);
        const std::size_t line = lead.rfind('\n');
        if (line == std::string::npos)
            return {before + fPrinter.flat(item), std::nullopt};
        const std::string indent = lead.substr(line + 1);
        return {before + fPrinter.laidOut(item, indent, indent.size() + before.size()), std::nullopt};
    }

    [[nodiscard]] static std::size_t beginOf(const PlacedValue& parent, std::size_t index)
    {
        const PlacedValue& member = parent.members[index];
        return parent.kind == Kind::Object ? member.keyPosition : member.position;
    }

    /// What stands between the bracket and the first member.
    [[nodiscard]] std::string leadOf(const PlacedValue& parent) const
    {
        return parent.members.empty() ? "" : std::string(between(parent.position + 1, beginOf(parent, 0)));
    }

    [[nodiscard]] std::string separatorBefore(const PlacedValue& parent, std::size_t index) const
    {
        return std::string(between(parent.members[index - 1].end, beginOf(parent, index)));
    }

    /// Puts the members between the brackets of their parent.
    [[nodiscard]] std::string joined(const PlacedValue& parent, const std::vector<Piece>& pieces,
                                     const Json& after) const
    {
        if (parent.members.empty())
            return fPrinter.laidOut(after, indentAt(parent.position), columnAt(parent.position));
        std::string text(1, fText[parent.position]);
        const std::string lead = leadOf(parent);
        const std::string separator = parent.members.size() > 1 ? separatorBefore(parent, parent.members.size() - 1)
                                      : lead.find('\n') != std::string::npos ? "," + lead
                                                                             : fPrinter.style().comma;
        for (std::size_t i = 0; i < pieces.size(); ++i)
        {
            const auto old = pieces[i].old;
            text += (i == 0 ? lead : old.value_or(0) > 0 ? separatorBefore(parent, *old) : separator) + pieces[i].text;
        }
        if (!pieces.empty())
            text += between(parent.members.back().end, parent.end - 1);
        return text + fText[parent.end - 1];
    }

    [[nodiscard]] std::size_t lineBegin(std::size_t position) const
    {
        const std::size_t end = position == 0 ? std::string_view::npos : fText.rfind('\n', position - 1);
        return end == std::string_view::npos ? 0 : end + 1;
    }

    [[nodiscard]] std::string indentAt(std::size_t position) const
    {
        const std::size_t begin = lineBegin(position);
        return std::string(between(begin, std::min(fText.find_first_not_of(" \t", begin), fText.size())));
    }

    [[nodiscard]] std::size_t columnAt(std::size_t position) const { return position - lineBegin(position); }

    std::string_view fText;
    Printer fPrinter;
};

} // namespace

std::string editedText(const SceneText& text, const Json& before, const Json& after)
{
    return Editor(text).edited(text, before, after);
}

std::string freshText(const Json& value) { return Printer(Style()).inLines(value, "") + '\n'; }

std::string flatText(const Json& value) { return Printer(Style()).flat(value); }
