/// @file
/// Checks the class and the exact text of an exception.
#pragma once

#include <gtest/gtest.h>

#include <string>

#define EXPECT_THROW_MSG(statement, exception, message) \
  do {                                                  \
    try {                                               \
      statement;                                        \
      ADD_FAILURE() << #statement " does not throw";    \
    } catch (const exception& caught) {                 \
      EXPECT_EQ(std::string(message), caught.what());   \
    }                                                   \
  } while (false)
