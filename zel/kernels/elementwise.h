/// @file
/// Operations on each element. Floating point multiplies and adds separately; integers wrap modulo
/// 2^32.
#pragma once

#include <cmath>
#include <concepts>
#include <cstddef>
#include <cstdint>
#include <span>
#include <type_traits>

namespace zel::kernels {

namespace detail {

/// Runs an operation in a type where it cannot overflow: integers as their unsigned twins.
template <class T, class Operation>
[[nodiscard]] constexpr T wrapped(T a, T b, Operation&& operation) {
  if constexpr (std::is_integral_v<T>) {
    using U = std::make_unsigned_t<T>;
    return static_cast<T>(operation(static_cast<U>(a), static_cast<U>(b)));
  } else {
    return operation(a, b);
  }
}

}  // namespace detail

template <class T>
void add(std::span<T> x, std::span<const T> y) {
  for (std::size_t i = 0; i < x.size(); ++i) {
    x[i] = detail::wrapped(x[i], y[i], [](auto a, auto b) { return a + b; });
  }
}

template <class T>
void subtract(std::span<T> x, std::span<const T> y) {
  for (std::size_t i = 0; i < x.size(); ++i) {
    x[i] = detail::wrapped(x[i], y[i], [](auto a, auto b) { return a - b; });
  }
}

template <class T>
void scale(std::span<T> x, T factor) {
  for (T& element : x) {
    element = detail::wrapped(element, factor, [](auto a, auto b) { return a * b; });
  }
}

/// The operations of combineEach; integers wrap.
struct Sum {
  template <class T>
  constexpr T operator()(T a, T b) const {
    return detail::wrapped(a, b, [](auto x, auto y) { return x + y; });
  }
};
struct Difference {
  template <class T>
  constexpr T operator()(T a, T b) const {
    return detail::wrapped(a, b, [](auto x, auto y) { return x - y; });
  }
};
struct Product {
  template <class T>
  constexpr T operator()(T a, T b) const {
    return detail::wrapped(a, b, [](auto x, auto y) { return x * y; });
  }
};

/// result[i] = operation(x[i], y[i]); the result may be x or y.
template <class T, class Operation>
void combineEach(std::span<const T> x, std::span<const T> y, T* result, Operation operation) {
  for (std::size_t i = 0; i < x.size(); ++i) result[i] = operation(x[i], y[i]);
}

/// result[i] = operation(x[i], value); the result may be x.
template <class T, class Operation>
void combineEach(std::span<const T> x, T value, T* result, Operation operation) {
  for (std::size_t i = 0; i < x.size(); ++i) result[i] = operation(x[i], value);
}

/// x[i] = x[i] + factor y[i].
template <class T>
void accumulate(std::span<T> x, std::span<const T> y, T factor) {
  for (std::size_t i = 0; i < x.size(); ++i) x[i] = Sum()(x[i], Product()(factor, y[i]));
}

/// result[i] = x[i] y[i].
template <class T>
void multiplyEach(std::span<const T> x, std::span<const T> y, T* result) {
  combineEach(x, y, result, Product());
}

template <class T>
void shift(std::span<T> x, T summand) {
  for (T& element : x) {
    element = detail::wrapped(element, summand, [](auto a, auto b) { return a + b; });
  }
}

/// The smallest integer stays what it is.
template <class T>
void absolute(std::span<T> x) {
  for (T& element : x) {
    if constexpr (std::is_integral_v<T>) {
      if (element < 0)
        element = detail::wrapped(T{0}, element, [](auto a, auto b) { return a - b; });
    } else {
      element = std::fabs(element);
    }
  }
}

/// (x - centre) / scale.
template <std::floating_point T>
void standardize(std::span<T> x, T centre, T scale) {
  for (T& element : x) element = (element - centre) / scale;
}

}  // namespace zel::kernels
