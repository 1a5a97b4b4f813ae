/// @file
/// Vocabulary of arithmetic expressions, for callers that parse and evaluate them.
#pragma once

#include <cstdint>
#include <string_view>

#include "zel/base/api.h"
#include "zel/base/errors.h"

namespace zel {

/// Elements of an expression: a number, an element of a list, operators, parentheses, functions,
/// constants. Faulty expressions raise EZELMathExp.
enum TOperator : std::uint8_t {
  opNone,
  opNumber,
  opListElem,
  opAdd,
  opSubtract,
  opMultiply,
  opDivide,
  opMod,
  opPower,
  opGT,
  opGE,
  opLT,
  opLE,
  opEQ,
  opNE,
  opOpenParanth,
  opClosedParanth,
  opMinusSign,
  opPlusSign,
  opSine,
  opCosine,
  opTangens,
  opArcSin,
  opArcCos,
  opArcTan,
  opAbs,
  opSign,
  opSqrt,
  opSqr,
  opRound,
  opNDInt,
  opNDQuant,
  opNDDens,
  opSum,
  opMean,
  opVar,
  opPi,
  opTrue,
  opFalse,
  opExp,
  opLn,
  opLg,
  opGauss,
  opRand,
  opFrac,
  opInt,
  opAnd,
  opNot,
  opOr,
  opXor
};

/// Balance of the parentheses in an expression.
/// @return 0 if balanced; the number of opening ones that are never closed; -p if the closing one
/// at
///   position p, counted in bytes from 1, has no opening one before it
[[nodiscard]] ZEL_API int CheckParanthInExp(std::string_view Exp);

}  // namespace zel
