/// @file
/// Element-wise arithmetic in place. Integers wrap like the hardware does.
#pragma once

#include <algorithm>
#include <concepts>
#include <cstddef>
#include <span>
#include <type_traits>

namespace zel::kernels {

namespace detail {
/// Arithmetic in which nothing overflows: unsigned for integers, the type itself otherwise.
template <class T>
struct WrappingOf {
  using type = T;
};
template <std::integral T>
struct WrappingOf<T> {
  using type = std::make_unsigned_t<T>;
};
template <class T>
using Wrapping = typename WrappingOf<T>::type;
}  // namespace detail

/// x[i] += y[i] over the shorter length.
template <class T>
void addTo(std::span<T> x, std::span<const std::type_identity_t<T>> y) {
  using W = detail::Wrapping<T>;
  const std::size_t n = std::min(x.size(), y.size());
  for (std::size_t i = 0; i < n; ++i) x[i] = static_cast<T>(static_cast<W>(x[i]) + static_cast<W>(y[i]));
}

/// x[i] -= y[i] over the shorter length.
template <class T>
void subtractFrom(std::span<T> x, std::span<const std::type_identity_t<T>> y) {
  using W = detail::Wrapping<T>;
  const std::size_t n = std::min(x.size(), y.size());
  for (std::size_t i = 0; i < n; ++i) x[i] = static_cast<T>(static_cast<W>(x[i]) - static_cast<W>(y[i]));
}

template <class T>
void scale(std::span<T> x, std::type_identity_t<T> factor) {
  using W = detail::Wrapping<T>;
  for (T& v : x) v = static_cast<T>(static_cast<W>(v) * static_cast<W>(factor));
}

template <std::floating_point T>
void shift(std::span<T> x, std::type_identity_t<T> centre) {
  for (T& v : x) v -= centre;
}

/// (x - centre) / unit, a real division in every element.
template <std::floating_point T>
void shiftAndDivide(std::span<T> x, std::type_identity_t<T> centre, std::type_identity_t<T> unit) {
  for (T& v : x) v = (v - centre) / unit;
}

}  // namespace zel::kernels
