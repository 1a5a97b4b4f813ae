#include "zel/base/errors.h"

namespace zel {

// Out of line, so that each class has one type identity across the library boundary.
Exception::~Exception() = default;
EZELError::~EZELError() = default;
EMathError::~EMathError() = default;
EConvertError::~EConvertError() = default;
EInOutError::~EInOutError() = default;
EZELMath1Error::~EZELMath1Error() = default;
EZELVectorError::~EZELVectorError() = default;
EZELMatrixError::~EZELMatrixError() = default;
EZELDataTableError::~EZELDataTableError() = default;
EZELStatisError::~EZELStatisError() = default;
EZELMath2Error::~EZELMath2Error() = default;
EZELMathExp::~EZELMathExp() = default;
EZELComplexError::~EZELComplexError() = default;
EZELSLineError::~EZELSLineError() = default;
EZELFourierError::~EZELFourierError() = default;
EZELWaveletError::~EZELWaveletError() = default;

}  // namespace zel
