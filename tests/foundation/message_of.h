#pragma once

#include <string>

namespace zel::test {

/// Text of the exception that call throws; says so if it throws none or one of another class.
template <class E, class Call>
std::string messageOf(Call&& call) {
  try {
    call();
  } catch (const E& e) {
    return e.what();
  } catch (...) {
    return "(an exception of another class)";
  }
  return "(no exception)";
}

}  // namespace zel::test
