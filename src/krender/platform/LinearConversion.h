#pragma once
#include <krender/platform/Linear.h>

#include <concepts>
#include <type_traits>
#include <utility>

/// Conversions from and to the points, vectors and matrices of other mathematics libraries, which need no more than the
/// usual ways to reach a component:
///
///     const auto corner = krLinear::convert<krLinear::Point>(imathVector);
///     const auto model = krLinear::convert<glm::dmat4>(affineMatrix);
///
/// Matrices are copied index by index: [r][c], or (r, c) where there is no subscript, becomes row r, column c. Here a
/// point is a row vector (p * M) and a translation stands in row 3. For another library that means:
/// - row vectors, rows first (Imath): nothing to do;
/// - column vectors, columns first, so that m[3] is the translation (GLM): nothing to do, the two differences cancel;
/// - column vectors, addressed as (row, column) (Eigen): the caller transposes, `convert<AffineMatrix>(m.transpose())`
///   and `convert<Eigen::Matrix4d>(affineMatrix).transpose()`.
namespace krLinear
{

template <class T>
concept HasXYZ = std::convertible_to<decltype(std::declval<T>().x + std::declval<T>().y + std::declval<T>().z), double>;
template <class T>
concept HasW = std::convertible_to<decltype(std::declval<T>().w), double>;
template <class T>
concept HasSubscript = std::convertible_to<decltype(std::declval<T>()[1]), double>;
template <class T>
concept HasTwoSubscripts = std::convertible_to<decltype(std::declval<T>()[1][1]), double>;
template <class T>
concept HasRowAndColumn = std::convertible_to<decltype(std::declval<T>()(1, 1)), double>;

template <class T>
concept HasThree = HasXYZ<T> || HasSubscript<T>;
/// Three numbers, as x, y and z or by subscript. A type with a w is refused: without its w a point would be another.
template <class T>
concept Triple = HasThree<const T&> && !HasW<const T&>;
/// Four by four numbers, as [r][c] or (r, c).
template <class T>
concept Matrix4x4 = HasTwoSubscripts<const T&> || HasRowAndColumn<const T&>;

template <class T>
concept LibraryTriple =
    std::same_as<T, PointFlt> || std::same_as<T, Point> || std::same_as<T, Vector> || std::same_as<T, Normal>;
template <class T>
concept LibraryMatrix = std::same_as<T, AffineMatrix> || std::same_as<T, ProjMatrix>;

/// A class that stores its numbers inside itself, as a result must. Views, pointers and containers on the heap do not.
template <class T, unsigned Count>
concept Holds = std::is_class_v<T> && std::default_initializable<T> && std::is_trivially_destructible_v<T> &&
                sizeof(T) >= Count * sizeof(float);

template <class From, class To>
concept OneLibraryTriple = LibraryTriple<From> || LibraryTriple<To>;
template <class From, class To>
concept TripleFor = Triple<From> && Triple<To> && OneLibraryTriple<From, To> && Holds<To, 3>;
template <class From, class To>
concept OneLibraryMatrix = LibraryMatrix<From> || LibraryMatrix<To>;
template <class From, class To>
concept MatrixFor = Matrix4x4<From> && Matrix4x4<To> && OneLibraryMatrix<From, To> && Holds<To, 12>;

namespace conversion
{

// Indices are constants, so that they fit any library's index type without a warning.

template <int I, Triple T>
[[nodiscard]] constexpr decltype(auto) component(T& triple)
{
    if constexpr (!HasXYZ<T&>)
        return triple[I];
    else if constexpr (I == 0)
        return (triple.x);
    else if constexpr (I == 1)
        return (triple.y);
    else
        return (triple.z);
}

template <int Row, int Column, Matrix4x4 T>
[[nodiscard]] constexpr decltype(auto) element(T& matrix)
{
    if constexpr (HasTwoSubscripts<T&>)
        return matrix[Row][Column];
    else
        return matrix(Row, Column);
}

/// Assigns with a cast to the type of the place, which may be narrower.
template <class Place, class Value>
constexpr void store(Place&& place, const Value& value)
{
    place = static_cast<std::remove_cvref_t<Place>>(value);
}

template <int Row, int Column, class To, class From>
constexpr void copyElement(To& to, const From& from)
{
    if constexpr (Column == 3 && std::same_as<To, AffineMatrix>)
        return;
    else if constexpr (Column == 3 && std::same_as<From, AffineMatrix>)
        store(element<Row, Column>(to), Row == 3 ? 1 : 0);
    else
        store(element<Row, Column>(to), element<Row, Column>(from));
}

} // namespace conversion

/// The same three numbers in another type; one of the two types is this library's. Each number is cast to
/// the type that holds it.
template <class To, TripleFor<To> From>
[[nodiscard]] constexpr To convert(const From& from)
{
    To to{};
    const auto copy = [&]<int... I>(std::integer_sequence<int, I...>)
    {
        (conversion::store(conversion::component<I>(to), conversion::component<I>(from)), ...);
    };
    copy(std::make_integer_sequence<int, 3>());
    return to;
}

/// The same matrix in another type; one of the two types is this library's. An AffineMatrix takes columns 0 to 2 and
/// gives (0, 0, 0, 1) for column 3: a projection does not fit into it.
template <class To, MatrixFor<To> From>
[[nodiscard]] constexpr To convert(const From& from)
{
    To to{};
    const auto copy = [&]<int... I>(std::integer_sequence<int, I...>)
    {
        (conversion::copyElement<I / 4, I % 4>(to, from), ...);
    };
    copy(std::make_integer_sequence<int, 16>());
    return to;
}

} // namespace krLinear
