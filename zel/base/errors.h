/// @file
/// Exception classes. Each unit raises a class of its own below EZELError, so that a caller can
/// catch one unit, the library, or every Exception.
#pragma once

#include <stdexcept>
#include <string>

#include "zel/base/api.h"

namespace zel {

/// Root of everything that the library throws on purpose.
class ZEL_API Exception : public std::runtime_error {
 public:
  explicit Exception(const std::string& message) : std::runtime_error(message) {}
  Exception(const Exception&) = default;
  Exception& operator=(const Exception&) = default;
  ~Exception() override;
  /// The complete message, the same text as what().
  [[nodiscard]] std::string Message() const { return what(); }
};

/// Root of the classes raised by the units of the library.
class ZEL_API EZELError : public Exception {
 public:
  using Exception::Exception;
  ~EZELError() override;
};

/// An elementary function outside its domain.
class ZEL_API EMathError : public Exception {
 public:
  using Exception::Exception;
  ~EMathError() override;
};

/// An object or a text that cannot be converted to what was asked for.
class ZEL_API EConvertError : public Exception {
 public:
  using Exception::Exception;
  ~EConvertError() override;
};

/// A file or stream that failed after it had been opened.
class ZEL_API EInOutError : public Exception {
 public:
  using Exception::Exception;
  ~EInOutError() override;
};

/// Raised by the elementary routines.
class ZEL_API EZELMath1Error : public EZELError {
 public:
  using EZELError::EZELError;
  ~EZELMath1Error() override;
};

/// Raised by the vector classes.
class ZEL_API EZELVectorError : public EZELError {
 public:
  using EZELError::EZELError;
  ~EZELVectorError() override;
};

/// Raised by the matrix classes.
class ZEL_API EZELMatrixError : public EZELError {
 public:
  using EZELError::EZELError;
  ~EZELMatrixError() override;
};

/// Raised by the data table.
class ZEL_API EZELDataTableError : public EZELError {
 public:
  using EZELError::EZELError;
  ~EZELDataTableError() override;
};

/// Raised by statistical tests and the tools around them.
class ZEL_API EZELStatisError : public EZELError {
 public:
  using EZELError::EZELError;
  ~EZELStatisError() override;
};

/// Raised by curve fitting and multivariate analysis.
class ZEL_API EZELMath2Error : public EZELError {
 public:
  using EZELError::EZELError;
  ~EZELMath2Error() override;
};

/// Raised for faulty expressions.
class ZEL_API EZELMathExp : public EZELError {
 public:
  using EZELError::EZELError;
  ~EZELMathExp() override;
};

/// Raised by complex arithmetic.
class ZEL_API EZELComplexError : public EZELError {
 public:
  using EZELError::EZELError;
  ~EZELComplexError() override;
};

/// Raised by straight lines. Not an EZELError.
class ZEL_API EZELSLineError : public Exception {
 public:
  using Exception::Exception;
  ~EZELSLineError() override;
};

/// Raised by the Fourier transform.
class ZEL_API EZELFourierError : public EZELError {
 public:
  using EZELError::EZELError;
  ~EZELFourierError() override;
};

/// Raised by the wavelet transform.
class ZEL_API EZELWaveletError : public EZELError {
 public:
  using EZELError::EZELError;
  ~EZELWaveletError() override;
};

}  // namespace zel
