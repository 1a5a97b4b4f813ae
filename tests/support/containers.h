/// @file
/// What tests of vectors and matrices share.
#pragma once

#include <gtest/gtest.h>

#include <cstdio>
#include <string>
#include <vector>

#include "tests/support/failing_new.h"
#include "tests/support/failing_storage.h"
#include "zel/base/Zel_zelbase.h"

namespace zel::test {

/// Sizes of a matrix and its elements in the order of columns, rows, layers; the elements of a
/// vector.
template <class Container>
std::vector<typename Container::value_type> contents(const Container& a) {
  using T = typename Container::value_type;
  if constexpr (requires { a(1, 1); }) {
    std::vector<T> all{static_cast<T>(a.NrOfColumns()), static_cast<T>(a.NrOfRows())};
    for (int c = 1; c <= a.NrOfColumns(); ++c) {
      for (int r = 1; r <= a.NrOfRows(); ++r) all.push_back(a(c, r));
    }
    return all;
  } else {
    return {a.begin(), a.end()};
  }
}

/// Counts OnChange of an object that it does not outlive.
struct Events {
  explicit Events(auto& object) {
    object.OnChange = [this](TObject*) { ++count; };
  }
  Events(const Events&) = delete;
  Events& operator=(const Events&) = delete;
  int count = 0;
};

/// Lets the 1st, 2nd, ... allocation of an operation fail until it succeeds, for array storage and
/// for operator new: each failure must raise the message, and `check` must find everything as it
/// was. At least one allocation must fail.
/// @param prepare  runs before each attempt
template <class Error = EZELMatrixError, class Operation, class Check, class Prepare = void (*)()>
void expectFailuresHarmless(
    Operation&& operation, const std::string& message, Check&& check, Prepare&& prepare = [] {}) {
  int failures = 0;
  const auto attempt = [&](auto&& fail) {
    for (int k = 0; k < 50; ++k) {
      char caught[200] = "";
      prepare();
      try {
        const auto failing = fail(k);
        operation();
        return;
      } catch (const Error& error) {
        std::snprintf(caught, sizeof caught, "%s", error.what());
      }
      ++failures;
      EXPECT_EQ(caught, message) << "allocation " << k;
      check();
    }
    ADD_FAILURE() << "too many allocations";
  };
  attempt([](int k) { return FailingStorage(k); });
  attempt([](int k) { return FailingNew(k); });
  EXPECT_GT(failures, 0);
}

}  // namespace zel::test
